#include "gfx/geometry/mesh_drawer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>

#include "gfx/gfx.h"
#include "scene/mesh.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// One triangle for each group, in the plane z = 10 before the camera.
void BuildMesh(KRN_Mesh& mesh, std::uint32_t groups) {
    MeshGeometry& geometry =
        mesh.CreateGeometry({.faces = groups, .vertices = 3 * groups, .groups = groups, .format = 0x112});
    for (std::uint32_t i = 0; i < 3 * groups; ++i) {
        const float vertex[8] = {i % 3 == 1 ? 2.0f : 0.0f, i % 3 == 2 ? 2.0f : 0.0f, 10, 0, 0, -1, 0, 0};
        std::memcpy(geometry.Vertex(i), vertex, sizeof vertex);
    }
    std::iota(geometry.indices.begin(), geometry.indices.end(), std::uint16_t{0});
    std::iota(geometry.groups.begin(), geometry.groups.end(), std::uint16_t{0});
}

std::vector<UINT> DrawnFaces(const RecordedGfx& gfx) {
    std::vector<UINT> faces;
    for (const RecordedDraw& draw : gfx.recording.Draws()) faces.push_back(draw.first / 3);
    return faces;
}

struct DrawnMesh {
    explicit DrawnMesh(std::uint32_t groups) {
        BuildMesh(mesh, groups);
        mesh.SortByGroup();
        gfx->BeginScene();
        gfx.recording.ForgetCalls();
    }
    ~DrawnMesh() { mesh.Clear(); }
    RecordedGfx gfx;
    KRN_Mesh mesh;
};

TEST(DrawMesh, DrawsOpaqueGroupsBeforeBlendedOnes) {
    DrawnMesh t(6);
    t.mesh.Material(0).blending = true;
    t.mesh.Material(2).hidden = true;
    t.mesh.Material(3).transparency = 1.0f;
    t.mesh.Material(4).blending = true;
    t.mesh.Material(4).transparency = 0.5f;
    EXPECT_TRUE(t.gfx->DrawMesh(&t.mesh, nullptr));
    EXPECT_THAT(DrawnFaces(t.gfx), ElementsAre(1, 5, 0, 4));
    EXPECT_EQ(t.gfx->Statistics().meshes, 1u);
    EXPECT_EQ(t.gfx.recording.Sent(0, D3DTSS_TEXTURETRANSFORMFLAGS).size(), 1u);
}

TEST(DrawMesh, SendsEachGroupsMaterial) {
    DrawnMesh t(2);
    t.mesh.Material(1).colours.Ambient = {0.3f, 0.2f, 0.1f, 1};
    t.gfx->DrawMesh(&t.mesh, nullptr);
    D3DMATERIAL9 material = {};
    t.gfx->Device()->GetMaterial(&material);
    EXPECT_EQ(material.Ambient, (D3DCOLORVALUE{0.3f, 0.2f, 0.1f, 1}));
    EXPECT_EQ(material.Diffuse, (D3DCOLORVALUE{0.9f, 0.9f, 0.9f, 1}));
    EXPECT_EQ(t.gfx.recording.Draws()[0].texture, 0u);
}

TEST(DrawMesh, APlacedMeshKeepsItsOwnTransform) {
    DrawnMesh t(1);
    t.mesh.SetScale(3, 4, 5, true);
    D3DXMATRIX world;
    D3DXMatrixTranslation(&world, 7, 8, 9);
    t.gfx->DrawMesh(&t.mesh, &world);
    const D3DXMATRIX expected = {{{3, 0, 0, 0}, {0, 4, 0, 0}, {0, 0, 5, 0}, {7, 8, 9, 1}}};
    EXPECT_EQ(t.gfx.recording.Draws()[0].world, expected);
}

TEST(DrawMesh, AMirroredMeshTurnsCullingOverForItself) {
    DrawnMesh t(2);
    t.mesh.Material(1).two_sided = true;
    t.mesh.SetScale(-1, 2, 3, true);
    t.gfx->SetCullingMode(-1);
    t.gfx->DrawMesh(&t.mesh, nullptr);
    std::vector<DWORD> culling;
    for (const RecordedDraw& draw : t.gfx.recording.Draws()) culling.push_back(draw.render_states.at(D3DRS_CULLMODE));
    EXPECT_THAT(culling, ElementsAre(D3DCULL_CW, D3DCULL_NONE));
    EXPECT_EQ(t.gfx->CullingMode(), -1);
}

TEST(DrawMesh, WithoutAnAttributeTableItIsDrawnAsOne) {
    RecordedGfx gfx;
    KRN_Mesh mesh;
    BuildMesh(mesh, 1);
    gfx->BeginScene();
    EXPECT_TRUE(gfx->DrawMesh(&mesh, nullptr));
    EXPECT_EQ(gfx.recording.Draws().size(), 1u);
    mesh.Clear();
}

TEST(DrawMesh, NothingIsDrawnOfWhatIsNotThere) {
    RecordedGfx gfx;
    const Reports reports;
    EXPECT_FALSE(gfx->DrawMesh(nullptr, nullptr));
    EXPECT_EQ(reports.Last(), "warning KRN_Gfx: Pointer to mesh is zero");
    KRN_Mesh empty;
    EXPECT_FALSE(gfx->DrawMesh(&empty, nullptr));
    EXPECT_EQ(gfx->Statistics().meshes, 0u);
}

TEST(DrawMesh, AMeshOutOfViewIsNotDrawn) {
    DrawnMesh t(1);
    t.mesh.ComputeBounds();
    EXPECT_TRUE(t.gfx->DrawMesh(&t.mesh, nullptr));
    t.mesh.SetPosition(0, 0, -50, true);
    EXPECT_FALSE(t.gfx->DrawMesh(&t.mesh, nullptr)) << "behind the camera";
    t.mesh.clip_mode = 0;
    EXPECT_TRUE(t.gfx->DrawMesh(&t.mesh, nullptr)) << "never culled";
}

TEST(DrawMesh, WhatStandsInForTheMaterialsColours) {
    DrawnMesh t(1);
    const D3DCOLOR colour = 0x80FF3300;
    const D3DCOLORVALUE red = {1, 0.2f, 0, 128 / 255.0f}, grey = {0.9f, 0.9f, 0.9f, 1}, black = {0, 0, 0, 1};
    const D3DMATERIAL9 given = {{0.1f, 0.2f, 0.3f, 0.4f}, {0.5f, 0.6f, 0.7f, 0.8f}, black, black, 3};
    const struct {
        const char* name;
        bool lighting;
        const D3DCOLOR* colour;
        const D3DMATERIAL9* material;
        D3DCOLORVALUE diffuse, ambient, emissive;
    } kRows[] = {{"nothing", true, nullptr, nullptr, grey, grey, black},
                 {"a material", true, nullptr, &given, given.Diffuse, given.Ambient, black},
                 {"a colour", true, &colour, nullptr, red, red, black},
                 {"an unlit colour", false, &colour, &given, {0, 0, 0, red.a}, black, red}};
    for (const auto& row : kRows) {
        t.gfx->SetLighting(row.lighting, nullptr);
        t.gfx->SetColourOverride(row.colour);
        t.gfx->DrawMesh(&t.mesh, nullptr, row.material);
        D3DMATERIAL9 material = {};
        t.gfx->Device()->GetMaterial(&material);
        EXPECT_EQ(material.Diffuse, row.diffuse) << row.name;
        EXPECT_EQ(material.Ambient, row.ambient) << row.name;
        EXPECT_EQ(material.Emissive, row.emissive) << row.name;
        EXPECT_EQ(t.gfx->Lighting(), row.lighting) << row.name;
        EXPECT_TRUE(t.gfx.recording.Draws().back().render_states.at(D3DRS_LIGHTING)) << row.name;
    }
}

TEST(DrawMesh, IsCountedOnlyWhileDrawsAreSuppressed) {
    DrawnMesh t(1);
    t.gfx->SuppressDraws(true);
    EXPECT_TRUE(t.gfx->DrawMesh(&t.mesh, nullptr));
    EXPECT_THAT(t.gfx.recording.Draws(), IsEmpty());
}

}   // namespace
}   // namespace sparkrig
