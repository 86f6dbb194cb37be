// An indexed triangle list with one attribute number per face.
#pragma once
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

inline constexpr DWORD D3DXMESH_32BIT = 0x1, D3DXMESH_SYSTEMMEM = 0x110, D3DXMESH_MANAGED = 0x220,
                       D3DXMESH_WRITEONLY = 0x440, D3DXMESH_DYNAMIC = 0x880, D3DXMESH_SOFTWAREPROCESSING = 0x18000;
inline constexpr DWORD D3DXMESHOPT_ATTRSORT = 0x02000000;

struct D3DXATTRIBUTERANGE {
    DWORD AttribId, FaceStart, FaceCount, VertexStart, VertexCount;
};

class ID3DXMesh : public IUnknown {
  public:
    virtual DWORD GetNumFaces() = 0;
    virtual DWORD GetNumVertices() = 0;
    virtual DWORD GetFVF() = 0;
    virtual DWORD GetNumBytesPerVertex() = 0;
    virtual DWORD GetOptions() = 0;
    virtual HRESULT LockVertexBuffer(DWORD flags, void** data) = 0;
    virtual HRESULT UnlockVertexBuffer() = 0;
    virtual HRESULT LockIndexBuffer(DWORD flags, void** data) = 0;
    virtual HRESULT UnlockIndexBuffer() = 0;
    virtual HRESULT LockAttributeBuffer(DWORD flags, DWORD** data) = 0;
    virtual HRESULT UnlockAttributeBuffer() = 0;
    virtual HRESULT GetVertexBuffer(IDirect3DVertexBuffer9** buffer) = 0;
    virtual HRESULT GetIndexBuffer(IDirect3DIndexBuffer9** buffer) = 0;
    /// With a null table only the number of entries is given. There are none before an attribute sort.
    virtual HRESULT GetAttributeTable(D3DXATTRIBUTERANGE* table, DWORD* size) = 0;
    /// Only D3DXMESHOPT_ATTRSORT acts: faces by attribute, vertices by the lowest attribute that uses them; stable.
    virtual HRESULT OptimizeInplace(DWORD flags) = 0;
    virtual HRESULT DrawSubset(DWORD attribute) = 0;
};

HRESULT D3DXCreateMeshFVF(DWORD faces, DWORD vertices, DWORD options, DWORD fvf, IDirect3DDevice9* device,
                          ID3DXMesh** mesh);

}   // namespace sparkrig
