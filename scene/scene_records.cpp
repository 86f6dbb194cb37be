#include "scene/scene_records.h"

#include <utility>

namespace sparkrig {

namespace {

constexpr std::uint16_t kNodeRecordId = 0x1234;
constexpr std::uint32_t kMostCurveKeys = 1024;
// What a group (material and maps) and a bone take at least in a file: to refuse counts that cannot be.
constexpr std::uint32_t kLeastGroupBytes = 500, kLeastBoneBytes = 132;
constexpr int kOldSlots = 8;   // of a texture record below version 105

template <class A>
void Pivot(A& a, Ref<A, D3DXMATRIX> pivot) {
    for (auto& row : pivot.m) {
        float three[3] = {row[0], row[1], row[2]};
        a.Words(three);
        if constexpr (A::kReads) std::copy_n(three, 3, row);
    }
}

template <class A>
void Inheritance(A& a, Ref<A, InheritFlags> inherits) {
    std::conditional_t<A::kReads, bool, const bool>* const flags[] = {&inherits.position, &inherits.scale,
                                                                      &inherits.rotation, &inherits.axis_signs};
    if constexpr (A::kReads) {
        const int bits = a.Source().ReadByte();
        for (int i = 0; i < 4; ++i) *flags[i] = (bits >> i & 1) != 0;
    } else {
        int bits = 0;
        for (int i = 0; i < 4; ++i) bits |= *flags[i] << i;
        a.Target().WriteByte(static_cast<std::int8_t>(bits));
    }
}

template <class A, class Track>
void Keys(A& a, Track& track, const KRN_3dObject& node, const char* count_name) {
    std::uint32_t count = track.Count();
    a.Words(count);
    if constexpr (A::kReads) {
        track.Read(a.Source(), count);
    } else if (count > 0 && track.Write(a.Target()) != count) {
        node.Error("%s does not match actual size", count_name);
    }
}

template <class A, class Track>
void Curve(A& a, Track& curve) {
    auto count = static_cast<std::uint32_t>(curve.Keys().size());
    CurveMode mode = curve.Mode();
    bool loops = curve.Loops();
    float loop_end = curve.GivenLoopEnd();
    a.Words(count);
    a.Words(mode);
    a.U8(loops);
    a.U8(curve.spare_flag);
    a.Words(loop_end);
    if constexpr (A::kReads) {
        if (count > kMostCurveKeys) a.Source().Error("A track of %u keys: %u is the most", count, kMostCurveKeys);
        curve.SetMode(mode);
        curve.SetLoop(loops, loop_end);
        curve.Keys().assign(count, {});
    }
    for (auto& key : curve.Keys()) a.Words(key);
}

template <class A>
void TextureMatrix(A& a, Ref<A, KRN_TextMatrixAni> animation) {
    Curve(a, animation.offset_u);
    Curve(a, animation.offset_v);
    Curve(a, animation.tiling_u);
    Curve(a, animation.tiling_v);
    Curve(a, animation.angle_w);
    a.Words(animation.constants);   // in the same order
}
static_assert(sizeof(TextureMatrixValues) == 20);

template <class A>
void Slot(A& a, Ref<A, MapSlot> slot) {
    TextureMatrix(a, slot.animation);
    a.Text(slot.file);
    a.Words(slot.role);
    a.Words(slot.factor);
    if constexpr (A::kReads) slot.values = slot.animation.constants;
}

template <class A, class Value>
void Optional(A& a, Value& value) {
    bool given = value.has_value();
    a.U8(given);
    if constexpr (A::kReads) {
        value.reset();
        if (given) value.emplace();
    }
    if (given) a.Words(*value);
}

template <class A>
void Shader(A& a, Ref<A, ShaderSettings> shader) {
    a.Text(shader.effect);
    if (shader.effect.GetLength() == 0) return;
    for (auto& parameter : shader.parameters) {
        Optional(a, parameter.number);
        Optional(a, parameter.vector);
    }
}

}   // namespace

template <class A>
void SceneRecords::Node(A& a, Ref<A, KRN_3dObject> node) {
    std::uint16_t id = kNodeRecordId;
    a.U16(id);
    if constexpr (A::kReads)
        if (id != kNodeRecordId) node.Error("Invalid file read id, file: %s", a.file_name.c_str());
    auto& fields = node.node_;
    a.Words(fields.kind);
    a.Words(fields.transform);
    Pivot(a, fields.pivot);
    a.Text(fields.name);
    a.Text(fields.parent_name);
    Inheritance(a, fields.inherits);
    Keys(a, node.tracks_.position, node, "numPosKey");
    Keys(a, node.tracks_.rotation, node, "numRotKey");
    Keys(a, node.tracks_.scale, node, "numScaleKey");
    a.U32(fields.loops);
    a.Words(fields.length);
    if constexpr (A::kReads) {
        node.RebuildLookupTables();
        const NodeTracks& tracks = node.tracks_;
        if (!tracks.position.IsAscending() || !tracks.rotation.IsAscending() || !tracks.scale.IsAscending())
            node.Warning("Keys in wrong order");
        node.KRN_3dObject::Animate(0, true, false);
        fields.dirty = true;
        fields.manual_matrix = false;
    }
}

template <class A>
void SceneRecords::TargetNode(A& a, Ref<A, KRN_Target3dObject> node) {
    Node<A>(a, node);
    a.Text(node.target_name_);
}

template <class A>
void SceneRecords::Camera(A& a, Ref<A, KRN_Camera> camera) {
    TargetNode<A>(a, camera);
    a.Words(camera.fov);
}

template <class A>
void SceneRecords::Light(A& a, Ref<A, KRN_Light> light) {
    TargetNode<A>(a, light);
    a.U32(light.enabled);
    a.U32(light.off);
    a.Words(light.record);
}

template <class A>
void SceneRecords::Material(A& a, Ref<A, MeshMaterial> material) {
    a.Words(material.colours);   // diffuse, ambient, specular, emissive, power
    a.U32(material.two_sided);
    a.U32(material.blending);
    a.U32(material.reflection_with_diffuse);
    if (a.version >= 106) {
        a.Words(material.reflection_amount);
    } else if constexpr (A::kReads) {
        material.reflection_amount = 1;
    }
    a.Words(material.transparency);
    Curve(a, material.diffuse_track);
    Curve(a, material.ambient_track);
    Curve(a, material.specular_track);
    Curve(a, material.emissive_track);
    Curve(a, material.transparency_track);
    a.U8(material.addressing.mirror_u);
    a.U8(material.addressing.mirror_v);
    a.U8(material.addressing.tile_u);
    a.U8(material.addressing.tile_v);
    a.U8(material.hidden);
    a.Words(material.blend);
    Shader<A>(a, material.shader);
}

template <class A>
void SceneRecords::Textures(A& a, Ref<A, TextureRecord> textures) {
    a.Words(textures.playback);
    a.Words(textures.start);
    a.Words(textures.frame_seconds);
    a.Words(textures.unknown);
    for (auto& slot : textures.slots) Slot<A>(a, slot);
    if constexpr (A::kReads) {
        MapSlot dropped;
        for (int i = TextureRecord::kSlots; a.version < 105 && i < kOldSlots; ++i) Slot<A>(a, dropped);
        if (textures.slots[1].IsReflection()) std::swap(textures.slots[0], textures.slots[1]);
    }
}

template <class A>
void SceneRecords::Bone(A& a, Ref<A, KRN_BoneInfo> bone) {
    a.Text(bone.name);
    a.Words(bone.initial);
    a.Words(bone.mesh_initial);
    if constexpr (A::kReads) D3DXMatrixMultiply(&bone.offset, &bone.mesh_initial, &bone.initial);
}

template <class A>
void SceneRecords::Header(A& a, Ref<A, SceneHeader> header) {
    a.Words(header.frame_speed);
    a.Words(header.first_frame);
    a.Words(header.spare_value);
    a.Text(header.sound);
    a.Text(header.spare_name);
}

template <class A>
void SceneRecords::Volume(A& a, Ref<A, KRN_ClipObject> volume) {
    a.Words(volume);
}

template <class A>
void SceneRecords::Settings(A& a, Ref<A, KRN_3dScene> scene) {
    a.Words(scene.ambient);
    a.Words(scene.background);
    bool has_environment = scene.environment.has_value();
    a.U8(has_environment);
    if constexpr (A::kReads) {
        scene.environment.reset();
        if (has_environment) scene.environment.emplace();
    }
    if (has_environment) Textures<A>(a, *scene.environment);
    a.Words(scene.render_settings.words);
}

template <class A>
void SceneRecords::MeshStart(A& a, Ref<A, KRN_MeshBase> mesh) {
    Node<A>(a, mesh);
    Volume<A>(a, mesh);
    a.U32(mesh.textured);
    a.U32(mesh.visible);
    a.Words(mesh.uses_blending);
    auto groups = static_cast<std::uint32_t>(mesh.MaterialCount());
    if constexpr (A::kReads) {
        groups = a.Count(kLeastGroupBytes, "materials");
        mesh.SetGroupCount(groups);
    } else {
        a.Words(groups);
    }
    for (std::uint32_t i = 0; i < groups; ++i) Material<A>(a, mesh.Material(static_cast<int>(i)));
    for (std::uint32_t i = 0; i < groups; ++i) Textures<A>(a, mesh.Textures(static_cast<int>(i)));
    a.Text(mesh.clone_source);
    auto bones = static_cast<std::uint32_t>(mesh.bones.size());
    if constexpr (A::kReads) {
        mesh.bones.resize(a.Count(kLeastBoneBytes, "bones"));
    } else {
        a.Words(bones);
    }
}

template <class A>
void SceneRecords::MeshEnd(A& a, Ref<A, KRN_MeshBase> mesh) {
    a.Words(mesh.reflection_stage);
    for (auto& bone : mesh.bones) Bone<A>(a, bone);
}

#define SPARKRIG_RECORD(name, type)                                           \
    template void SceneRecords::name(RecordReader&, Ref<RecordReader, type>); \
    template void SceneRecords::name(RecordWriter&, Ref<RecordWriter, type>);
SPARKRIG_RECORD(Node, KRN_3dObject)
SPARKRIG_RECORD(TargetNode, KRN_Target3dObject)
SPARKRIG_RECORD(Camera, KRN_Camera)
SPARKRIG_RECORD(Light, KRN_Light)
SPARKRIG_RECORD(Header, SceneHeader)
SPARKRIG_RECORD(Volume, KRN_ClipObject)
SPARKRIG_RECORD(Settings, KRN_3dScene)
SPARKRIG_RECORD(MeshStart, KRN_MeshBase)
SPARKRIG_RECORD(MeshEnd, KRN_MeshBase)
#undef SPARKRIG_RECORD

// ---- The nodes' own reading and writing

void KRN_3dObject::Write(File& file) const {
    RecordWriter writer(file);
    SceneRecords::Node(writer, *this);
}

void KRN_3dObject::Read(File& file) {
    RecordReader reader(file);
    SceneRecords::Node(reader, *this);
}

void KRN_Target3dObject::Write(File& file) const {
    RecordWriter writer(file);
    SceneRecords::TargetNode(writer, *this);
}

void KRN_Target3dObject::Read(File& file) {
    RecordReader reader(file);
    SceneRecords::TargetNode(reader, *this);
}

void KRN_Camera::Write(File& file) const {
    RecordWriter writer(file);
    SceneRecords::Camera(writer, *this);
}

void KRN_Camera::Read(File& file) {
    RecordReader reader(file);
    SceneRecords::Camera(reader, *this);
}

void KRN_Light::Write(File& file) const {
    RecordWriter writer(file);
    SceneRecords::Light(writer, *this);
}

void KRN_Light::Read(File& file) {
    RecordReader reader(file);
    SceneRecords::Light(reader, *this);
}

}   // namespace sparkrig
