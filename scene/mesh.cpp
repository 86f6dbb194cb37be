#include "scene/mesh.h"

#include <algorithm>

#include "gfx/gfx.h"

namespace sparkrig {

namespace {

constexpr DWORD kMostVertices = 65535;
constexpr DWORD kSoftwareOptions = D3DXMESH_SYSTEMMEM | D3DXMESH_SOFTWAREPROCESSING;
constexpr D3DCOLORVALUE kLightGrey = {0.9f, 0.9f, 0.9f, 1.0f}, kBlack = {0, 0, 0, 1};

MeshMaterial DefaultMaterial() {
    MeshMaterial material;
    material.colours = {kLightGrey, kLightGrey, kBlack, kBlack, kDefaultSpecularPower};
    return material;
}

DWORD MeshOptions(bool system_memory, DWORD extra) {
    DWORD options = system_memory ? D3DXMESH_SYSTEMMEM : D3DXMESH_MANAGED;
    if (extra == 0 || extra == static_cast<DWORD>(-1)) return options;
    if (!system_memory && (extra & D3DXMESH_DYNAMIC)) options = 0;
    return options | extra;
}

}   // namespace

void KRN_MeshBase::CreateGeometry(KRN_Gfx& gfx, const GeometryRequest& request) {
    if (request.make_records && geometry_) Clear();
    if (request.vertices > kMostVertices) {
        Error("Number of vertices too high: %i - only 65535 allowed", static_cast<int>(request.vertices));
    }
    software_processing_ =
        request.bones > 0 && static_cast<DWORD>(request.bones) > gfx.Caps().MaxVertexBlendMatrixIndex;
    const DWORD options =
        software_processing_ ? kSoftwareOptions : MeshOptions(request.system_memory, request.extra_options);
    const HRESULT result =
        D3DXCreateMeshFVF(request.faces, request.vertices, options, request.format, gfx.Device(), geometry_.Receive());
    if (FAILED(result)) Error(" D3DXCreateMeshFVF failed: %s ", DXGetErrorString9(result));
    if (request.make_records) {
        materials_.assign(request.groups, DefaultMaterial());
    } else if (materials_.size() != request.groups) {
        Error("nrMat does not match!");
    }
}

void KRN_MeshBase::SortByGroup() {
    const HRESULT result = geometry_ ? geometry_->OptimizeInplace(D3DXMESHOPT_ATTRSORT) : D3DERR_INVALIDCALL;
    if (FAILED(result)) Error("OptimizeInplace failed: %s", DXGetErrorString9(result));
}

void KRN_MeshBase::ComputeBounds() {
    void* data = nullptr;
    const HRESULT result = geometry_ ? geometry_->LockVertexBuffer(D3DLOCK_READONLY, &data) : D3DERR_INVALIDCALL;
    if (FAILED(result)) Error("LockVertexBuffer failed: %s", DXGetErrorString9(result));
    const DWORD count = geometry_->GetNumVertices(), stride = geometry_->GetNumBytesPerVertex();
    const auto position = [&](DWORD i) {
        return *reinterpret_cast<const D3DVECTOR*>(static_cast<const BYTE*>(data) +
                                                   static_cast<std::size_t>(i) * stride);
    };
    box_minimum = box_maximum = position(0);
    for (DWORD i = 1; i < count; ++i) {
        const D3DVECTOR p = position(i);
        box_minimum = {std::min(box_minimum.x, p.x), std::min(box_minimum.y, p.y), std::min(box_minimum.z, p.z)};
        box_maximum = {std::max(box_maximum.x, p.x), std::max(box_maximum.y, p.y), std::max(box_maximum.z, p.z)};
    }
    sphere_centre = (box_minimum + box_maximum) * 0.5f;
    sphere_radius = 0;
    for (DWORD i = 0; i < count; ++i) {
        const D3DXVECTOR3 offset = D3DXVECTOR3(position(i)) - sphere_centre;
        sphere_radius = std::max(sphere_radius, D3DXVec3Length(offset));
    }
    const HRESULT unlocked = geometry_->UnlockVertexBuffer();
    if (FAILED(unlocked)) Error("UnlockVertexBuffer failed: %s", DXGetErrorString9(unlocked));
    clip_mode = 3;
}

void KRN_MeshBase::Clear() {
    geometry_.Reset();
    materials_.clear();
    software_processing_ = false;
}

}   // namespace sparkrig
