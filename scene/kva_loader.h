// Reads an exported text scene ("3DSMAX_KVAEXPORT").
#pragma once
#include <memory>
#include <vector>

#include "scene/kva_text.h"
#include "scene/mesh_builder.h"
#include "scene/scene.h"

namespace sparkrig {

/// One load. Reports carry the file's name.
class KVALoader : public KvaText {
  public:
    KVALoader(SceneLoadFlags flags, const MapFiles& files);

    /// Fills an empty scene: read, linked, its keys and meshes finished, measured, sorted. A file that ends inside a
    /// block is a warning; the scene is what was read.
    void Load(KRN_3dScene& scene, const char* file_name);

  private:
    int Version() const { return version_number_ / 100 * 256 + version_number_ % 100; }
    void ReadScene();
    void ReadSettings();
    void ReadFog();
    void ReadMaterials();
    void ReadMeshNode();
    void FinishMeshNode(KRN_Mesh& mesh, RawMesh& raw, const KVA_MeshLoadInfo& info);
    void TurnIntoHelper(KRN_Mesh& mesh);
    void FinishScene();
    void FinishKeys();
    void BuildCloneMaterials();
    void MeasureScene();
    KRN_MaterialInfo* MaterialOf(const KVA_MeshLoadInfo& info);
    void Ended(bool whole) { cut_short_ |= !whole; }

    SceneLoadFlags flags_;
    const MapFiles& files_;
    String file_name_;
    KRN_3dScene* scene_ = nullptr;   // that is being filled
    int version_number_ = 100, first_frame_ = 0, last_frame_ = 100;
    TickTimes times_;
    bool has_version_ = false, cut_short_ = false, skinned_mesh_seen_ = false;
    std::vector<std::unique_ptr<KRN_MaterialInfo>> materials_;
    std::vector<KVA_MeshLoadInfo> mesh_infos_;   // in the order of the file
};

}   // namespace sparkrig
