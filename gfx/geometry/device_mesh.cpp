#include "gfx/geometry/device_mesh.h"

#include <algorithm>
#include <cstring>

namespace sparkrig {

namespace {

constexpr DWORD kSoftwareOptions = D3DXMESH_SYSTEMMEM | D3DXMESH_SOFTWAREPROCESSING;

DWORD MeshOptions(bool system_memory, DWORD extra) {
    DWORD options = system_memory ? D3DXMESH_SYSTEMMEM : D3DXMESH_MANAGED;
    if (extra == 0 || extra == static_cast<DWORD>(-1)) return options;
    if (!system_memory && (extra & D3DXMESH_DYNAMIC)) options = 0;
    return options | extra;
}

void Check(const KRN_MeshBase& mesh, HRESULT result, const char* call) {
    if (FAILED(result)) mesh.Error("%s failed: %s", call, DXGetErrorString9(result));
}

void FillBuffers(const KRN_MeshBase& mesh, ID3DXMesh& buffers) {
    const MeshGeometry& geometry = *mesh.Geometry();
    void* data = nullptr;
    Check(mesh, buffers.LockVertexBuffer(0, &data), "LockVertexBuffer");
    std::memcpy(data, geometry.vertices.data(), geometry.vertices.size());
    Check(mesh, buffers.UnlockVertexBuffer(), "UnlockVertexBuffer");
    Check(mesh, buffers.LockIndexBuffer(0, &data), "LockIndexBuffer");
    std::ranges::copy(geometry.indices, static_cast<WORD*>(data));
    Check(mesh, buffers.UnlockIndexBuffer(), "UnlockIndexBuffer");
    DWORD* groups = nullptr;
    Check(mesh, buffers.LockAttributeBuffer(0, &groups), "LockAttributeBuffer");
    std::ranges::copy(geometry.groups, groups);
    Check(mesh, buffers.UnlockAttributeBuffer(), "UnlockAttributeBuffer");
}

}   // namespace

DeviceMesh& MakeDeviceMesh(const GraphicsDevice& graphics, KRN_MeshBase& mesh, DWORD extra_options) {
    MeshGeometry& geometry = *mesh.Geometry();
    if (geometry.device) return static_cast<DeviceMesh&>(*geometry.device);
    auto made = std::make_unique<DeviceMesh>();
    made->software_processing = mesh.bones.size() > graphics.Caps().MaxVertexBlendMatrixIndex;
    const DWORD options =
        made->software_processing ? kSoftwareOptions : MeshOptions(geometry.system_memory, extra_options);
    HRESULT result = D3DXCreateMeshFVF(geometry.FaceCount(), geometry.VertexCount(), options, geometry.layout.format,
                                       graphics.Device(), made->buffers.Receive());
    if (SUCCEEDED(result) && made->buffers->GetNumBytesPerVertex() != geometry.Stride()) result = D3DERR_INVALIDCALL;
    if (FAILED(result)) mesh.Error(" D3DXCreateMeshFVF failed: %s ", DXGetErrorString9(result));
    FillBuffers(mesh, *made->buffers);
    if (!geometry.ranges.empty()) Check(mesh, made->buffers->OptimizeInplace(D3DXMESHOPT_ATTRSORT), "OptimizeInplace");
    DeviceMesh& device_mesh = *made;
    geometry.device = std::move(made);
    return device_mesh;
}

}   // namespace sparkrig
