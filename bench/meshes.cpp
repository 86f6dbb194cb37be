// Meshes on the processor: placing skinned vertices, beside the same sums over plain arrays.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "gfx/geometry/skinning.h"
#include "scene/vertex_codec.h"

namespace sparkrig {
namespace {

constexpr std::uint32_t kVertices = 10'000;
constexpr std::size_t kInfluences = 4, kBones = 40;

/// What both place, each in the form that it reads.
struct Skin {
    Skin() : geometry(0x111C, kVertices, 1) {
        for (std::size_t i = 0; i < kBones; ++i) {
            const float angle = 0.1f * static_cast<float>(i), c = std::cos(angle), s = std::sin(angle);
            palette.push_back({{{c, s, 0, 0}, {-s, c, 0, 0}, {0, 0, 1, 0}, {angle, -angle, 2 * angle, 1}}});
        }
        for (std::uint32_t i = 0; i < kVertices; ++i) {
            const float t = static_cast<float>(i);
            positions.push_back({std::sin(t), std::cos(t), 0.01f * t});
            normals.push_back({std::cos(t), 0, std::sin(t)});
            for (std::size_t k = 0; k < kInfluences; ++k) {
                weights.push_back(0.1f * static_cast<float>(k + 1));
                indices.push_back(static_cast<std::uint8_t>((i / 50 + 3 * k) % kBones));
            }
            std::uint8_t* vertex = geometry.Vertex(i);
            std::memcpy(vertex, &positions[i], 12);
            std::memcpy(vertex + 12, &weights[4 * i], 12);
            std::memcpy(vertex + BoneIndexOffset(geometry.layout), &indices[4 * i], 4);
            std::memcpy(vertex + geometry.layout.normal, &normals[i], 12);
        }
    }
    MeshGeometry geometry;
    std::vector<D3DXMATRIX> palette;
    std::vector<D3DXVECTOR3> positions, normals;
    std::vector<float> weights;
    std::vector<std::uint8_t> indices;
};

void PlaceSkinnedVertices(benchmark::State& state) {
    const Skin skin;
    std::vector<PlacedVertex> placed(kVertices);
    for (auto _ : state) {
        PlaceVertices(skin.geometry, 0, skin.palette, placed);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(PlaceSkinnedVertices);

void SumsOverPlainArrays(benchmark::State& state) {   // the limit
    const Skin skin;
    std::vector<D3DXVECTOR3> positions(kVertices), normals(kVertices);
    for (auto _ : state) {
        for (std::size_t i = 0; i < kVertices; ++i) {
            const D3DXVECTOR3 p = skin.positions[i], n = skin.normals[i];
            D3DXVECTOR3 position, normal;
            for (std::size_t k = 4 * i; k < 4 * i + kInfluences; ++k) {
                const auto& m = skin.palette[skin.indices[k]].m;   // they turn: normals take the same matrices
                const float w = skin.weights[k];
                position.x += w * (p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0] + m[3][0]);
                position.y += w * (p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1] + m[3][1]);
                position.z += w * (p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2] + m[3][2]);
                normal.x += w * (n.x * m[0][0] + n.y * m[1][0] + n.z * m[2][0]);
                normal.y += w * (n.x * m[0][1] + n.y * m[1][1] + n.z * m[2][1]);
                normal.z += w * (n.x * m[0][2] + n.y * m[1][2] + n.z * m[2][2]);
            }
            positions[i] = position;
            normals[i] = normal;
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(SumsOverPlainArrays);

}   // namespace
}   // namespace sparkrig
