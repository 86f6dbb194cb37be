// Whole scenes: the samples against their answers, small texts against what the format says, old and broken files.
#include <cmath>
#include <nlohmann/json.hpp>

#include "base/log.h"
#include "scene/binary_scene.h"
#include "scene/load_scene.h"
#include "tests/support/cases.h"
#include "tests/support/temporary_folder.h"
#include "tools/scene/dump.h"

namespace sparkrig {
namespace {

using nlohmann::json;

constexpr const char* kSamples[] = {"rock",  "ring",   "flag", "stage", "bounded", "two_materials", "terrain",
                                    "chunk", "letter", "maw",  "path",  "rune",    "shock",         "tentacle"};

json Dump(const std::string& file, float time, bool geometry) {
    KRN_3dScene scene;
    LoadScene(scene, file.c_str());
    scene.SetSceneTime(static_cast<double>(time), true);
    json dump = json::parse(DumpScene(scene, {file, time, geometry}));
    for (const char* key : {"file", "format", "version"}) dump.erase(key);
    return dump;
}

/// Where two dumps differ by more than processors do; empty for nowhere.
std::string Difference(const json& a, const json& b, double tolerance, const std::string& place = "") {
    const auto unlike = [&] { return std::string(place).append(": ").append(a.dump()).append(" ").append(b.dump()); };
    if (a.is_number() && b.is_number()) {
        const double x = a, y = b;
        return std::abs(x - y) <= tolerance * std::max(1.0, std::abs(x)) ? "" : unlike();
    }
    if (a.type() != b.type() || a.size() != b.size()) return unlike();
    if (!a.is_structured()) return a == b ? "" : unlike();
    for (const auto& [key, value] : a.items()) {
        const std::string inside = std::string(place).append("/").append(key);
        if (a.is_object() && !b.contains(key)) return inside + " is missing";
        const json& other = a.is_object() ? b.at(key) : b.at(std::stoul(key));
        std::string found = Difference(value, other, tolerance, inside);
        if (!found.empty()) return found;
    }
    return "";
}

TEST(SceneFiles, SamplesAreTheirAnswersInBothFormats) {
    const ScratchFolder folder;
    const std::string converted = folder.Path("scene");
    for (const std::string sample : kSamples) {
        json answer = json::parse(ReadFile("tests/scene/answers/" + sample + ".json"));
        for (const char* key : {"file", "format", "version"}) answer.erase(key);
        const bool geometry = !answer["meshes"].empty() && answer["meshes"][0].contains("geometry");
        const std::string text = "models/" + sample + ".kva";
        EXPECT_EQ(Difference(answer, Dump(text, 0.4f, geometry), 1e-5), "") << sample;
        KRN_3dScene scene;
        LoadScene(scene, text.c_str());
        SaveBinaryScene(scene, converted.c_str());
        const std::string bytes = ReadFile(converted);
        EXPECT_EQ(Difference(answer, Dump(converted, 0.4f, geometry), geometry ? 1e-4 : 1e-5), "") << sample;
        LoadScene(scene, converted.c_str());
        SaveBinaryScene(scene, converted.c_str());
        EXPECT_TRUE(bytes == ReadFile(converted)) << sample << " converted again";
    }
}

TEST(SceneFiles, TextsBecomeWhatTheirWordsSayOrAreReported) {
    const std::vector<Case> cases = ReadCases("tests/scene/texts.txt");
    ASSERT_GT(cases.size(), 30u);
    for (const auto& [head, text] : cases) {
        const ScratchFolder folder;
        const std::string file = folder.Write("scene", "*3DSMAX_KVAEXPORT 211 " + text);
        const std::string place = head.substr(0, head.find(' ')), expected = head.substr(place.size() + 1);
        if (place == "!") {
            const Reports reports;
            ErrorOf([&] { Dump(file, 0, false); });
            EXPECT_THAT(reports.All(), testing::Contains(HasSubstr(expected))) << text;
        } else {
            const json found = Dump(file, 0, true).at(json::json_pointer(place));
            EXPECT_EQ(Difference(json::parse(expected), found, 1e-5), "") << text;
        }
    }
}

// ---- Old and broken binary files

/// Old files of one triangle with a map, with and without texture coordinates.
TEST(SceneFiles, EveryVersionIsRead) {
    for (int version = 100; version <= 106; ++version) {
        for (const std::string more : {"", "_without_uv"}) {
            const std::string name = "tests/scene/old/" + std::to_string(version) + more + ".3sc";
            SCOPED_TRACE(name);
            const json dump = Dump(name, 0, true);
            const json& mesh = dump["meshes"][0];
            EXPECT_EQ(mesh["geometry"]["normals"][2], json({0, 0, -1}));
            EXPECT_EQ(mesh["geometry"]["uvs"].size(), more.empty() ? 3u : 0u);
            EXPECT_EQ(mesh["bounds"]["radius"], 4);
            EXPECT_EQ(mesh["materials"][0]["reflection_amount"], version < 106 ? 1.0 : 0.25);
            EXPECT_EQ(dump["bounds"]["radius"], version < 103 ? 2.5 : 5.0);
        }
    }
    const ScratchFolder folder;
    std::string bytes = ReadFile("tests/scene/old/106.3sc");
    for (const char version : {99, 107}) {
        bytes[3] = version;
        const std::string file = folder.Write("scene", bytes);
        EXPECT_THAT(ErrorOf([&] { Dump(file, 0, false); }), HasSubstr("3sc file version: "));
    }
    EXPECT_THAT(ErrorOf([&] { Dump("tests/scene/old/bad_index.3sc", 0, false); }), HasSubstr("Invalid face 0"));
}

TEST(SceneFiles, CutAnywhereTheyLoadOrReport) {
    KRN_3dScene scene;
    LoadScene(scene, "models/two_materials.kva");
    const ScratchFolder folder;
    SaveBinaryScene(scene, folder.Path("scene").c_str());
    for (const std::string& whole : {ReadFile(folder.Path("scene")), ReadFile("models/ring.kva").substr(0, 3000)}) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const ScratchFolder cut;
            const std::string file = cut.Write("scene", whole.substr(0, length));
            const std::string error = ErrorOf([&] { LoadScene(scene, file.c_str()); });
            EXPECT_TRUE(whole.front() != '3' || error != "no error") << length;
        }
    }
}

}   // namespace
}   // namespace sparkrig
