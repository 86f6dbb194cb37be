#include "scene/kva_loader.h"

#include <bit>
#include <string>
#include <unordered_map>

#include "base/numeric.h"
#include "scene/kva_materials.h"
#include "scene/kva_mesh.h"
#include "scene/kva_nodes.h"

namespace sparkrig {

namespace {

constexpr std::size_t kLongestCloneLine = 4096;   // of clones of clones; a longer one counts as a ring

/// A colour of a file, its components 0 to 1.
void ReadByteColour(KvaText& text, D3DCOLOR& colour) {
    float rgb[3];
    if (!text.Triple(rgb)) return;
    colour = 0xFF;
    for (const float component : rgb) colour = colour << 8 | (static_cast<D3DCOLOR>(Round(component * 255.0f)) & 0xFF);
}

}   // namespace

KVALoader::KVALoader(SceneLoadFlags flags, const MapFiles& files) : flags_(flags), files_(files) {
    SetName("KVALoader");
}

void KVALoader::Load(KRN_3dScene& scene, const char* file_name) {
    scene_ = &scene;
    file_name_ = file_name;
    scene.SetNodeName(file_name);
    Open(file_name, true);
    ReadScene();
    FinishScene();
}

// ---- Reading

/// Groups are no level of their own: their braces are counted, however deep they nest.
void KVALoader::ReadScene() {
    int open_groups = 0;
    const auto version = [this] { has_version_ |= Integer(version_number_); };
    const auto group = [&] {
        ExpectChar('{');
        ++open_groups;
    };
    const auto helper = [this](ObjectKind kind) {
        KRN_3dObject& node = scene_->helpers.Add();
        node.SetKind(kind);
        Ended(ReadHelper(*this, node, file_name_.c_str()));
    };
    const auto camera = [this] {
        KRN_Camera& node = scene_->cameras.Add();
        node.SetKind(ObjectKind::Camera);
        Ended(ReadCamera(*this, node, file_name_.c_str()));
    };
    const auto light = [this] {
        KRN_Light& node = scene_->lights.Add();
        node.SetKind(ObjectKind::Light);
        Ended(ReadLight(*this, node, file_name_.c_str()));
    };
    TopLevel({{"3DSMAX_KVAEXPORT", version},
              {"SCENE", [this] { ReadSettings(); }},
              {"MATERIAL_LIST", [this] { ReadMaterials(); }},
              {"GEOMOBJECT", [this] { ReadMeshNode(); }},
              {"GROUP", group},
              {"CAMERAOBJECT", camera},
              {"BONEOBJECT", [&] { helper(ObjectKind::Bone); }},
              {"HELPEROBJECT", [&] { helper(ObjectKind::Helper); }},
              {"TARGETOBJECT", [&] { helper(ObjectKind::Helper); }},
              {"LIGHTOBJECT", light},
              {"ATMOSPHERIC", [this] { ReadFog(); }}},
             open_groups);
    if (cut_short_ || open_groups > 0) Warning("Encountered unexpected end of file at pos %i", Tell());
    if (!has_version_) Warning("No version: not an exported scene");
}

void KVALoader::ReadSettings() {
    KRN_3dScene& scene = *scene_;
    MapInfo environment;
    TextureAddressing addressing;
    Ended(Block({{"SCENE_FIRSTFRAME", [&] { Integer(first_frame_); }},
                 {"SCENE_LASTFRAME", [&] { Integer(last_frame_); }},
                 {"SCENE_FRAMESPEED", [&] { Number(times_.frames_per_second); }},
                 {"SCENE_TICKSPERFRAME", [&] { Number(times_.ticks_per_frame); }},
                 {"SCENE_BACKGROUND_STATIC", [&] { ReadByteColour(*this, scene.background); }},
                 {"SCENE_AMBIENT_STATIC", [&] { ReadByteColour(*this, scene.ambient); }},
                 {"SCENE_ENVMAP", [&] { ReadMap(*this, addressing, environment); }},
                 {"SCENE_SOUNDFILE", [&] { Text(scene.header.sound); }}}));
    times_.first_frame = static_cast<float>(first_frame_);
    if (environment.file.GetLength() == 0 || flags_.skip_textures) return;
    const std::string path = files_.Find(environment.file.c_str());
    if (path.empty()) return Warning("Can not open environment texture file %s", environment.file.c_str());
    MapSlot& slot = scene.environment.emplace().slots[0];
    slot.file = environment.file;
    slot.path = path.c_str();
    slot.role = MapRole::Diffuse;
}

void KVALoader::ReadFog() {
    auto& words = scene_->render_settings.words;
    const auto fog = [&] {
        words[RenderSettings::kFogOn] = 1;
        Block({{"FOG_COLOR", [&] { ReadByteColour(*this, words[RenderSettings::kFogColour]); }}});
    };
    Ended(Block({{"STDFOG", fog}}));
}

void KVALoader::ReadMaterials() {
    Ended(ReadMaterialList(*this, Version(), materials_));
    if (materials_.empty()) materials_.push_back(std::make_unique<KRN_MaterialInfo>());
    for (const auto& material : materials_) FinaliseMaterial(*material, times_, flags_);
}

void KVALoader::ReadMeshNode() {
    KRN_Mesh& mesh = scene_->meshes.Add();
    mesh.SetKind(ObjectKind::Mesh);
    RawMesh raw;
    KVA_MeshLoadInfo info;
    info.mesh = &mesh;
    float wireframe[3] = {1, 1, 1};
    const auto read_visible = [&] {
        int visible = 1;
        if (Integer(visible)) mesh.visible = visible != 0;
    };
    const auto read_mesh = [&] {
        if (mesh.clone_source.GetLength() > 0) return;   // skipped
        raw = {};
        ReadMesh(*this, Version(), mesh, raw);
    };
    const bool whole = Block({{"NODE_NAME", [&] { ReadNodeName(*this, mesh); }},
                              {"NODE_PARENT", [&] { ReadParentName(*this, mesh); }},
                              {"NODE_TM", [&] { ReadRestPose(*this, mesh); }},
                              {"PIVOT_TM", [&] { ReadPivot(*this, mesh); }},
                              {"TM_ANIMATION", [&] { ReadTracks(*this, mesh, file_name_.c_str()); }},
                              {"NODE_VISIBLE", read_visible},
                              {"CLONE", [&] { Text(mesh.clone_source); }},
                              {"MESH", read_mesh},
                              {"MATERIAL_REF", [&] { Integer(info.material_reference); }},
                              {"WIREFRAME_COLOR", [&] { Triple(wireframe); }}});
    info.wireframe = {wireframe[0], wireframe[1], wireframe[2], 1};
    Ended(whole);
    if (!whole && mesh.clone_source.GetLength() == 0) return TurnIntoHelper(mesh);   // there is no telling what lacks
    FinishMeshNode(mesh, raw, info);
}

void KVALoader::FinishMeshNode(KRN_Mesh& mesh, RawMesh& raw, const KVA_MeshLoadInfo& info) {
    const bool is_clone = mesh.clone_source.GetLength() > 0;
    if (!is_clone && raw.faces.empty()) return TurnIntoHelper(mesh);
    if (!is_clone && version_number_ / 100 == 1) mesh.SetPivotMatrix(kIdentityMatrix);
    KVA_MeshLoadInfo& kept = mesh_infos_.emplace_back(info);
    if (is_clone) return;
    KRN_MaterialInfo* material = MaterialOf(kept);
    BuildMesh({*this, flags_}, raw, material, mesh, kept);
    if (material) LoadMaps(*material, times_, flags_, files_, *this);
    SetGroupMaterials(material, kept, mesh);
    skinned_mesh_seen_ |= !mesh.bones.empty();
}

/// What has no geometry of its own or of another mesh is a place.
void KVALoader::TurnIntoHelper(KRN_Mesh& mesh) {
    KRN_3dObject& helper = scene_->helpers.Add();
    KRN_3dObject::CopyNode(mesh, helper, true);
    helper.SetKind(ObjectKind::Helper);
    scene_->meshes.Delete(scene_->meshes.Count() - 1);   // it was the last one
}

/// Null for none.
KRN_MaterialInfo* KVALoader::MaterialOf(const KVA_MeshLoadInfo& info) {
    const int reference = info.material_reference;
    if (reference >= 0 && static_cast<std::size_t>(reference) < materials_.size())
        return materials_[static_cast<std::size_t>(reference)].get();
    if (reference != -1) Warning("No material %i for mesh '%s'", reference, info.mesh->Name().c_str());
    return nullptr;
}

// ---- When all is read

void KVALoader::FinishScene() {
    const SourceFileScope no_line(file_name_.c_str());   // what is reported now is about the whole
    KRN_3dScene& scene = *scene_;
    scene.header.version = version_number_;
    scene.header.first_frame = times_.first_frame;
    scene.header.frame_speed = times_.frames_per_second;
    scene.LinkHierarchy();
    const float speed = times_.frames_per_second;
    const auto frames = static_cast<float>(static_cast<double>(last_frame_) - first_frame_);
    scene.SetAnimationLength(speed != 0 ? frames / speed : 0);
    FinishKeys();
    BuildCloneMaterials();
    scene.ResolveClones();
    MeasureScene();
    scene.SortBlendedMeshes();
    if (scene.cameras.Count() > 0) scene.SelectCamera(0);
    auto& words = scene.render_settings.words;
    words[0] = 0;
    words[5] = words[11] = 1;
    words[15] = std::bit_cast<std::uint32_t>(0.008f);
    if (scene.render_settings.FogOn()) scene.background = scene.render_settings.FogColour();
}

void KVALoader::FinishKeys() {
    for (KRN_Mesh& mesh : scene_->meshes) FinishExportedKeys(mesh, times_);
    for (KRN_3dObject& helper : scene_->helpers) FinishExportedKeys(helper, times_);
    for (KRN_Camera& camera : scene_->cameras) FinishExportedKeys(camera, times_);
    for (KRN_Light& light : scene_->lights) FinishExportedKeys(light, times_);
}

void KVALoader::BuildCloneMaterials() {
    std::unordered_map<std::string, const KVA_MeshLoadInfo*> by_name;   // the first of each name
    for (const KVA_MeshLoadInfo& info : mesh_infos_) by_name.try_emplace(LowerCase(info.mesh->Name()), &info);
    // The info of the mesh that a clone has its geometry from, over other clones; null in a ring or for a missing one.
    const auto source_of = [&](const KVA_MeshLoadInfo* info) {
        for (std::size_t steps = 0; info && info->mesh->clone_source.GetLength() > 0; ++steps) {
            const auto place = by_name.find(LowerCase(info->mesh->clone_source));
            info = place == by_name.end() || steps > kLongestCloneLine ? nullptr : place->second;
        }
        return info;
    };
    for (const KVA_MeshLoadInfo& info : mesh_infos_) {
        if (info.mesh->clone_source.GetLength() == 0) continue;
        KRN_MaterialInfo* material = MaterialOf(info);
        if (material) LoadMaps(*material, times_, flags_, files_, *this);
        const KVA_MeshLoadInfo* source = source_of(&info);
        SetCloneMaterials(material, info, source ? *source : KVA_MeshLoadInfo{}, *info.mesh);
    }
}

void KVALoader::MeasureScene() {
    KRN_3dScene& scene = *scene_;
    const bool has_bounds = scene.TakeBoundsMesh();
    scene.SetSceneTime(scene.header.StartTime(), true);
    if (has_bounds) return;
    scene.MeasureBounds();
    if (skinned_mesh_seen_) Warning("Skinned meshes without 'Bounds' object");
}

}   // namespace sparkrig
