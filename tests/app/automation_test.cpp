// The command line, and what the program does by it when nobody watches.
#include <cstdlib>
#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>

#include "app/contact_sheet.h"
#include "app/json_text.h"
#include "app/options.h"
#include "app/program.h"
#include "app/tester_state.h"
#include "base/nearest_word.h"
#include "platform/system/system.h"
#include "tests/support/canvas.h"
#include "tests/support/picture_files.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

using Json = nlohmann::json;

/// A data folder of its own, with one effect that glows for ever and one that ends after 0.09 s, and no user settings.
class AutomationTest : public ::testing::Test {
  protected:
    void SetUp() override {
        KeepDriverLoaded();
        before_ = GetCurrentDirectoryA();
        setenv("XDG_CONFIG_HOME", Path("config").c_str(), 1);
        MakeDataFolder(".");
        Write(
            "cfg/effects.cfg",
            "#1\ndesc = \"Glow\"\nPARTICLE {\n  texture = \"textures\\glow.png\"\n  Life = 0\n  scale = 70, 70, 70\n}\n"
            "#2\ndesc = \"Flash\"\nPARTICLE {\n  texture = \"textures\\glow.png\"\n  Life = 0.09\n  pos = 3, 5, "
            "7\n}\n");
    }
    void TearDown() override {
        SetCurrentDirectoryA(before_.c_str());
        Tester() = {};
    }
    std::string Path(const std::string& name) const { return folder_.Path(name); }
    void Write(const std::string& name, const std::string& content) const { folder_.Write(name, content); }
    /// A folder with the shipped shaders and textures, and without effects.
    void MakeDataFolder(const std::string& place) const {
        std::filesystem::create_directories(Path(place + "/cfg"));
        for (const char* shipped : {"/shader", "/textures"})
            std::filesystem::create_directory_symlink(before_ + shipped, Path(place + shipped));
        Write(place + "/cfg/texCatalogue.cfg", "");
    }
    /// Runs the program in the folder and keeps what it says.
    int Run(const std::vector<std::string>& words) {
        folder_.Enter();
        Tester() = {};
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        const int end = RunProgram(words);
        out_ = ::testing::internal::GetCapturedStdout();
        err_ = ::testing::internal::GetCapturedStderr();
        return end;
    }
    std::vector<Json> Record(std::vector<std::string> words) {
        words.insert(words.end(), {"--record", "record.jsonl"});
        EXPECT_EQ(Run(words), 0) << err_;
        std::vector<Json> frames;
        std::istringstream lines(ReadFile(Path("record.jsonl")));
        for (std::string line; std::getline(lines, line);) frames.push_back(Json::parse(line));
        return frames;
    }

    ScratchFolder folder_;
    std::string before_, out_, err_;
};

TEST_F(AutomationTest, RecordsEveryFrameByTheSteppedClock) {
    const std::vector<Json> frames = Record({"--frames", "9", "--effect", "flash"});
    ASSERT_EQ(frames.size(), 9u);
    EXPECT_EQ(out_, Path("record.jsonl") + "\n");
    for (int n = 0; const Json& frame : frames) {
        const int lives = n < 5;
        EXPECT_EQ(frame["frame"], n++);
        EXPECT_NEAR(frame["time"].get<double>(), n / 60.0, 1e-6);
        for (const char* count : {"live", "drawn", "draws"}) EXPECT_EQ(frame[count], lives) << n << count;
        ASSERT_EQ(frame["instances"].size(), lives);
    }
    const Json& instance = frames[0]["instances"][0];
    EXPECT_EQ(instance["effect"], "Flash");
    EXPECT_EQ(instance["kind"], 2);
    EXPECT_EQ(instance["base"], (Json{0, 0, 0}));
    EXPECT_EQ(instance["position"], (Json{3, 5, 7}));
    EXPECT_EQ(instance["rotation"], (Json{0, 0, 0, 1}));
}

TEST_F(AutomationTest, TheSeedDecidesTheRandomNumbersAndRepeatStartsAgain) {
    const auto first_random = [&](std::vector<std::string> words) {
        words.insert(words.end(), {"--frames", "1"});
        return Record(words)[0]["instances"][0]["random"];
    };
    const Json by_default = first_random({});
    EXPECT_EQ(first_random({}), by_default);
    EXPECT_EQ(first_random({"--seed", "1"}), by_default);
    EXPECT_NE(first_random({"--seed", "2"}), by_default);
    for (const Json& frame : Record({"--frames", "20", "--effect", "Flash", "--repeat"}))
        EXPECT_EQ(frame["live"], 1) << frame["frame"];
}

TEST_F(AutomationTest, ACaptureIsTheFrameOfASequenceThoughNobodySawTheOnesBefore) {
    const auto run = [&](std::vector<std::string> words) {
        words.insert(words.end(), {"--effect", "Flash", "/resx:160", "/resy:96"});
        EXPECT_EQ(Run(words), 0) << err_;
        return ReadFile(Path("a.png"));
    };
    run({"--sequence", "frames", "--frames", "9"});
    std::string names;
    for (int n = 0; n < 9; ++n) names += Path("frames/00000" + std::to_string(n) + ".png") + "\n";
    EXPECT_EQ(out_, names);
    const std::string picture = run({"--capture", "a.png", "--at", "0.15"});
    EXPECT_EQ(out_, Path("a.png") + "\n");
    EXPECT_TRUE(picture == ReadFile(Path("frames/000008.png"))) << "the overlay's largest count included";
    EXPECT_TRUE(picture != ReadFile(Path("frames/000001.png")));
    EXPECT_EQ(picture.substr(16, 8), std::string("\0\0\0\xA0\0\0\0\x60", 8));
    for (const char* less : {"--no-overlay", "--no-backdrop"})
        EXPECT_TRUE(picture != run({"--capture", "a.png", "--at", "0.15", less})) << less;
}

TEST(Halve, GivesTheMeanOfFourPixelsInEachChannel) {
    const Picture picture = {5,
                             2,
                             {0xFF102030, 0xFF102034, 0xFFFFFFFF, 0x00FFFFFF, 0xFF777777,   //
                              0xFF142030, 0xFF182038, 0xFFFFFFFF, 0x02FFFFFE, 0xFF777777}};
    const Picture half = Halve(picture);
    EXPECT_EQ(half.width, 2u);
    EXPECT_EQ(half.height, 1u);
    EXPECT_THAT(half.pixels, ElementsAre(0xFF132033, 0x80FFFFFF));
}

TEST_F(AutomationTest, TheSheetShowsEachEffectAsACaptureOfItsLiveliestMomentDoes) {
    const std::pair<const char*, const char*> kEffects[] = {{"0.24", "0.25"}, {"0.09", "0.1"}};   // fade-in, moment
    std::string effects;
    for (const auto& [fade_in, moment] : kEffects) {
        effects += std::string("#\ndesc = \"") + moment +
                   "\"\nPARTICLE {\n  texture = \"textures\\glow.png\"\n  Life = 1\n" +
                   "  Count = 5\n  FadeIn = " + fade_in +
                   "\n  POSITION {\n    type = \"randSphere\"\n    scale = 60, 60, 60\n  }\n}\n";
    }
    Write("cfg/effects.cfg", effects);
    ASSERT_EQ(Run({"--sheet", "sheet.png"}), 0) << err_;
    constexpr UINT kWidth = 640, kHeight = 360, kGap = 4, kSheetWidth = kWidth + 3 * kGap;   // two beside each other
    const std::vector<D3DCOLOR> sheet = Decoded(ReadFile(Path("sheet.png")));
    for (UINT left = kGap; const auto& [fade_in, moment] : kEffects) {
        Run({"--capture", "a.png", "--effect", moment, "--at", moment, "--no-overlay", "/resx:640", "/resy:360"});
        const Picture half = Halve({kWidth, kHeight, Decoded(ReadFile(Path("a.png")))});
        std::vector<D3DCOLOR> cell;
        for (UINT y = 0; y < half.height; ++y) {
            const auto row = sheet.begin() + (kGap + y) * kSheetWidth + left;
            cell.insert(cell.end(), row, row + half.width);
        }
        EXPECT_TRUE(cell == half.pixels) << moment;
        left += half.width + kGap;
    }
}

TEST_F(AutomationTest, CheckPrintsEachProblemWithItsPlace) {
    EXPECT_EQ(Run({"--check"}), 0) << out_;
    EXPECT_EQ(out_, "");
    Write("cfg/texCatalogue.cfg", "\"bad\" =\n  \"none.png\"\n\"odd\"\n\"glow\" = \"textures/glow.png\"\n");
    Write(
        "cfg/effects.cfg",
        "; \"gone.png\"\n#1\ndesc = \"Glow\"\nPARTICLE {\n  texture = \"gone.png\"\n  EmitEffect = \"trace:none\"\n}\n"
        "MESH {\n  sFile = \"gone.3sc\"\n}\nPARTICLE {\n  texture = \"glow\"\n}\n#2\ndesc = \"Two\"\n"
        "SPECIAL {\n  type = \"wave\"\n  texture = \"gone.png\"\n}\nMESH {\n  TransformObjectFile = \"empty.kva\"\n"
        "  TransformObjectName = \"a\"\n  sFile = \"empty.kva\"\n}\nMESH {\n  sFile = \"cut.3sc\"\n}\n");
    Write("empty.kva", "");
    Write("cut.3sc", std::string("3SC\xD3\1\0", 6));
    EXPECT_EQ(Run({"--check"}), 1);
    EXPECT_EQ(out_,
              "cfg/texCatalogue.cfg:2:3: warning: Texture file not found: 'none.png'\n"
              "cfg/texCatalogue.cfg:3:1: warning: cfg/texCatalogue.cfg: No \"=\" behind \"odd\"\n"
              "empty.kva: error: empty.kva: Error reading from file (Success)\n"
              "cfg/effects.cfg:5:14: error: Can not open file gone.png\n"
              "cfg/effects.cfg:6:17: warning: No texture 'none' in the catalogue\n"
              "cfg/effects.cfg:9:12: error: gone.3sc: Can not open file gone.3sc\n"
              "cfg/effects.cfg:18:14: error: Can not open file gone.png\n"
              "cut.3sc: error: cut.3sc: Unknown 3sc file version: 211 (cut.3sc)\n");
    Write("cfg/effects.cfg", "");
    EXPECT_EQ(Run({"--check", "--screen-effect", "gone.fx"}), 1);
    EXPECT_THAT(out_, HasSubstr("cfg/effects.cfg: error: No effects in effect file"));
    EXPECT_THAT(out_, HasSubstr("shader: error: Shader effect file 'gone.fx' not found"));
}

TEST_F(AutomationTest, EndsWithOneSentence) {
    const std::tuple<std::vector<std::string>, int, const char*> kRows[] = {
        {{"--capture", "a.png", "--effect", "Glo"}, 2, "did you mean Glow?"},
        {{"--capture", "a.png", "--data", "none"}, 2, "--data none is no folder"},
        {{"--capture", "a.png", "/resx:0"}, 2, "a picture of 0 x 720 cannot be drawn"},
        {{"--capture", "none/a.png"}, 3, "none/a.png cannot be written"},
        {{"--sequence", "cfg/effects.cfg"}, 3, "cfg/effects.cfg cannot be written"},
        {{"--record", "none/a.jsonl"}, 3, "none/a.jsonl cannot be written"}};
    for (const auto& [words, end, text] : kRows) {
        EXPECT_EQ(Run(words), end) << text;
        EXPECT_THAT(err_, HasSubstr(text));
        EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 1) << err_;
        EXPECT_EQ(out_, "");
    }
    Write("cfg/effects.cfg", "");
    EXPECT_EQ(Run({"--capture", "a.png"}), 1);
    EXPECT_EQ(err_, "sparkrig: VisualEffectSystem: No effects in effect file\n");
    Write("cfg/effects.cfg", "#1\ndesc = \"a\"\nSPECIAL {\n  type = \"x\"\n}\n");
    EXPECT_EQ(Run({"--capture", "a.png"}), 1);
    EXPECT_EQ(err_, "sparkrig: cfg/effects.cfg:4:11: VisualEffectSystem: Unknown special effect type in effect 'a'\n");
}

TEST_F(AutomationTest, DataComesFromTheFolderThatWinsFirst) {
    const auto first_effect = [&](const std::string& data_option) {
        std::vector<std::string> words = {"--frames", "1"};
        if (!data_option.empty()) words.insert(words.end(), {"--data", data_option});
        return Record(words)[0]["instances"][0]["effect"].get<std::string>();
    };
    for (const char* place : {"base", "named"}) {
        MakeDataFolder(place);
        Write(std::string(place) + "/cfg/effects.cfg",
              std::string("#1\ndesc = \"") + place + "\"\nPARTICLE {\n  texture = \"textures\\glow.png\"\n}\n");
    }
    EXPECT_EQ(first_effect(""), "Glow");
    RegistryKey key;
    ASSERT_EQ(RegCreateKeyExA("Software\\Vantrell\\Dunmarch", KEY_WRITE, key), ERROR_SUCCESS);
    RegSetValueExA(key, "BasePath", Path("base").c_str());
    RegCloseKey(key);
    EXPECT_EQ(first_effect(""), "base");
    EXPECT_EQ(first_effect("named"), "named");
}

TEST_F(AutomationTest, ABackgroundPictureThatCannotBeReadIsSaidInThePicture) {
    const std::string setting = "['Software\\Vantrell\\Sparkrig']\nBgrdTexturePath = '" + Path("bad.png") + "'\n";
    EXPECT_EQ(Run({"--capture", "without.png"}), 0);
    std::system(("mkdir -p " + Path("config/sparkrig")).c_str());
    Write("config/sparkrig/registry.toml", setting);
    Write("bad.png", "no picture");
    EXPECT_EQ(Run({"--capture", "with.png"}), 0);
    EXPECT_NE(ReadFile(Path("with.png")), ReadFile(Path("without.png")));
    EXPECT_EQ(ReadFile(Path("config/sparkrig/registry.toml")), setting);
}

TEST(JsonLine, WritesEveryKindOfValue) {
    const float values[] = {0.25f, std::numeric_limits<float>::infinity(), -2};
    JsonLine line;
    line.Add("name", "a \"b\"\n\xFF");
    line.Add("count", 7);
    line.Add("on", true);
    line.AddList("list", values);
    line.AddJson("inner", "[3]");
    EXPECT_EQ(
        line.Finish(),
        "{\"name\":\"a \\\"b\\\"\\n\xEF\xBF\xBD\",\"count\":7,\"on\":true,\"list\":[0.25,null,-2],\"inner\":[3]}");
    for (const float value : {0.1f, 1.0f / 60, -3.0e-39f, 16777217.0f, 3.4028235e38f}) {
        JsonLine number;
        number.Add("value", value);
        EXPECT_EQ(Json::parse(number.Finish())["value"].get<float>(), value) << "reads back the same";
    }
}

// ---- The command line

using Words = std::vector<std::string>;

TEST(Options, EachModeTakesItsOutput) {
    const std::tuple<Words, RunMode, const char*> kRows[] = {
        {{"--capture", "a.png", "--at", "2.5"}, RunMode::Capture, "a.png"},
        {{"--sequence=frames", "--frames", "7"}, RunMode::Sequence, "frames"},
        {{"--sheet", "/tmp/b.png"}, RunMode::Sheet, "/tmp/b.png"},
        {{"--record", "c.jsonl", "--frames=7"}, RunMode::Record, "c.jsonl"},
        {{"--check"}, RunMode::Check, ""}};
    for (const auto& [words, mode, output] : kRows) {
        const ParsedCommandLine parsed = ParseCommandLine(words);
        ASSERT_FALSE(parsed.exit_code.has_value()) << parsed.text;
        EXPECT_EQ(parsed.options.mode, mode);
        EXPECT_EQ(parsed.options.output, output);
    }
    EXPECT_EQ(ParseCommandLine({}).options.mode, RunMode::Interactive);
    EXPECT_TRUE(ParseCommandLine({}).options.overlay && ParseCommandLine({}).options.backdrop);
    EXPECT_EQ(ParseCommandLine(std::get<0>(kRows[0])).options.at_seconds, 2.5);
    EXPECT_EQ(ParseCommandLine(std::get<0>(kRows[3])).options.frames, 7);
}

TEST(Options, ReadsTheRest) {
    const Options options = ParseCommandLine({"/resx:640", "--effect", "Blue Fire", "--repeat", "--seed", "4000000000",
                                              "--data", "dir", "--screen-effect", "a.fx", "--mesh-effect", "b.fx",
                                              "--no-overlay", "--no-backdrop", "/nonsense", "800"})
                                .options;
    EXPECT_EQ(options.effect, "Blue Fire");
    EXPECT_TRUE(options.repeat);
    EXPECT_EQ(options.seed, 4000000000u);
    EXPECT_EQ(options.data, "dir");
    EXPECT_EQ(options.screen_effect + options.mesh_effect, "a.fxb.fx");
    EXPECT_FALSE(options.overlay || options.backdrop);
    EXPECT_THAT(options.command_line, HasSubstr("/resx:640 "));
}

TEST(Options, RefusesWrongUsageWithTwo) {
    const std::tuple<Words, const char*> kRows[] = {
        {{"--captur", "a.png"}, "unknown option --captur; did you mean --capture?"},
        {{"--no-overlays"}, "did you mean --no-overlay?"},
        {{"--xyzzyplugh=3"}, "unknown option --xyzzyplugh ("},
        {{"-capture", "a.png"}, "unknown option -capture; did you mean --capture?"},
        {{"--capture"}, "--capture needs a value"},
        {{"--effect", "a", "--effect", "b"}, "--effect is given more than once"},
        {{"--repeat=2"}, "--repeat takes no value"},
        {{"--data", ""}, "--data is empty"},
        {{"--capture", "a.png", "--sheet", "b.png"}, "--capture and --sheet cannot be given together"},
        {{"--capture", ""}, "--capture is empty"},
        {{"--check", "--effect", "a"}, "--check and --effect cannot be given together"},
        {{"--at", "2"}, "--at needs --capture"},
        {{"--capture", "a.png", "--at", "nan"}, "--at: nan is no number from 0 to 3600"},
        {{"--capture", "a.png", "--at", "-1"}, "--at"},
        {{"--frames", "5"}, "--frames needs"},
        {{"--record", "a.jsonl", "--frames", "0"}, "--frames: 0 is no whole number from 1 to 1000000"},
        {{"--seed", "many"}, "--seed: many is no whole number from 0 to 4294967295"},
        {{"--check", "--journal", "j"}, "--journal needs a window"}};
    for (const auto& [words, text] : kRows) {
        const ParsedCommandLine parsed = ParseCommandLine(words);
        EXPECT_EQ(parsed.exit_code, 2) << text;
        EXPECT_THAT(parsed.text, HasSubstr(text));
        EXPECT_EQ(std::count(parsed.text.begin(), parsed.text.end(), '\n'), 1) << parsed.text;
    }
}

TEST(Options, HelpAndVersionEndTheProgram) {
    const ParsedCommandLine parsed = ParseCommandLine({"--help"});
    EXPECT_EQ(parsed.exit_code, 0);
    for (const char* option : {"--effect", "--journal", "/full", "/resx"}) EXPECT_THAT(parsed.text, HasSubstr(option));
    EXPECT_EQ(ParseCommandLine({"--version"}).text, "Sparkrig 1.3\n");
}

TEST(NearestWord, FindsMistypedNamesOnly) {
    const Words names = {"campfire", "snowfall", "fountain"};
    const std::tuple<const char*, const char*> kRows[] = {
        {"campfir", "campfire"}, {"SNOWFALL", "snowfall"}, {"funtain", "fountain"}, {"teapot", ""}, {"", ""}};
    for (const auto& [word, nearest] : kRows) EXPECT_EQ(NearestWord(word, names), nearest) << word;
}

}   // namespace
}   // namespace sparkrig
