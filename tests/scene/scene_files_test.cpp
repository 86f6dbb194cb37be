// Whole scenes: the samples against their answers, small texts against what the format says, old and broken files.
#include <unistd.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "base/little_endian.h"
#include "base/log.h"
#include "scene/binary_scene.h"
#include "scene/load_scene.h"
#include "tests/support/test.h"
#include "tools/scene/dump.h"

namespace sparkrig {
namespace {

using nlohmann::json;

constexpr const char* kSamples[] = {"rock",  "ring",   "flag", "stage", "bounded", "two_materials", "terrain",
                                    "chunk", "letter", "maw",  "path",  "rune",    "shock",         "tentacle"};

std::string FileBytes(const std::string& name) {
    std::ostringstream bytes;
    bytes << std::ifstream(name, std::ios::binary).rdbuf();
    return bytes.str();
}

/// A file of the test, gone after it.
struct TestFile {
    explicit TestFile(const std::string& bytes = "") { std::ofstream(name, std::ios::binary) << bytes; }
    ~TestFile() { std::remove(name.c_str()); }
    std::string name = "/tmp/sparkrig_scene_" + std::to_string(getpid());
};

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
    if (a.is_number() && b.is_number()) {
        const double x = a, y = b;
        return std::abs(x - y) <= tolerance * std::max(1.0, std::abs(x)) ? ""
                                                                         : place + ": " + a.dump() + " " + b.dump();
    }
    if (a.type() != b.type() || a.size() != b.size()) return place + ": " + a.dump() + " " + b.dump();
    if (!a.is_structured()) return a == b ? "" : place + ": " + a.dump() + " " + b.dump();
    for (const auto& [key, value] : a.items()) {
        if (a.is_object() && !b.contains(key)) return place + "/" + key + " is missing";
        const json& other = a.is_object() ? b.at(key) : b.at(std::stoul(key));
        const std::string found = Difference(value, other, tolerance, place + "/" + key);
        if (!found.empty()) return found;
    }
    return "";
}

TEST(SceneFiles, SamplesAreTheirAnswersInBothFormats) {
    for (const std::string sample : kSamples) {
        json answer = json::parse(FileBytes("tests/scene/answers/" + sample + ".json"));
        for (const char* key : {"file", "format", "version"}) answer.erase(key);
        const bool geometry = !answer["meshes"].empty() && answer["meshes"][0].contains("geometry");
        const std::string text = "models/" + sample + ".kva";
        EXPECT_EQ(Difference(answer, Dump(text, 0.4f, geometry), 1e-5), "") << sample;
        KRN_3dScene scene;
        LoadScene(scene, text.c_str());
        const TestFile first;
        SaveBinaryScene(scene, first.name.c_str());
        const std::string bytes = FileBytes(first.name);
        EXPECT_EQ(Difference(answer, Dump(first.name, 0.4f, geometry), geometry ? 1e-4 : 1e-5), "") << sample;
        LoadScene(scene, first.name.c_str());
        SaveBinaryScene(scene, first.name.c_str());
        EXPECT_TRUE(bytes == FileBytes(first.name)) << sample << " converted again";
    }
}

// ---- What texts become

std::string Mesh(const std::string& faces, const std::string& more = "", int points = 4) {
    std::string text = "*GEOMOBJECT { *NODE_NAME \"M\" *MESH { *MESH_NUMVERTEX " + std::to_string(points) +
                       " *MESH_VERTEX_LIST { *MESH_VERTEX 0 0 0 0 *MESH_VERTEX 1 2 0 0 *MESH_VERTEX 2 2 3 0 "
                       "*mesh_vertex 3 0 3 1 } *MESH_NUMFACES ";
    const auto count = std::count(faces.begin(), faces.end(), 'A');
    return text + std::to_string(count) + " *MESH_FACE_LIST { " + faces + " } " + more + " } } ";
}

constexpr char kTwoFaces[] =
    "*MESH_FACE 0: A: 0 B: 1 C: 2 *MESH_SMOOTHING 1 *MESH_FACE 1: A: 0 B: 2 C: 3 *MESH_SMOOTHING 1,4 ";

std::string Material(const std::string& inside) {
    return "*MATERIAL_LIST { *MATERIAL 0 { " + inside + " } } " +
           Mesh(kTwoFaces).insert(std::string("*GEOMOBJECT {").size(), " *MATERIAL_REF 0 ");
}

TEST(SceneFiles, TextsBecomeWhatTheirWordsSay) {
    const struct {
        std::string text;
        const char* place;
        json expected;
    } kRows[] = {
        {"*SCENE { *SCENE_FIRSTFRAME 12.7 *SCENE_LASTFRAME 42 *SCENE_FRAMESPEED 15 }", "/first_frame", 12},
        {"*SCENE { *SCENE_FIRSTFRAME 12 *SCENE_LASTFRAME 42 *SCENE_FRAMESPEED 15 }", "/length", 2},
        {"*SCENE { *X { *SCENE_LASTFRAME 9 { } } *SCENE_AMBIENT_STATIC 0.1, 0.5 ,1 }", "/ambient", {26, 128, 255, 255}},
        {"*ATMOSPHERIC { *STDFOG { *FOG_COLOR 1 0 0.2 } }", "/background", {255, 0, 51, 255}},
        {"*GROUP { *GROUP { *BONEOBJECT { *NODE_NAME \"b\" } } }", "/helpers/0/kind", "bone"},
        {"*GEOMOBJECT { *NODE_NAME \"empty\" }", "/helpers/0/name", "empty"},
        {"*LIGHTOBJECT { *LIGHT_TYPE \"directional\" }", "/lights/0/type", "directional"},
        {"*LIGHTOBJECT { *LIGHT_SETTINGS { *LIGHT_INTENS 3 *LIGHT_COLOR 1 1 1 } }", "/lights/0/diffuse", {0, 0, 0, 1}},
        {"*CAMERAOBJECT { *TARGET_NODE \"t\" *CAMERA_SETTINGS { *CAMERA_FOV 0.5 } } *TARGETOBJECT { *NODE_NAME \"t\" "
         "*NODE_TM { *TM_POS 1 2 3 } }",
         "/cameras/0/direction",
         {1, 2, 3}},
        {"*HELPEROBJECT { *NODE_PARENT \"p\" *NODE_TM { *TM_POS 1 0 0 } } *HELPEROBJECT { *NODE_NAME \"p\" *NODE_TM { "
         "*TM_POS 0 5 0 } }",
         "/helpers/0/world/3",
         {1, 5, 0, 1}},
        {"*HELPEROBJECT { *NODE_TM { *TM_ROW0 -1 0 0 *TM_ROW1 0 1 0 *TM_ROW2 0 0 1 } }",
         "/helpers/0/rest/axis_signs",
         {-1, 1, 1}},
        {"*HELPEROBJECT { *TM_ANIMATION { *CONTROL_ROT_TRACK { *CONTROL_ROT_SAMPLE 0 0 0 1 0 *CONTROL_ROT_SAMPLE 160 0 "
         "0 1 4 } } }",
         "/helpers/0/tracks/rotation/1/angle", 4 - 6.283184},
        {Mesh(kTwoFaces), "/meshes/0/vertices", 4},
        {Mesh("*MESH_FACE 0: A: 0 B: 1 C: 2 *MESH_SMOOTHING *MESH_MTLID 0 *MESH_FACE 1: A: 0 B: 2 C: 3"),
         "/meshes/0/vertices", 6},
        {Mesh("*MESH_FACE 0: A: 0 B: 1 C: 1 *MESH_FACE 1: A: 0 B: 1 C: 2"), "/meshes/0/faces", 1},
        {Mesh(kTwoFaces,
              "*MESH_NUMTVERTEX 1 *MESH_TVERTLIST { *MESH_TVERT 0 0.5 0.25 0 } *MESH_NUMTVFACES 1 "
              "*MESH_TFACELIST { *MESH_TFACE 0 0 0 0 }"),
         "/meshes/0/geometry/uvs/0",
         {0.5, 0.75}},
        {Mesh(kTwoFaces,
              "*MESH_WEIGHTS { *MESH_INIT_TM { *TM_ROW3 1 0 0 } *BONE_WEIGHT { *BONE_NAME \"b\" *BONE_INIT_TM "
              "{ *TM_ROW3 0 2 0 } *INDEX_WEIGHT 0 0.1 *INDEX_WEIGHT 1 0.0999 } }"),
         "/meshes/0/geometry/bone_indices",
         {{1, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}, {0, 0, 0, 0}}},
        {Mesh(kTwoFaces) +
             "*GEOMOBJECT { *NODE_NAME \"a\" *CLONE \"b\" } *GEOMOBJECT { *NODE_NAME \"b\" *CLONE \"m\" }",
         "/meshes/1/vertices", 4},
        {Material("*MATERIAL_SHINE 0.25 *MATERIAL_TRANSPARENCY 0.5 *MATERIAL_TRANSPARENCY_TYPE additive"),
         "/meshes/0/materials/0/blend", "additive"},
        {Material("*MATERIAL_TRANSPARENCY_TYPE additive *MATERIAL_SHINE 0.25"), "/meshes/0/materials/0/power", 25},
        {Material("*MAP_DIFFUSE { *BITMAP \"textures/glow.png\" *UVW_U_TILING 2 *UVW_TILE_U \"Mirror\" }"),
         "/meshes/0/materials/0/maps/0/offset_u", -0.125},
        {Material("*MAP_DIFFUSE { *BITMAP \"textures/glow.png\" } *MATERIAL_DIFFUSE 0.2 0.3 0.4"),
         "/meshes/0/materials/0/diffuse",
         {1, 1, 1, 1}},
        {Material(
             "*MATERIAL_ANIMATION { *MATERIAL_ATTRIBUTE Opacity *CONTROL_FLOAT_BEZIER { *CONTROL_BEZIER_FLOAT_KEY 0 "
             "0.8 0 0 } }"),
         "/meshes/0/materials/0/transparency", 0.2},
        {Material("*SUBMATERIAL 0 { } *SUBMATERIAL 1 { } *SUBMATERIAL 2 { *MATERIAL_DIFFUSE 0 1 0 }")
             .replace(Material("*SUBMATERIAL 0 { } *SUBMATERIAL 1 { } *SUBMATERIAL 2 { *MATERIAL_DIFFUSE 0 1 0 }")
                          .find("*MESH_FACE 1"),
                      0, "*MESH_MTLID -1 "),
         "/meshes/0/materials/0/diffuse",
         {0, 1, 0, 1}},
    };
    for (const auto& row : kRows) {
        const TestFile file("*3DSMAX_KVAEXPORT 211 " + row.text);
        const json found = Dump(file.name, 0, true).at(json::json_pointer(row.place));
        EXPECT_EQ(Difference(row.expected, found, 1e-5), "") << row.text;
    }
}

TEST(SceneFiles, WhatIsWrongIsReported) {
    const struct {
        std::string text, report;
    } kRows[] = {
        {"*LIGHTOBJECT { *LIGHT_TYPE Sun }", "Unknown light type changed to omni"},
        {"*HELPEROBJECT { *NODE_NAME \"h\" *NODE_PARENT \"p\" }", "Parent object 'p' not found in scene"},
        {"*HELPEROBJECT { *NODE_NAME \"h\" *NODE_PARENT \"h\" }", "h: Parent object 'h' descends from it"},
        {"*HELPEROBJECT { *NODE_NAME \"h\"", "Encountered unexpected end of file at pos"},
        {"*GEOMOBJECT { *NODE_NAME \"c\" *CLONE \"m\" }", "Clone Mesh 'm' not found"},
        {"*GEOMOBJECT { *NODE_NAME \"c\" *CLONE \"c\" }", "Clone Mesh 'c' is its own source"},
        {"*GEOMOBJECT { *MESH { *MESH_NUMVERTEX 2000000000 } }", "2000000000 vertices do not fit"},
        {"*GEOMOBJECT { *MESH { *MESH_NUMVERTEX 1 *MESH_VERTEX_LIST { *MESH_VERTEX 1 0 0 0 } } }",
         "Wrong vertex list order!"},
        {Mesh("*MESH_FACE 0: A: 0 B: 1 C: 9"), "Invalid face 0 in mesh 'M'"},
        {Mesh("*MESH_FACE 0: A: 0 B: 1 C: 1"), "Mesh without vertices: 'M'"},
        {Mesh(kTwoFaces, "*MESH_WEIGHTS { *BONE_WEIGHT { *INDEX_WEIGHT 4 1 } }"), "Invalid weight index: 4"},
        {Mesh(kTwoFaces, "*MESH_WEIGHTS { *BONE_WEIGHT { *INDEX_WEIGHT 0 1 } }"), "Invalid bone index: 0"},
        {"*MATERIAL_LIST { *MATERIAL 1 { } }", "Material in wrong order!"},
        {"*SCENE", "'{' not found"},
        {"*" + std::string(128, 'A'), "String too long (>127)"},
    };
    for (const auto& row : kRows) {
        const TestFile file("*3DSMAX_KVAEXPORT 211 " + row.text);
        const Reports reports;
        KRN_3dScene scene;
        ErrorOf([&] { LoadScene(scene, file.name.c_str()); });
        std::string all;
        for (const std::string& report : reports.All()) all += report + "\n";
        EXPECT_NE(all.find(row.report), std::string::npos) << row.text << "\n" << all;
    }
}

// ---- Old and broken binary files

class Bytes {
  public:
    template <class... Number>
    Bytes& Put(Number... numbers) {
        (PutOne(numbers), ...);
        return *this;
    }
    Bytes& Floats(std::initializer_list<float> values) {
        for (const float value : values) PutOne(value);
        return *this;
    }
    Bytes& Zeros(int count) {
        bytes.append(static_cast<std::size_t>(count), '\0');
        return *this;
    }
    std::string bytes;

  private:
    template <class Number>
    void PutOne(Number number) {
        std::uint8_t place[sizeof number];
        StoreLittleEndian(number, place);
        bytes.append(reinterpret_cast<const char*>(place), sizeof place);
    }
};

void PutNode(Bytes& b) {
    b.Put(std::uint16_t{0x1234}, 1u).Zeros(64).Floats({1, 1, 1, 0, 0, 0, 1, 1, 1, 0, 0, 0, 0});
    b.Floats({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}).Zeros(4 + 4 + 1 + 12 + 4).Put(100.0f);
}

/// One triangle with a map, as a file of that version holds it. `format`: 0x112, or 0x12 without coordinates.
std::string OldScene(int version, std::uint32_t format, std::uint32_t index = 2) {
    Bytes b;
    b.Put('3', 'S', 'C', static_cast<char>(version)).Floats({30, 0}).Put(0u, 0, 0);
    PutNode(b);
    if (version >= 103) b.Put(3u).Floats({5}).Zeros(36);
    b.Put(0xFF102030u, 0xFF405060u, '\0').Zeros(68).Put(1u);
    PutNode(b);
    b.Put(3u).Zeros(28).Floats({4, 3, 0}).Put(1u, 1u, 0u, 1u);   // box; textured, visible, blending, one group
    b.Zeros(68).Put(0u, 0u, 0u);                                 // colours; two-sided, blending, with diffuse
    if (version >= 106) b.Floats({0.25f});
    b.Zeros(4 + 5 * 14 + 4 + 1 + 4 + 4).Zeros(24);   // rest of the material; texture settings
    for (int slot = 0; slot < (version < 105 ? 8 : 4); ++slot) b.Zeros(5 * 14 + 20 + 4 + 8);
    b.Put(0u, 0u, 3u, 1u, format);   // no clone, no bones; vertices, faces
    constexpr float kCorners[3][3] = {{0, 0, 0}, {4, 0, 0}, {0, 3, 0}};
    for (const auto& corner : kCorners) {
        b.Floats({corner[0], corner[1], corner[2]});
        if (version < 101) b.Floats({0, 0, -1});
        if (format == 0x112 || (version >= 101 && version < 102)) b.Floats({0.5f, 0.25f});
        if (version >= 101) b.Put(std::int16_t{0}, std::int16_t{0}, std::int16_t{-32767});
    }
    b.Put(std::uint16_t{0}, std::uint16_t{1}, static_cast<std::uint16_t>(index), std::uint16_t{0}, -1, 0u, 0u, 0u);
    return b.bytes;
}

TEST(SceneFiles, EveryVersionIsRead) {
    for (int version = 100; version <= 106; ++version) {
        for (const std::uint32_t format : {0x112u, 0x12u}) {
            SCOPED_TRACE(std::to_string(version) + " " + std::to_string(format));
            const TestFile file(OldScene(version, format));
            const json dump = Dump(file.name, 0, true);
            const json& mesh = dump["meshes"][0];
            EXPECT_EQ(mesh["geometry"]["normals"][2], json({0, 0, -1}));
            EXPECT_EQ(mesh["geometry"]["uvs"].size(), format == 0x112 ? 3u : 0u);
            EXPECT_EQ(mesh["bounds"]["radius"], 4);
            EXPECT_EQ(mesh["materials"][0]["reflection_amount"], version < 106 ? 1.0 : 0.25);
            EXPECT_EQ(dump["bounds"]["radius"], version < 103 ? 2.5 : 5.0);
        }
    }
    for (const int version : {99, 107}) {
        const TestFile file(OldScene(version, 0x12));
        EXPECT_NE(ErrorOf([&] { Dump(file.name, 0, false); }).find("3sc file version: "), std::string::npos);
    }
    const TestFile file(OldScene(106, 0x12, 3));
    EXPECT_NE(ErrorOf([&] { Dump(file.name, 0, false); }).find("Invalid face 0"), std::string::npos);
}

TEST(SceneFiles, CutAnywhereTheyLoadOrReport) {
    KRN_3dScene scene;
    LoadScene(scene, "models/two_materials.kva");
    const TestFile converted;
    SaveBinaryScene(scene, converted.name.c_str());
    for (const std::string& whole : {FileBytes(converted.name), FileBytes("models/ring.kva").substr(0, 3000)}) {
        for (std::size_t length = 0; length < whole.size(); ++length) {
            const TestFile file(whole.substr(0, length));
            const std::string error = ErrorOf([&] { LoadScene(scene, file.name.c_str()); });
            if (whole.front() == '3') {
                EXPECT_NE(error, "no error") << length;
            }
        }
    }
}

}   // namespace
}   // namespace sparkrig
