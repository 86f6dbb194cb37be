#include "app/stage_mesh.h"

#include <algorithm>
#include <iterator>

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
constexpr WORD kIndices[] = {0, 2, 1,  1, 2, 3,  3, 2, 4,  3, 4, 5};
constexpr DWORD kGroups[] = {0, 0, 1, 1};   // floor, wall
constexpr D3DCOLORVALUE kAmbient[] = {{0.1f, 0.5f, 0.1f, 1}, {0.3f, 0.3f, 0.1f, 1}};
// clang-format on

void Check(const KRN_Mesh& mesh, HRESULT result) {
    if (FAILED(result)) mesh.Error("Stage geometry failed: %s", DXGetErrorString9(result));
}

void FillGeometry(KRN_Mesh& mesh) {
    ID3DXMesh& geometry = *mesh.Geometry();
    void* data = nullptr;
    Check(mesh, geometry.LockVertexBuffer(0, &data));
    std::copy(std::begin(kVertices), std::end(kVertices), static_cast<StageVertex*>(data));
    Check(mesh, geometry.UnlockVertexBuffer());
    Check(mesh, geometry.LockIndexBuffer(0, &data));
    std::copy(std::begin(kIndices), std::end(kIndices), static_cast<WORD*>(data));
    Check(mesh, geometry.UnlockIndexBuffer());
    DWORD* groups = nullptr;
    Check(mesh, geometry.LockAttributeBuffer(0, &groups));
    std::copy(std::begin(kGroups), std::end(kGroups), groups);
    Check(mesh, geometry.UnlockAttributeBuffer());
}

}   // namespace

void BuildStageMesh(KRN_Gfx& gfx, KRN_Mesh& mesh) {
    mesh.SetNodeName("StageMesh");
    mesh.CreateGeometry(gfx, {.faces = std::size(kGroups),
                              .vertices = std::size(kVertices),
                              .groups = std::size(kAmbient),
                              .format = StageVertex::kFormat});
    FillGeometry(mesh);
    mesh.SortByGroup();
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
