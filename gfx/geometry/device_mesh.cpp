#include "gfx/geometry/device_mesh.h"

#include <algorithm>
#include <cstring>

#include "gfx/geometry/tangents.h"

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

constexpr int kTangentSet = 7;   // of the texture coordinates

/// With a tangent in the last coordinate set; sets that are missing before it have one float, 0.
DWORD FormatWithTangents(const VertexLayout& layout) {
    constexpr DWORD kOneFloat = 3, kFourFloats = 2;
    DWORD format = (layout.format & ~DWORD{D3DFVF_TEXCOUNT_MASK}) | (kTangentSet + 1) << D3DFVF_TEXCOUNT_SHIFT;
    for (int set = layout.texture_sets; set < kTangentSet; ++set) format |= kOneFloat << (16 + 2 * set);
    return format | kFourFloats << (16 + 2 * kTangentSet);
}

void WriteVertices(const MeshGeometry& geometry, const VertexLayout& layout, std::uint8_t* vertex) {
    const std::vector<D3DXVECTOR4> tangents =
        layout.format == geometry.layout.format ? std::vector<D3DXVECTOR4>() : ComputeTangents(geometry);
    std::memset(vertex, 0, geometry.VertexCount() * static_cast<std::size_t>(layout.stride));
    for (std::uint32_t i = 0; i < geometry.VertexCount(); ++i, vertex += layout.stride) {
        std::memcpy(vertex, geometry.Vertex(i), geometry.Stride());
        if (!tangents.empty())
            std::memcpy(vertex + layout.texture_offset[kTangentSet], &tangents[i], sizeof tangents[i]);
    }
}

void FillBuffers(const KRN_MeshBase& mesh, const VertexLayout& layout, ID3DXMesh& buffers) {
    const MeshGeometry& geometry = *mesh.Geometry();
    void* data = nullptr;
    Check(mesh, buffers.LockVertexBuffer(0, &data), "LockVertexBuffer");
    WriteVertices(geometry, layout, static_cast<std::uint8_t*>(data));
    Check(mesh, buffers.UnlockVertexBuffer(), "UnlockVertexBuffer");
    Check(mesh, buffers.LockIndexBuffer(0, &data), "LockIndexBuffer");
    std::ranges::copy(geometry.indices, static_cast<WORD*>(data));
    Check(mesh, buffers.UnlockIndexBuffer(), "UnlockIndexBuffer");
    DWORD* groups = nullptr;
    Check(mesh, buffers.LockAttributeBuffer(0, &groups), "LockAttributeBuffer");
    std::ranges::copy(geometry.groups, groups);
    Check(mesh, buffers.UnlockAttributeBuffer(), "UnlockAttributeBuffer");
}

/// Buffers of a layout that begins with what the geometry has.
DevicePtr<ID3DXMesh> MakeBuffers(const GraphicsDevice& graphics, const KRN_MeshBase& mesh, const VertexLayout& layout,
                                 DWORD options) {
    const MeshGeometry& geometry = *mesh.Geometry();
    DevicePtr<ID3DXMesh> buffers;
    HRESULT result = D3DXCreateMeshFVF(geometry.FaceCount(), geometry.VertexCount(), options, layout.format,
                                       graphics.Device(), buffers.Receive());
    if (SUCCEEDED(result) && buffers->GetNumBytesPerVertex() != static_cast<DWORD>(layout.stride))
        result = D3DERR_INVALIDCALL;
    if (FAILED(result)) mesh.Error(" D3DXCreateMeshFVF failed: %s ", DXGetErrorString9(result));
    FillBuffers(mesh, layout, *buffers);
    if (!geometry.ranges.empty()) Check(mesh, buffers->OptimizeInplace(D3DXMESHOPT_ATTRSORT), "OptimizeInplace");
    return buffers;
}

}   // namespace

DeviceMesh& MakeDeviceMesh(const GraphicsDevice& graphics, KRN_MeshBase& mesh, DWORD extra_options) {
    MeshGeometry& geometry = *mesh.Geometry();
    if (geometry.device) return static_cast<DeviceMesh&>(*geometry.device);
    auto made = std::make_unique<DeviceMesh>();
    made->software_processing = mesh.bones.size() > graphics.Caps().MaxVertexBlendMatrixIndex;
    const DWORD options =
        made->software_processing ? kSoftwareOptions : MeshOptions(geometry.system_memory, extra_options);
    made->layout = geometry.layout;
    made->buffers = MakeBuffers(graphics, mesh, made->layout, options);
    DeviceMesh& device_mesh = *made;
    geometry.device = std::move(made);
    return device_mesh;
}

void AddTangents(const GraphicsDevice& graphics, const KRN_MeshBase& mesh, DeviceMesh& device_mesh) {
    const VertexLayout& layout = mesh.Geometry()->layout;
    const bool possible = (layout.format & D3DFVF_NORMAL) && layout.texture_sets > 0 &&
                          layout.texture_sets <= kTangentSet && layout.texture_floats[0] >= 2;
    if (!possible || device_mesh.layout.format != layout.format) return;
    const VertexLayout wider = ComputeVertexLayout(FormatWithTangents(layout));
    device_mesh.buffers = MakeBuffers(graphics, mesh, wider, device_mesh.buffers->GetOptions());
    device_mesh.layout = wider;
}

}   // namespace sparkrig
