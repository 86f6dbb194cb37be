// A node with geometry: an indexed triangle list whose faces are grouped by material.
//
//     KRN_Mesh mesh;
//     mesh.CreateGeometry(gfx, {.faces = 4, .vertices = 6, .groups = 2, .format = 0x112});
//     ... lock Geometry()'s buffers, write vertices, indices and one group number per face ...
//     mesh.SortByGroup();
//     mesh.Material(0).colours = ...;
//     gfx.DrawMesh(&mesh, nullptr);
#pragma once
#include <vector>

#include "gfx/vertex_list.h"
#include "platform/d3dx/d3dx_mesh.h"
#include "scene/clip_object.h"
#include "scene/object_3d.h"

namespace sparkrig {

class KRN_Gfx;

/// How one attribute group of a mesh looks.
struct MeshMaterial {
    D3DMATERIAL9 colours = {};
    float transparency = 0;   // 0 opaque to 1, which is not drawn
    bool hidden = false;      // not drawn
    bool two_sided = false;   // drawn without culling
    bool blending = false;    // drawn after every group without
};

class KRN_3dClipObject : public virtual KRN_3dObject, public KRN_ClipObject {
  protected:
    KRN_3dClipObject() = default;
    ~KRN_3dClipObject() = default;
};

class KRN_MeshBase : public KRN_3dClipObject, public KRN_VertexListBase {
  public:
    struct GeometryRequest {
        DWORD faces = 0, vertices = 0;   // at most 65535 vertices
        DWORD groups = 1;                // attribute groups, one material each
        DWORD format = 0;                // vertex format
        bool system_memory = false;
        int bones = 0;
        bool make_records = true;   // grey materials; otherwise the present ones must fit
        DWORD extra_options = 0;    // D3DXMESH_ flags; 0 or -1 for none
    };
    /// What does not fit or fails is an error of the mesh.
    void CreateGeometry(KRN_Gfx& gfx, const GeometryRequest& request);
    /// Orders faces and vertices by group. Before it the mesh has no attribute table.
    void SortByGroup();
    /// The smallest box around the vertices and the sphere around its centre; both are tested from now on.
    void ComputeBounds();
    /// Lets go of geometry and materials.
    void Clear();

    ID3DXMesh* Geometry() const { return geometry_.Get(); }
    /// Whether the hardware cannot blend its bones.
    bool SoftwareProcessing() const { return software_processing_; }
    int MaterialCount() const { return static_cast<int>(materials_.size()); }
    MeshMaterial& Material(int group) { return materials_[static_cast<std::size_t>(group)]; }
    const MeshMaterial& Material(int group) const { return materials_[static_cast<std::size_t>(group)]; }

  protected:
    KRN_MeshBase() = default;
    ~KRN_MeshBase() = default;

  private:
    DevicePtr<ID3DXMesh> geometry_;
    std::vector<MeshMaterial> materials_;   // one for each attribute group
    bool software_processing_ = false;
};

class KRN_Mesh : public KRN_MeshBase {
  public:
    KRN_Mesh() { SetName("KRN_Mesh"); }
};

}   // namespace sparkrig
