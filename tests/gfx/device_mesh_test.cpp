#include "gfx/geometry/device_mesh.h"

#include "gfx/gfx.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

std::vector<DWORD> ArgumentsOf(const RecordedGfx& gfx, const char* method) {
    for (const RecordedCall& call : gfx.recording.Calls()) {
        if (call.method == method) return call.arguments;
    }
    return {};
}

TEST(DeviceMesh, OptionsChooseThePools) {
    // clang-format off
    constexpr struct { const char* name; bool system_memory; std::size_t bones; DWORD extra, usage, pool; } kRows[] = {
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
        mesh.CreateGeometry({.faces = 4, .vertices = 6, .format = 0x112, .system_memory = row.system_memory});
        mesh.bones.resize(row.bones);
        gfx->CreateMesh(mesh, row.extra);
        EXPECT_EQ(ArgumentsOf(gfx, "CreateVertexBuffer"), (std::vector<DWORD>{6 * 32, row.usage, 0x112, row.pool}));
        EXPECT_EQ(ArgumentsOf(gfx, "CreateIndexBuffer"),
                  (std::vector<DWORD>{4 * 6, row.usage, D3DFMT_INDEX16, row.pool}));
        EXPECT_EQ(static_cast<DeviceMesh&>(*mesh.Geometry()->device).software_processing, row.bones > 4);
        mesh.Clear();
    }
}

TEST(DeviceMesh, FailuresAreTheMeshsErrors) {
    RecordedGfx gfx;
    KRN_Mesh mesh;
    mesh.SetNodeName("Roof");
    mesh.CreateGeometry({.faces = 0, .vertices = 3, .format = 0x112});
    EXPECT_EQ(ErrorOf([&] { gfx->CreateMesh(mesh); }),
              "KRN_Mesh: Roof:  D3DXCreateMeshFVF failed: D3DERR_INVALIDCALL ");
    mesh.CreateGeometry({.faces = 1, .vertices = 3, .format = 0x112});
    gfx.recording.Fail("CreateIndexBuffer", E_OUTOFMEMORY);
    EXPECT_EQ(ErrorOf([&] { gfx->CreateMesh(mesh); }), "KRN_Mesh: Roof:  D3DXCreateMeshFVF failed: E_OUTOFMEMORY ");
    gfx.Destroy();
    EXPECT_EQ(gfx.recording.LiveObjects(), 0);
}

}   // namespace
}   // namespace sparkrig
