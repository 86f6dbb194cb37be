// A node with geometry: an indexed triangle list whose faces are grouped by material. Plain data; drawing it makes what
// a device needs.
//
//     KRN_Mesh mesh;
//     MeshGeometry& geometry = mesh.CreateGeometry({.faces = 4, .vertices = 6, .groups = 2, .format = 0x112});
//     ... write its vertices, indices and one group number per face ...
//     mesh.SortByGroup();
//     mesh.ComputeBounds();
//     mesh.Material(0).colours = ...;
//     gfx.DrawMesh(&mesh, nullptr);
#pragma once
#include <memory>
#include <vector>

#include "scene/clip_object.h"
#include "scene/mesh_geometry.h"
#include "scene/mesh_material.h"
#include "scene/object_3d.h"
#include "scene/vertex_list_base.h"

namespace sparkrig {

class KRN_3dClipObject : public virtual KRN_3dObject, public KRN_ClipObject {
  protected:
    KRN_3dClipObject() = default;
    ~KRN_3dClipObject() override = default;
};

/// A bone that moves a mesh. Vertices name it by its place in the mesh's list.
struct KRN_BoneInfo {
    String name;
    D3DXMATRIX initial = kIdentityMatrix;        // of the bone
    D3DXMATRIX mesh_initial = kIdentityMatrix;   // of the mesh
    D3DXMATRIX offset = kIdentityMatrix;         // mesh_initial x initial
};

class KRN_MeshBase : public KRN_3dClipObject, public KRN_VertexListBase {
  public:
    struct GeometryRequest {
        std::uint32_t faces = 0, vertices = 0;   // at most 65535 vertices
        std::uint32_t groups = 1;                // attribute groups, one material each
        DWORD format = 0;                        // vertex format
        bool system_memory = false;
        bool clear_vertices = true;   // to zeros; otherwise their bytes are the caller's to write
        bool make_records = true;     // grey materials; otherwise the present ones must fit
    };
    /// Geometry of zeros, to be filled. What does not fit is an error of the mesh.
    MeshGeometry& CreateGeometry(const GeometryRequest& request);
    /// Orders faces and vertices by group. Before it the mesh has no ranges.
    void SortByGroup();
    /// The smallest box around the vertices and the sphere around its centre; both are tested from now on.
    void ComputeBounds();
    /// The distance of the farthest vertex from the sphere's centre.
    void MeasureRadius();
    /// Lets go of geometry, materials and skin.
    void Clear();

    /// A visible mesh's materials and maps move first.
    int Animate(double time, bool force, bool update_parent) override;

    /// Null for none.
    MeshGeometry* Geometry() const { return geometry_.get(); }
    /// Draws another mesh's from now on.
    void ShareGeometry(const KRN_MeshBase& source) { geometry_ = source.geometry_; }
    void SetGroupCount(std::uint32_t groups);
    int MaterialCount() const { return static_cast<int>(materials_.size()); }
    MeshMaterial& Material(int group) { return materials_[static_cast<std::size_t>(group)]; }
    const MeshMaterial& Material(int group) const { return materials_[static_cast<std::size_t>(group)]; }
    TextureRecord& Textures(int group) { return textures_[static_cast<std::size_t>(group)]; }
    const TextureRecord& Textures(int group) const { return textures_[static_cast<std::size_t>(group)]; }

    bool visible = true;
    bool textured = false;       // it has texture coordinates
    int uses_blending = -1;      // 0 or 1 once it is known
    String clone_source;         // the mesh whose geometry it shares; empty for none
    int reflection_stage = -1;   // of its reflection map; -1 for none
    int influences = 0;          // bones a vertex; 0 for a rigid mesh
    std::vector<KRN_BoneInfo> bones;
    std::vector<KRN_3dObject*> bone_nodes;   // one for each bone, borrowed; null where there is none

  protected:
    KRN_MeshBase() = default;
    ~KRN_MeshBase() override = default;

  private:
    friend class KRN_Mesh;
    std::shared_ptr<MeshGeometry> geometry_;
    // One each for each attribute group
    std::vector<MeshMaterial> materials_;
    std::vector<TextureRecord> textures_;
};

class KRN_Mesh : public KRN_MeshBase {
  public:
    KRN_Mesh() { SetName("KRN_Mesh"); }
    ~KRN_Mesh() override = default;
    void Write(File& file) const override;
    int Reserved(std::uint32_t) override { return 1; }
    /// Makes `target` draw this mesh's geometry, with its bones, volume and what else belongs to it. What is kept of
    /// the target: its node or none of it, its materials or none. False, and a target without geometry, when this mesh
    /// has none.
    bool CopyMeshTo(KRN_Mesh& target, bool keep_node, bool keep_materials) const;
};

}   // namespace sparkrig
