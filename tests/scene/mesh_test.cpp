#include "scene/mesh.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

std::vector<DWORD> ArgumentsOf(const RecordedGfx& gfx, const char* method) {
    for (const RecordedCall& call : gfx.recording.Calls()) {
        if (call.method == method) return call.arguments;
    }
    return {};
}

TEST(Mesh, OptionsChooseThePools) {
    // clang-format off
    constexpr struct { const char* name; bool system_memory; int bones; DWORD extra, usage, pool; } kRows[] = {
        {"managed", false, 0, 0, 0, D3DPOOL_MANAGED},
        {"no extra options", false, 0, static_cast<DWORD>(-1), 0, D3DPOOL_MANAGED},
        {"write only", false, 0, D3DXMESH_WRITEONLY, D3DUSAGE_WRITEONLY, D3DPOOL_MANAGED},
        {"dynamic", false, 0, D3DXMESH_DYNAMIC, D3DUSAGE_DYNAMIC, D3DPOOL_DEFAULT},
        {"system memory", true, 0, D3DXMESH_DYNAMIC, D3DUSAGE_DYNAMIC, D3DPOOL_SYSTEMMEM},
        {"bones that fit", false, 4, 0, 0, D3DPOOL_MANAGED},
        {"too many bones", false, 5, D3DXMESH_DYNAMIC, D3DUSAGE_SOFTWAREPROCESSING, D3DPOOL_SYSTEMMEM},
    };
    // clang-format on
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.name);
        RecordedGfx gfx(RecordedGfx::State::Constructed);
        gfx.recording.caps.MaxVertexBlendMatrixIndex = 4;
        gfx.Init();
        KRN_Mesh mesh;
        mesh.CreateGeometry(*gfx, {.faces = 4,
                                   .vertices = 6,
                                   .groups = 2,
                                   .format = 0x112,
                                   .system_memory = row.system_memory,
                                   .bones = row.bones,
                                   .extra_options = row.extra});
        EXPECT_EQ(ArgumentsOf(gfx, "CreateVertexBuffer"), (std::vector<DWORD>{6 * 32, row.usage, 0x112, row.pool}));
        EXPECT_EQ(ArgumentsOf(gfx, "CreateIndexBuffer"),
                  (std::vector<DWORD>{4 * 6, row.usage, D3DFMT_INDEX16, row.pool}));
        EXPECT_EQ(mesh.SoftwareProcessing(), row.bones > 4);
        mesh.Clear();
    }
}

TEST(Mesh, GetsOneGreyMaterialForEachGroup) {
    RecordedGfx gfx;
    KRN_Mesh mesh;
    mesh.CreateGeometry(*gfx, {.faces = 4, .vertices = 6, .groups = 3, .format = 0x112});
    ASSERT_EQ(mesh.MaterialCount(), 3);
    EXPECT_EQ(mesh.Material(2).colours.Diffuse, (D3DCOLORVALUE{0.9f, 0.9f, 0.9f, 1}));
    EXPECT_EQ(mesh.Material(2).colours.Specular, (D3DCOLORVALUE{0, 0, 0, 1}));
    mesh.Material(1).two_sided = true;
    mesh.CreateGeometry(*gfx, {.faces = 1, .vertices = 3, .groups = 3, .format = 0x112, .make_records = false});
    EXPECT_TRUE(mesh.Material(1).two_sided) << "kept";
    EXPECT_EQ(ErrorOf([&] {
                  mesh.CreateGeometry(*gfx,
                                      {.faces = 1, .vertices = 3, .groups = 2, .format = 0x112, .make_records = false});
              }),
              "KRN_Mesh: *undefined*: nrMat does not match!");
    mesh.CreateGeometry(*gfx, {.faces = 1, .vertices = 3, .groups = 2, .format = 0x112});
    EXPECT_FALSE(mesh.Material(1).two_sided) << "cleared first";
    mesh.Clear();
}

TEST(Mesh, FailuresAreErrors) {
    RecordedGfx gfx;
    KRN_Mesh mesh;
    mesh.SetNodeName("Roof");
    EXPECT_EQ(ErrorOf([&] { mesh.CreateGeometry(*gfx, {.faces = 1, .vertices = 65536, .format = 0x112}); }),
              "KRN_Mesh: Roof: Number of vertices too high: 65536 - only 65535 allowed");
    EXPECT_EQ(ErrorOf([&] { mesh.CreateGeometry(*gfx, {.faces = 0, .vertices = 3, .format = 0x112}); }),
              "KRN_Mesh: Roof:  D3DXCreateMeshFVF failed: D3DERR_INVALIDCALL ");
    EXPECT_EQ(ErrorOf([&] { mesh.SortByGroup(); }), "KRN_Mesh: Roof: OptimizeInplace failed: D3DERR_INVALIDCALL");
    EXPECT_EQ(ErrorOf([&] { mesh.ComputeBounds(); }), "KRN_Mesh: Roof: LockVertexBuffer failed: D3DERR_INVALIDCALL");
    gfx.recording.Fail("CreateIndexBuffer", E_OUTOFMEMORY);
    EXPECT_EQ(ErrorOf([&] { mesh.CreateGeometry(*gfx, {.faces = 1, .vertices = 3, .format = 0x112}); }),
              "KRN_Mesh: Roof:  D3DXCreateMeshFVF failed: E_OUTOFMEMORY ");
    gfx.Destroy();
    EXPECT_EQ(gfx.recording.LiveObjects(), 0);
}

TEST(Mesh, BoundsHoldItsVertices) {
    RecordedGfx gfx;
    KRN_Mesh mesh;
    mesh.CreateGeometry(*gfx, {.faces = 1, .vertices = 3, .format = 0x112});
    constexpr float kPoints[3][3] = {{-3, 5, 2}, {7, -1, 4}, {1, 2, 10}};
    void* data = nullptr;
    mesh.Geometry()->LockVertexBuffer(0, &data);
    for (int i = 0; i < 3; ++i) std::copy_n(kPoints[i], 3, static_cast<float*>(data) + 8 * i);
    mesh.Geometry()->UnlockVertexBuffer();
    mesh.ComputeBounds();
    EXPECT_EQ(mesh.clip_mode, 3u);
    EXPECT_EQ(mesh.box_minimum, D3DXVECTOR3(-3, -1, 2));
    EXPECT_EQ(mesh.box_maximum, D3DXVECTOR3(7, 5, 10));
    EXPECT_EQ(mesh.sphere_centre, D3DXVECTOR3(2, 2, 6));
    EXPECT_NEAR(mesh.sphere_radius, std::sqrt(25.0f + 9 + 16), 1e-5f);
    mesh.Clear();
}

}   // namespace
}   // namespace sparkrig
