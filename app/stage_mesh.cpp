#include "app/stage_mesh.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "gfx/gfx.h"

namespace sparkrig {

namespace {

struct StageVertex {
    static constexpr DWORD kFormat = 0x112;   // position, normal, one texture coordinate
    D3DXVECTOR3 position, normal;
    float u, v;
};

constexpr D3DXVECTOR3 kUp = {0, 0, 1}, kForward = {0, 1, 0};

// clang-format off
constexpr StageVertex kVertices[] = {
    {{-1,  0, 0}, kUp,      0, 0}, {{1,  0, 0}, kUp,      1, 0},
    {{-1, -1, 0}, kUp,      0, 1}, {{1, -1, 0}, kUp,      1, 1},
    {{-1, -1, 1}, kForward, 0, 2}, {{1, -1, 1}, kForward, 1, 2},
};
constexpr std::uint16_t kIndices[] = {0, 2, 1,  1, 2, 3,  3, 2, 4,  3, 4, 5};
constexpr std::uint16_t kGroups[] = {0, 0, 1, 1};   // floor, wall
constexpr D3DCOLORVALUE kAmbient[] = {{0.1f, 0.5f, 0.1f, 1}, {0.3f, 0.3f, 0.1f, 1}};
// clang-format on

}   // namespace

void BuildStageMesh(KRN_Gfx& gfx, KRN_Mesh& mesh) {
    mesh.SetNodeName("StageMesh");
    MeshGeometry& geometry = mesh.CreateGeometry({.faces = std::size(kGroups),
                                                  .vertices = std::size(kVertices),
                                                  .groups = std::size(kAmbient),
                                                  .format = StageVertex::kFormat});
    std::memcpy(geometry.vertices.data(), kVertices, sizeof kVertices);
    std::ranges::copy(kIndices, geometry.indices.begin());
    std::ranges::copy(kGroups, geometry.groups.begin());
    mesh.SortByGroup();
    gfx.CreateMesh(mesh);
    mesh.SetScale(150, 250, 150, false);
    mesh.SetPosition(0, -100, -100, true);
    for (int group = 0; group < mesh.MaterialCount(); ++group) {
        D3DMATERIAL9 colours = {};
        colours.Ambient = kAmbient[group];
        colours.Diffuse = colours.Specular = colours.Emissive = {0, 0, 0, 1};
        mesh.Material(group).colours = colours;
    }
}

}   // namespace sparkrig
