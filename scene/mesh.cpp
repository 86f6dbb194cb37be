#include "scene/mesh.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace sparkrig {

namespace {

MeshMaterial DefaultMaterial() {
    MeshMaterial material;
    material.colours = kDefaultColours;
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
    if (request.clear_vertices) std::ranges::fill(geometry_->vertices, std::uint8_t{0});
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
        box_minimum = Smaller(box_minimum, p);
        box_maximum = Larger(box_maximum, p);
    }
    sphere_centre = (box_minimum + box_maximum) * 0.5f;
    MeasureRadius();
}

void KRN_MeshBase::MeasureRadius() {
    const std::uint32_t count = geometry_ ? geometry_->VertexCount() : 0;
    float largest = 0;   // squared
    for (std::uint32_t i = 0; i < count; ++i) {
        const D3DXVECTOR3 offset = PositionOf(*geometry_, i) - sphere_centre;
        largest = std::max(largest, D3DXVec3Dot(offset, offset));
    }
    sphere_radius = std::sqrt(largest);
}

int KRN_MeshBase::Animate(double time, bool force, bool update_parent) {
    if (visible || update_parent) {
        const double t = Loops() ? AnimationTime(time) : time;
        for (MeshMaterial& material : materials_) material.Animate(t);
        for (TextureRecord& textures : textures_) textures.Animate(t);
    }
    return KRN_3dObject::Animate(time, force, update_parent);
}

void KRN_MeshBase::Clear() {
    geometry_.reset();
    SetGroupCount(0);
    influences = 0;
    bones.clear();
    bone_nodes.clear();
}

bool KRN_Mesh::CopyMeshTo(KRN_Mesh& target, bool keep_node, bool keep_materials) const {
    if (!keep_materials) {
        target.materials_ = materials_;
        target.textures_ = textures_;
    }
    target.geometry_ = geometry_;
    if (!geometry_) return false;
    if (!keep_node) CopyNode(*this, target, true);
    static_cast<KRN_ClipObject&>(target) = *this;
    target.textured = textured;
    target.influences = influences;
    target.bones = bones;
    target.bone_nodes = bone_nodes;
    target.reflection_stage = reflection_stage;
    return true;
}

}   // namespace sparkrig
