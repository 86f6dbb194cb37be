#include <algorithm>

#include "platform/d3dx/d3dx_mesh.h"
#include "tests/support/recording.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

struct Device {
    DevicePtr<ID3DXMesh> MakeMesh(DWORD faces, DWORD vertices, DWORD options = D3DXMESH_MANAGED, DWORD fvf = 0x42) {
        DevicePtr<ID3DXMesh> mesh;
        result = D3DXCreateMeshFVF(faces, vertices, options, fvf, device.Get(), mesh.Receive());
        return mesh;
    }
    Recording recording;
    DevicePtr<IDirect3DDevice9> device = recording.MakeDevice();
    HRESULT result = D3D_OK;
};

template <class Index>
void Write(ID3DXMesh& mesh, const std::vector<Index>& indices, const std::vector<DWORD>& attributes) {
    void* data = nullptr;
    ASSERT_EQ(mesh.LockIndexBuffer(0, &data), D3D_OK);
    std::ranges::copy(indices, static_cast<Index*>(data));
    mesh.UnlockIndexBuffer();
    DWORD* faces = nullptr;
    ASSERT_EQ(mesh.LockAttributeBuffer(0, &faces), D3D_OK);
    std::ranges::copy(attributes, faces);
    mesh.UnlockAttributeBuffer();
    ASSERT_EQ(mesh.LockVertexBuffer(0, &data), D3D_OK);
    for (DWORD i = 0; i < mesh.GetNumVertices(); ++i) static_cast<float*>(data)[4 * i] = static_cast<float>(i);
    mesh.UnlockVertexBuffer();
}

/// For each index the vertex that it named at first, told by the vertex's x.
template <class Index>
std::vector<int> Named(ID3DXMesh& mesh) {
    void *indices = nullptr, *vertices = nullptr;
    mesh.LockIndexBuffer(0, &indices);
    mesh.LockVertexBuffer(0, &vertices);
    std::vector<int> named;
    for (DWORD i = 0; i < 3 * mesh.GetNumFaces(); ++i) {
        const Index index = static_cast<const Index*>(indices)[i];
        named.push_back(static_cast<int>(static_cast<const float*>(vertices)[4 * index]));
    }
    mesh.UnlockVertexBuffer();
    mesh.UnlockIndexBuffer();
    return named;
}

/// Attribute, first face, faces, first vertex, vertices.
std::vector<std::array<DWORD, 5>> Table(ID3DXMesh& mesh) {
    DWORD size = 0;
    mesh.GetAttributeTable(nullptr, &size);
    std::vector<std::array<DWORD, 5>> rows(size);
    static_assert(sizeof(rows[0]) == sizeof(D3DXATTRIBUTERANGE));
    mesh.GetAttributeTable(reinterpret_cast<D3DXATTRIBUTERANGE*>(rows.data()), &size);
    return rows;
}

TEST(D3dxMesh, SortsFacesAndVerticesByAttribute) {
    Device t;
    const DevicePtr<ID3DXMesh> mesh = t.MakeMesh(4, 8);
    ASSERT_TRUE(mesh);
    // Vertex 0 is unused, vertices 4 and 5 belong to two attributes.
    Write<WORD>(*mesh, {1, 2, 3, 4, 5, 6, 5, 4, 7, 3, 2, 1}, {7, 2, 5, 7});
    EXPECT_TRUE(Table(*mesh).empty());
    for (int sorted = 0; sorted < 2; ++sorted) ASSERT_EQ(mesh->OptimizeInplace(D3DXMESHOPT_ATTRSORT), D3D_OK);
    EXPECT_THAT(Named<WORD>(*mesh), ElementsAre(4, 5, 6, 5, 4, 7, 1, 2, 3, 3, 2, 1));
    EXPECT_EQ(Table(*mesh), (std::vector<std::array<DWORD, 5>>{{2, 0, 1, 0, 3}, {5, 1, 1, 0, 4}, {7, 2, 2, 4, 3}}));
    EXPECT_EQ(mesh->GetNumVertices(), 8u);
}

TEST(D3dxMesh, WideIndicesAreSortedAlike) {
    Device t;
    const DevicePtr<ID3DXMesh> mesh = t.MakeMesh(2, 70000, D3DXMESH_32BIT | D3DXMESH_SYSTEMMEM);
    ASSERT_TRUE(mesh);
    Write<DWORD>(*mesh, {69999, 2, 3, 4, 5, 66000}, {1, 0});
    ASSERT_EQ(mesh->OptimizeInplace(D3DXMESHOPT_ATTRSORT), D3D_OK);
    EXPECT_THAT(Named<DWORD>(*mesh), ElementsAre(4, 5, 66000, 69999, 2, 3));
}

TEST(D3dxMesh, DrawsTheFacesOfAnAttribute) {
    Device t;
    const DevicePtr<ID3DXMesh> mesh = t.MakeMesh(3, 4);
    Write<WORD>(*mesh, {0, 1, 2, 1, 2, 3, 3, 2, 1}, {4, 0, 4});
    t.device->BeginScene();
    t.recording.ForgetCalls();
    EXPECT_EQ(mesh->DrawSubset(4), D3D_OK);
    EXPECT_EQ(t.recording.Count("DrawIndexedPrimitive"), 2) << "two runs while unsorted";
    mesh->OptimizeInplace(D3DXMESHOPT_ATTRSORT);
    t.recording.ForgetCalls();
    EXPECT_EQ(mesh->DrawSubset(4), D3D_OK);
    EXPECT_EQ(t.recording.Calls().back().arguments, (std::vector<DWORD>{D3DPT_TRIANGLELIST, 0, 0, 4, 3, 2}));
    EXPECT_EQ(mesh->DrawSubset(9), D3D_OK);
    EXPECT_EQ(t.recording.Count("DrawIndexedPrimitive"), 1) << "no such attribute";
    for (const char* method : {"SetStreamSource", "SetFVF", "SetIndices", "DrawIndexedPrimitive"}) {
        t.recording.Fail(method, E_FAIL);
        EXPECT_EQ(mesh->DrawSubset(4), E_FAIL) << method;
    }
}

TEST(D3dxMesh, RefusesWhatCannotBe) {
    Device t;
    constexpr std::array<DWORD, 4> kRefused[] = {// faces, vertices, options, format
                                                 {0, 3, 0, 0x42},
                                                 {1, 0, 0, 0x42},
                                                 {1, 3, 0, 0},
                                                 {1, 3, 0, 0x1C4},
                                                 {1, 65537, 0, 0x42}};
    for (const auto& [faces, vertices, options, fvf] : kRefused) {
        EXPECT_FALSE(t.MakeMesh(faces, vertices, options, fvf)) << faces << " " << vertices << " " << fvf;
        EXPECT_EQ(t.result, D3DERR_INVALIDCALL);
    }
    for (const auto& [faces, vertices] : {std::pair{0x20000000u, 3u}, {1u, 0x20000000u}}) {
        EXPECT_FALSE(t.MakeMesh(faces, vertices, D3DXMESH_32BIT));
        EXPECT_EQ(t.result, E_OUTOFMEMORY);
    }
    for (const char* method : {"CreateVertexBuffer", "CreateIndexBuffer"}) {
        t.recording.Fail(method, D3DERR_OUTOFVIDEOMEMORY);
        EXPECT_FALSE(t.MakeMesh(1, 3));
        EXPECT_EQ(t.result, D3DERR_OUTOFVIDEOMEMORY);
    }
    t.device.Reset();
    EXPECT_EQ(t.recording.LiveObjects(), 0);
}

TEST(D3dxMesh, IsNotSortedWhileLockedNorWithWrongIndices) {
    Device t;
    const DevicePtr<ID3DXMesh> mesh = t.MakeMesh(1, 3);
    Write<WORD>(*mesh, {0, 1, 3}, {0});
    EXPECT_EQ(mesh->OptimizeInplace(D3DXMESHOPT_ATTRSORT), D3DXERR_INVALIDMESH);
    Write<WORD>(*mesh, {0, 1, 2}, {0});
    DWORD* attributes = nullptr;
    mesh->LockAttributeBuffer(0, &attributes);
    EXPECT_EQ(mesh->OptimizeInplace(D3DXMESHOPT_ATTRSORT), D3DERR_INVALIDCALL);
    mesh->UnlockAttributeBuffer();
    EXPECT_EQ(mesh->UnlockAttributeBuffer(), D3DERR_INVALIDCALL);
    EXPECT_EQ(mesh->OptimizeInplace(D3DXMESHOPT_ATTRSORT), D3D_OK);
}

}   // namespace
}   // namespace sparkrig
