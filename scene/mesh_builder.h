// From geometry as modelling packages store it to geometry that can be drawn: each point becomes as many vertices as
// its smoothing groups, materials and texture coordinates ask for; normals are weighted by angles; the materials in use
// become groups of faces.
#pragma once
#include <vector>

#include "scene/material_info.h"
#include "scene/mesh.h"
#include "scene/raw_mesh.h"

namespace sparkrig {

/// What a mesh was built with: its clones need it.
struct KVA_MeshLoadInfo {
    int material_reference = -1;           // -1 for none
    std::vector<int> submaterial_groups;   // the group of each submaterial, -1 for one without faces
    std::uint32_t groups = 1;
    D3DCOLORVALUE wireframe = {1, 1, 1, 1};
    KRN_Mesh* mesh = nullptr;
};

/// What building takes from the scene around the mesh.
struct MeshBuildContext {
    const ErrorClass& reporter;
    SceneLoadFlags flags;
};

/// Builds the geometry of a mesh whose bones are known, with one default material a group. `material`: null for none;
/// its maps have been loaded. Fills the groups of `info`.
void BuildMesh(const MeshBuildContext& context, RawMesh& raw, KRN_MaterialInfo* material, KRN_Mesh& mesh,
               KVA_MeshLoadInfo& info);

/// Gives the groups of a mesh the records of its material, or of the wireframe colour.
void SetGroupMaterials(KRN_MaterialInfo* material, const KVA_MeshLoadInfo& info, KRN_Mesh& mesh);

/// The same for a clone: it has as many groups as `source`, the info of the mesh that its geometry is from.
void SetCloneMaterials(KRN_MaterialInfo* material, const KVA_MeshLoadInfo& info, const KVA_MeshLoadInfo& source,
                       KRN_Mesh& clone);

}   // namespace sparkrig
