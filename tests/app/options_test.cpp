#include "app/options.h"

#include "base/nearest_word.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

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
