// Scenes: loading both formats, building a mesh, evaluating all tracks, each beside its limit. The argument is the
// number of faces, or of nodes. Made files lie in /tmp while the program runs.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <numeric>
#include <string>

#include "base/log.h"
#include "scene/binary_scene.h"
#include "scene/hermite.h"
#include "scene/load_scene.h"
#include "scene/mesh_builder.h"
#include "scene/slerp.h"

namespace sparkrig {
namespace {

constexpr int kColumns = 100;   // cells of a sheet, two faces each
constexpr std::int64_t kFacesOfSheet = 20'000;

/// A smooth uneven sheet.
RawMesh Sheet(std::int64_t faces) {
    RawMesh raw;
    const auto rows = static_cast<int>(faces / 2 / kColumns);
    for (int y = 0; y <= rows; ++y)
        for (int x = 0; x <= kColumns; ++x)
            raw.points.push_back({.position = {static_cast<float>(x), static_cast<float>(y),
                                               std::sin(0.1f * static_cast<float>(x * y))}});
    SmoothingGroups smooth;
    smooth.numbers[smooth.count++] = 1;
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < kColumns; ++x) {
            const auto a = static_cast<std::uint32_t>(y * (kColumns + 1) + x), b = a + kColumns + 1;
            raw.faces.push_back({{a, a + 1, b}, smooth});
            raw.faces.push_back({{a + 1, b + 1, b}, smooth});
        }
    }
    return raw;
}

/// As exporters write it, one mesh for every 20,000 faces.
std::string SceneText(std::int64_t faces) {
    std::string text = "*3DSMAX_KVAEXPORT 211\n";
    char line[128];
    const auto add = [&](const char* format, auto... values) {
        std::snprintf(line, sizeof line, format, values...);
        text += line;
    };
    for (std::int64_t left = faces; left > 0; left -= kFacesOfSheet) {
        const RawMesh raw = Sheet(std::min(left, kFacesOfSheet));
        add("*GEOMOBJECT {\n\t*NODE_NAME \"m\"\n\t*MESH {\n\t\t*MESH_NUMVERTEX %zu\n\t\t*MESH_NUMFACES %zu\n",
            raw.points.size(), raw.faces.size());
        text += "\t\t*MESH_VERTEX_LIST {\n";
        for (std::size_t i = 0; i < raw.points.size(); ++i) {
            const D3DXVECTOR3& p = raw.points[i].position;
            add("\t\t\t*MESH_VERTEX %4zu\t%.4f\t%.4f\t%.4f\n", i, static_cast<double>(p.x), static_cast<double>(p.y),
                static_cast<double>(p.z));
        }
        text += "\t\t}\n\t\t*MESH_FACE_LIST {\n";
        for (std::size_t i = 0; i < raw.faces.size(); ++i) {
            const auto& c = raw.faces[i].corners;
            add("\t\t\t*MESH_FACE %4zu:  A: %4u B: %4u C: %4u AB: 1 BC: 1 CA: 0\t *MESH_SMOOTHING 1 \t*MESH_MTLID 0\n",
                i, c[0], c[1], c[2]);
        }
        text += "\t\t}\n\t}\n}\n";
    }
    return text;
}

/// The files of one size, made once.
struct SceneFiles {
    explicit SceneFiles(std::int64_t faces) {
        const std::string base = "/tmp/bench_scene_" + std::to_string(getpid()) + "_" + std::to_string(faces);
        text = base + ".kva";
        binary = base + ".3sc";
        std::ofstream(text, std::ios::binary) << SceneText(faces);
        KRN_3dScene scene;
        LoadScene(scene, text.c_str());
        SaveBinaryScene(scene, binary.c_str());
    }
    ~SceneFiles() {
        std::remove(text.c_str());
        std::remove(binary.c_str());
    }
    SceneFiles(const SceneFiles&) = delete;
    SceneFiles& operator=(const SceneFiles&) = delete;
    std::string text, binary;
};

const SceneFiles& FilesOf(std::int64_t faces) {
    static std::map<std::int64_t, SceneFiles> files;
    SilenceLog();
    return files.try_emplace(faces, faces).first->second;
}

void Load(benchmark::State& state, std::string SceneFiles::*name) {
    const std::string& file = FilesOf(state.range(0)).*name;
    for (auto _ : state) {
        KRN_3dScene scene;
        LoadScene(scene, file.c_str());
        benchmark::DoNotOptimize(scene.meshes.Count());
    }
}
void LoadBinary(benchmark::State& state) { Load(state, &SceneFiles::binary); }
void LoadText(benchmark::State& state) { Load(state, &SceneFiles::text); }

std::vector<char> ReadWhole(const std::string& name) {
    std::FILE* file = std::fopen(name.c_str(), "rb");
    std::fseek(file, 0, SEEK_END);
    std::vector<char> bytes(static_cast<std::size_t>(std::ftell(file)));
    std::rewind(file);
    const std::size_t read = std::fread(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
    bytes.resize(read);
    return bytes;
}

/// The limit of LoadBinary: the file, and a copy of the vertices as they stand in memory.
void ReadAndCopyVertices(benchmark::State& state) {
    const SceneFiles& files = FilesOf(state.range(0));
    KRN_3dScene scene;
    LoadScene(scene, files.binary.c_str());
    for (auto _ : state) {
        benchmark::DoNotOptimize(ReadWhole(files.binary).data());
        for (const KRN_Mesh& mesh : scene.meshes) {
            const std::vector<std::uint8_t> copy(mesh.Geometry()->vertices.begin(), mesh.Geometry()->vertices.end());
            benchmark::DoNotOptimize(copy.data());
        }
    }
}

/// The limit of LoadText.
void ReadAndCountLines(benchmark::State& state) {
    const std::string& file = FilesOf(state.range(0)).text;
    for (auto _ : state) {
        const std::vector<char> bytes = ReadWhole(file);
        benchmark::DoNotOptimize(std::count(bytes.begin(), bytes.end(), '\n'));
    }
}

struct Silent : ErrorClass {};

void BuildSheets(benchmark::State& state) {
    const RawMesh raw = Sheet(kFacesOfSheet);
    const Silent reporter;
    for (auto _ : state) {
        for (std::int64_t faces = 0; faces < state.range(0); faces += kFacesOfSheet) {
            RawMesh copy = raw;
            KRN_Mesh mesh;
            KVA_MeshLoadInfo info;
            BuildMesh({reporter, {}}, copy, nullptr, mesh, info);
            benchmark::DoNotOptimize(mesh.Geometry());
        }
    }
}

/// The limit of BuildSheets: the corners of the same faces in the order of their points.
void SortFacesByVertex(benchmark::State& state) {
    const RawMesh raw = Sheet(kFacesOfSheet);
    std::vector<std::uint32_t> points;
    for (const RawFace& face : raw.faces) points.insert(points.end(), face.corners, face.corners + 3);
    std::vector<std::uint32_t> order(points.size());
    for (auto _ : state) {
        for (std::int64_t faces = 0; faces < state.range(0); faces += kFacesOfSheet) {
            std::iota(order.begin(), order.end(), 0u);
            std::ranges::sort(order, {}, [&](std::uint32_t i) { return points[i]; });
            benchmark::DoNotOptimize(order.data());
        }
    }
}

// ---- Tracks

constexpr int kKeys = 20;

KRN_PosKeyData PositionAt(float x) {
    return {.value = {x, 2 * x, -x}, .in_tangent = {-x, 3, 4}, .out_tangent = {5, x, 7}};
}

KRN_RotKeyData RotationAt(float x) {
    KRN_RotKeyData data;
    const D3DXVECTOR3 axis(1, 2, x);
    D3DXQuaternionRotationAxis(&data.rotation, &axis, 0.5f + x);
    return data;
}

/// Nodes with a Bezier position, a linear rotation and a Bezier scale each.
struct MovingNodes {
    explicit MovingNodes(std::int64_t count) {
        for (std::int64_t n = 0; n < count; ++n) {
            NodeTracks& tracks = scene.helpers.Add().Tracks();
            for (int i = 0; i < kKeys; ++i) {
                const auto x = static_cast<float>(i);
                tracks.position.Add(x, KeyInterpolation::Bezier, PositionAt(x));
                tracks.rotation.Add(x, KeyInterpolation::Linear, RotationAt(x));
                tracks.scale.Add(x, KeyInterpolation::Bezier, {PositionAt(x + 1)});
            }
        }
        for (KRN_3dObject& helper : scene.helpers) helper.RebuildLookupTables();
    }
    KRN_3dScene scene;
};

/// A time that runs on from frame to frame, through all segments.
double NextTime(double t) { return std::fmod(t + 1.0 / 60, kKeys - 1); }

void EvaluateAllTracks(benchmark::State& state) {
    const MovingNodes nodes(state.range(0));
    std::vector<std::size_t> hints(3 * static_cast<std::size_t>(state.range(0)));
    double t = 0;
    for (auto _ : state) {
        t = NextTime(t);
        std::size_t* hint = hints.data();
        for (const KRN_3dObject& node : nodes.scene.helpers) {
            const TrackEnd end{false, kKeys};
            benchmark::DoNotOptimize(EvaluateTrack(node.Tracks().position, t, end, hint++));
            benchmark::DoNotOptimize(EvaluateTrack(node.Tracks().rotation, t, end, hint++));
            benchmark::DoNotOptimize(EvaluateTrack(node.Tracks().scale, t, end, hint++));
        }
    }
}

/// The limit of EvaluateAllTracks: keys in arrays, the segment known from the frame before.
void InterpolateArrays(benchmark::State& state) {
    struct Arrays {
        std::vector<KRN_PosKeyData> position, scale;
        std::vector<KRN_RotKeyData> rotation;
        std::size_t segment = 0;
    };
    std::vector<Arrays> nodes(static_cast<std::size_t>(state.range(0)));
    for (Arrays& node : nodes) {
        for (int i = 0; i < kKeys; ++i) {
            const auto x = static_cast<float>(i);
            node.position.push_back(PositionAt(x));
            node.scale.push_back(PositionAt(x + 1));
            node.rotation.push_back(RotationAt(x));
        }
    }
    const auto hermite = [](const KRN_PosKeyData& from, const KRN_PosKeyData& to, float u) {
        const HermiteWeights w(u);
        return from.value * w.from + from.out_tangent * w.out - to.in_tangent * w.in + to.value * w.to;
    };
    double t = 0;
    for (auto _ : state) {
        t = NextTime(t);
        for (Arrays& node : nodes) {
            if (t < static_cast<double>(node.segment) || t >= static_cast<double>(node.segment + 1))
                node.segment = static_cast<std::size_t>(t);
            const std::size_t i = node.segment;
            const auto u = static_cast<float>(t - static_cast<double>(i));
            benchmark::DoNotOptimize(hermite(node.position[i], node.position[i + 1], u));
            benchmark::DoNotOptimize(Slerp(node.rotation[i].rotation, node.rotation[i + 1].rotation, u));
            benchmark::DoNotOptimize(hermite(node.scale[i], node.scale[i + 1], u));
        }
    }
}

BENCHMARK(LoadBinary)->RangeMultiplier(10)->Range(10'000, 1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAndCopyVertices)->RangeMultiplier(10)->Range(10'000, 1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(LoadText)->RangeMultiplier(10)->Range(10'000, 1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAndCountLines)->RangeMultiplier(10)->Range(10'000, 1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BuildSheets)->Arg(20'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(SortFacesByVertex)->Arg(20'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(EvaluateAllTracks)->Arg(1'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(InterpolateArrays)->Arg(1'000)->Unit(benchmark::kMicrosecond);

}   // namespace
}   // namespace sparkrig
