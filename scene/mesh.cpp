#include "scene/mesh.h"

#include <algorithm>
#include <cstring>

namespace sparkrig {

namespace {

constexpr D3DCOLORVALUE kLightGrey = {0.9f, 0.9f, 0.9f, 1.0f}, kBlack = {0, 0, 0, 1};

MeshMaterial DefaultMaterial() {
    MeshMaterial material;
    material.colours = {kLightGrey, kLightGrey, kBlack, kBlack, kDefaultSpecularPower};
    return material;
}

D3DXVECTOR3 PositionOf(const MeshGeometry& geometry, std::uint32_t vertex) {
    float position[3];
    std::memcpy(position, geometry.Vertex(vertex) + geometry.layout.position, sizeof position);
    return {position[0], position[1], position[2]};
}

}   // namespace

MeshGeometry& KRN_MeshBase::CreateGeometry(const GeometryRequest& request) {
    if (request.make_records && geometry_) Clear();
    if (request.vertices > MeshGeometry::kMostVertices) {
        Error("Number of vertices too high: %i - only 65535 allowed", static_cast<int>(request.vertices));
    }
    geometry_ = std::make_shared<MeshGeometry>(request.format, request.vertices, request.faces);
    geometry_->system_memory = request.system_memory;
    if (request.make_records) {
        SetGroupCount(request.groups);
        std::ranges::fill(materials_, DefaultMaterial());
    } else if (materials_.size() != request.groups) {
        Error("nrMat does not match!");
    }
    return *geometry_;
}

void KRN_MeshBase::SetGroupCount(std::uint32_t groups) {
    materials_.resize(groups);
    textures_.resize(groups);
}

void KRN_MeshBase::SortByGroup() {
    if (!geometry_ || !geometry_->SortByGroup()) Error("OptimizeInplace failed: %s", "D3DERR_INVALIDCALL");
}

void KRN_MeshBase::ComputeBounds() {
    clip_mode = 3;
    const std::uint32_t count = geometry_ ? geometry_->VertexCount() : 0;
    box_minimum = box_maximum = count > 0 ? PositionOf(*geometry_, 0) : D3DXVECTOR3();
    for (std::uint32_t i = 1; i < count; ++i) {
        const D3DXVECTOR3 p = PositionOf(*geometry_, i);
        box_minimum = {std::min(box_minimum.x, p.x), std::min(box_minimum.y, p.y), std::min(box_minimum.z, p.z)};
        box_maximum = {std::max(box_maximum.x, p.x), std::max(box_maximum.y, p.y), std::max(box_maximum.z, p.z)};
    }
    sphere_centre = (box_minimum + box_maximum) * 0.5f;
    sphere_radius = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        sphere_radius = std::max(sphere_radius, D3DXVec3Length(PositionOf(*geometry_, i) - sphere_centre));
    }
}

void KRN_MeshBase::Clear() {
    geometry_.reset();
    SetGroupCount(0);
    influences = 0;
    bones.clear();
    bone_nodes.clear();
}

}   // namespace sparkrig
