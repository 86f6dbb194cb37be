#include "tools/scene/dump.h"

#include <cstring>

#include "scene/vertex_codec.h"
#include "tools/scene/json_writer.h"

namespace sparkrig {

namespace {

std::string_view View(const String& text) { return {text.c_str(), static_cast<std::size_t>(text.GetLength())}; }

// ---- Closed sets: a value outside is its number

template <class Enum>
struct Word {
    Enum value;
    const char* word;
};

constexpr Word<ObjectKind> kKinds[] = {{ObjectKind::Mesh, "mesh"},
                                       {ObjectKind::Bone, "bone"},
                                       {ObjectKind::Helper, "helper"},
                                       {ObjectKind::Camera, "camera"},
                                       {ObjectKind::Light, "light"}};
constexpr Word<KeyInterpolation> kVectorKeys[] = {{KeyInterpolation::Linear, "linear"},
                                                  {KeyInterpolation::Bezier, "bezier"}};
constexpr Word<KeyInterpolation> kRotationKeys[] = {{KeyInterpolation::Linear, "linear"},
                                                    {KeyInterpolation::Tcb, "tcb"}};
constexpr Word<CurveMode> kCurveModes[] = {{CurveMode::Linear, "linear"}, {CurveMode::Hermite, "bezier"}};
constexpr Word<MaterialBlend> kBlends[] = {{MaterialBlend::Normal, "normal"},
                                           {MaterialBlend::Additive, "additive"},
                                           {MaterialBlend::Subtractive, "subtractive"}};
constexpr Word<MapRole> kRoles[] = {{MapRole::Diffuse, "diffuse"},
                                    {MapRole::Bump, "bump"},
                                    {MapRole::Reflection, "reflection"},
                                    {MapRole::OldReflection, "reflection"}};
constexpr Word<D3DLIGHTTYPE> kLightTypes[] = {
    {D3DLIGHT_POINT, "point"}, {D3DLIGHT_SPOT, "spot"}, {D3DLIGHT_DIRECTIONAL, "directional"}};

template <class Enum, std::size_t N>
void WriteWord(JsonWriter& json, const char* key, const Word<Enum> (&words)[N], Enum value) {
    json.Key(key);
    for (const auto& row : words)
        if (row.value == value) return void(json.Value(row.word));
    json.Value(static_cast<std::underlying_type_t<Enum>>(value));
}

// ---- Small records

void WriteName(JsonWriter& json, const char* key, const KRN_3dObject* node) {
    json.Key(key);
    node ? json.Value(View(node->Name())) : json.Null();
}

void WriteBytes(JsonWriter& json, const char* key, D3DCOLOR colour) {
    json.Key(key).BeginArray();
    for (const int shift : {16, 8, 0, 24}) json.Value(colour >> shift & 0xFF);
    json.EndArray();
}

void WriteBounds(JsonWriter& json, const KRN_ClipObject& bounds) {
    json.Key("bounds").BeginObject();
    json.Member("test_sphere", (bounds.clip_mode & 1) != 0).Member("test_box", (bounds.clip_mode & 2) != 0);
    json.Member("center", bounds.sphere_centre).Member("radius", bounds.sphere_radius);
    json.Member("min", bounds.box_minimum).Member("max", bounds.box_maximum).EndObject();
}

// ---- Tracks

template <class Data>
void WriteVectorKeys(JsonWriter& json, const char* key, const KeyTrack<Data>& track) {
    json.Key(key).BeginArray();
    for (const auto* k = track.Head(); k; k = k->next.get()) {
        json.BeginObject().Member("time", k->time);
        WriteWord(json, "type", kVectorKeys, k->interpolation);
        json.Member("value", k->data.value).Member("in", k->data.in_tangent).Member("out", k->data.out_tangent);
        json.EndObject();
    }
    json.EndArray();
}

void WriteRotationKeys(JsonWriter& json, const KeyTrack<KRN_RotKeyData>& track) {
    json.Key("rotation").BeginArray();
    for (const auto* k = track.Head(); k; k = k->next.get()) {
        const KRN_RotKeyData& data = k->data;
        json.BeginObject().Member("time", k->time);
        WriteWord(json, "type", kRotationKeys, k->interpolation);
        json.Member("axis", data.axis).Member("angle", data.angle).Member("rotation", data.rotation);
        if (k->interpolation == KeyInterpolation::Tcb) {
            json.Member("tension", data.tension).Member("continuity", data.continuity).Member("bias", data.bias);
            json.Member("ease_in", data.ease_in).Member("ease_out", data.ease_out);
            json.Member("in", data.in_control).Member("out", data.out_control);
        }
        json.EndObject();
    }
    json.EndArray();
}

template <int Components>
void WriteComponents(JsonWriter& json, const char* key, const float (&components)[Components]) {
    json.Key(key);
    if constexpr (Components == 1) {
        json.Value(components[0]);
    } else {
        json.Value(std::span<const float>(components));
    }
}

template <int Components>
void WriteCurve(JsonWriter& json, const char* key, const KeyCurve<Components>& curve) {
    json.Key(key);
    if (curve.IsEmpty()) return void(json.Null());
    json.BeginObject();
    WriteWord(json, "type", kCurveModes, curve.Mode());
    json.Member("loop", curve.Loops()).Member("loop_end", curve.GivenLoopEnd()).Key("keys").BeginArray();
    for (const auto& k : curve.Keys()) {
        json.BeginObject().Member("time", k.time);
        WriteComponents(json, "value", k.value);
        WriteComponents(json, "in", k.in);
        WriteComponents(json, "out", k.out);
        json.EndObject();
    }
    json.EndArray().EndObject();
}

// ---- Nodes

void WriteNode(JsonWriter& json, const KRN_3dObject& node) {
    const NodeTransform& rest = node.RestPose();
    const InheritFlags& inherits = node.Inheritance();
    json.Member("name", View(node.Name()));
    WriteWord(json, "kind", kKinds, node.Kind());
    WriteName(json, "parent", node.Parent());
    json.Member("world", node.WorldMatrix());
    json.Member("position", node.CurrentPosition()).Member("scale", node.CurrentScale());
    json.Member("rotation", node.CurrentRotation()).Member("pivot", node.PivotMatrix());
    json.Key("rest").BeginObject().Member("matrix", rest.matrix).Member("axis_signs", rest.axis_signs);
    json.Member("position", rest.position).Member("scale", rest.scale);
    json.Member("rotation_axis", rest.rotation_axis).Member("rotation_angle", rest.rotation_angle).EndObject();
    json.Key("inherit").BeginObject().Member("position", inherits.position).Member("scale", inherits.scale);
    json.Member("rotation", inherits.rotation).Member("axis_signs", inherits.axis_signs).EndObject();
    json.Member("loop", node.Loops()).Member("length", node.AnimationLength());
    json.Key("tracks").BeginObject();
    WriteVectorKeys(json, "position", node.Tracks().position);
    WriteRotationKeys(json, node.Tracks().rotation);
    WriteVectorKeys(json, "scale", node.Tracks().scale);
    json.EndObject();
}

void WriteView(JsonWriter& json, const KRN_Target3dObject& node) {
    WriteName(json, "target", node.Target());
    json.Member("eye", node.Eye()).Member("direction", node.ViewDirection()).Member("up", node.Up());
}

void WriteCamera(JsonWriter& json, const KRN_Camera& camera) {
    WriteView(json, camera);
    json.Member("fov", camera.fov);
}

void WriteLight(JsonWriter& json, const KRN_Light& light) {
    const D3DLIGHT9& record = light.record;
    WriteView(json, light);
    WriteWord(json, "type", kLightTypes, record.Type);
    json.Member("enabled", light.enabled).Member("off", light.off);
    json.Member("diffuse", record.Diffuse).Member("specular", record.Specular).Member("ambient", record.Ambient);
    json.Member("light_position", D3DXVECTOR3(record.Position));
    json.Member("light_direction", D3DXVECTOR3(record.Direction));
    json.Member("range", record.Range).Member("falloff", record.Falloff);
    json.Member("attenuation", D3DXVECTOR3(record.Attenuation0, record.Attenuation1, record.Attenuation2));
    json.Member("theta", record.Theta).Member("phi", record.Phi);
}

// ---- Materials

void WriteMap(JsonWriter& json, const MapSlot& slot) {
    const TextureMatrixValues& values = slot.values;
    const KRN_TextMatrixAni& tracks = slot.animation;
    json.BeginObject();
    WriteWord(json, "role", kRoles, slot.role);
    json.Member("file", View(slot.file)).Member("factor", slot.factor);
    json.Member("offset_u", values.offset_u).Member("offset_v", values.offset_v);
    json.Member("tiling_u", values.tiling_u).Member("tiling_v", values.tiling_v).Member("angle", values.angle_w);
    json.Member("matrix", BuildTextureMatrix(values)).Key("tracks").BeginObject();
    WriteCurve(json, "offset_u", tracks.offset_u);
    WriteCurve(json, "offset_v", tracks.offset_v);
    WriteCurve(json, "tiling_u", tracks.tiling_u);
    WriteCurve(json, "tiling_v", tracks.tiling_v);
    WriteCurve(json, "angle", tracks.angle_w);
    json.EndObject().EndObject();
}

void WriteMaterial(JsonWriter& json, const MeshMaterial& material, const TextureRecord& textures) {
    const D3DMATERIAL9& colours = material.colours;
    json.BeginObject().Member("diffuse", colours.Diffuse).Member("ambient", colours.Ambient);
    json.Member("specular", colours.Specular).Member("emissive", colours.Emissive).Member("power", colours.Power);
    json.Member("transparency", material.transparency).Member("reflection_amount", material.reflection_amount);
    json.Member("hidden", material.hidden);
    WriteWord(json, "blend", kBlends, material.blend);
    json.Member("blending", material.blending).Member("two_sided", material.two_sided);
    json.Member("reflection_with_diffuse", material.reflection_with_diffuse);
    json.Member("mirror_u", material.addressing.mirror_u).Member("mirror_v", material.addressing.mirror_v);
    json.Member("tile_u", material.addressing.tile_u).Member("tile_v", material.addressing.tile_v);
    json.Key("tracks").BeginObject();
    WriteCurve(json, "diffuse", material.diffuse_track);
    WriteCurve(json, "ambient", material.ambient_track);
    WriteCurve(json, "specular", material.specular_track);
    WriteCurve(json, "emissive", material.emissive_track);
    WriteCurve(json, "opacity", material.transparency_track);
    json.EndObject().Member("shader", View(material.shader.effect)).Key("maps").BeginArray();
    for (const MapSlot& slot : textures.slots)
        if (slot.InUse()) WriteMap(json, slot);
    json.EndArray().EndObject();
}

// ---- Meshes

const float* FloatsAt(const std::uint8_t* bytes, float (&floats)[4], int count) {
    std::memcpy(floats, bytes, sizeof(float) * static_cast<std::size_t>(count));
    return floats;
}

/// `count` floats of each vertex, at an offset.
void WriteVertexFloats(JsonWriter& json, const char* key, const MeshGeometry* geometry, int offset, int count) {
    json.Key(key).BeginArray();
    float floats[4] = {};
    for (std::uint32_t i = 0; geometry && count > 0 && i < geometry->VertexCount(); ++i) {
        FloatsAt(geometry->Vertex(i) + offset, floats, count);
        json.Value(std::span<const float>(floats, static_cast<std::size_t>(count)));
    }
    json.EndArray();
}

void WriteBoneIndices(JsonWriter& json, const MeshGeometry* geometry) {
    json.Key("bone_indices").BeginArray();
    const bool there = geometry && (geometry->layout.format & D3DFVF_LASTBETA_UBYTE4) != 0;
    for (std::uint32_t i = 0; there && i < geometry->VertexCount(); ++i) {
        const std::uint8_t* indices = geometry->Vertex(i) + BoneIndexOffset(geometry->layout);
        json.BeginArray();
        for (int bone = 0; bone < 4; ++bone) json.Value(int{indices[bone]});
        json.EndArray();
    }
    json.EndArray();
}

void WriteFaces(JsonWriter& json, const MeshGeometry* geometry) {
    const std::size_t faces = geometry ? geometry->FaceCount() : 0;
    json.Key("triangles").BeginArray();
    for (std::size_t face = 0; face < faces; ++face) {
        json.BeginArray();
        for (std::size_t k = 0; k < 3; ++k) json.Value(geometry->indices[3 * face + k]);
        json.EndArray();
    }
    json.EndArray().Key("groups").BeginArray();
    for (std::size_t face = 0; face < faces; ++face) json.Value(geometry->groups[face]);
    json.EndArray();
}

void WriteGeometry(JsonWriter& json, const MeshGeometry* geometry, int influences) {
    const VertexLayout layout = geometry ? geometry->layout : VertexLayout{};
    json.Key("geometry").BeginObject();
    WriteVertexFloats(json, "positions", geometry, layout.position, 3);
    WriteVertexFloats(json, "normals", geometry, layout.normal, (layout.format & D3DFVF_NORMAL) != 0 ? 3 : 0);
    WriteVertexFloats(json, "uvs", geometry, layout.texture_offset[0],
                      layout.texture_sets > 0 ? std::min(layout.texture_floats[0], 2) : 0);
    WriteVertexFloats(json, "weights", geometry, layout.rhw_or_weights, influences > 0 ? influences - 1 : 0);
    WriteBoneIndices(json, geometry);
    WriteFaces(json, geometry);
    json.EndObject();
}

void WriteBones(JsonWriter& json, const KRN_MeshBase& mesh) {
    json.Key("bones").BeginArray();
    for (std::size_t i = 0; i < mesh.bones.size(); ++i) {
        const KRN_BoneInfo& bone = mesh.bones[i];
        json.BeginObject().Member("name", View(bone.name));
        json.Member("found", i < mesh.bone_nodes.size() && mesh.bone_nodes[i] != nullptr);
        json.Member("initial", bone.initial).Member("mesh", bone.mesh_initial).Member("offset", bone.offset);
        json.EndObject();
    }
    json.EndArray();
}

void WriteMesh(JsonWriter& json, const KRN_3dScene& scene, const KRN_Mesh& mesh, bool with_geometry) {
    const MeshGeometry* geometry = mesh.Geometry();
    const bool is_clone = mesh.clone_source.GetLength() > 0;
    json.Member("visible", mesh.visible).Member("textured", mesh.textured).Member("blending", mesh.uses_blending == 1);
    const KRN_Mesh* source = is_clone ? scene.FindMesh(mesh.clone_source.c_str(), false) : nullptr;
    if (is_clone && !source) {
        json.Member("clone", View(mesh.clone_source));   // the source was the scene's volume
    } else {
        WriteName(json, "clone", source);
    }
    WriteBounds(json, mesh);
    json.Member("vertex_format", geometry ? geometry->layout.format : 0);
    json.Member("vertices", geometry ? geometry->VertexCount() : 0)
        .Member("faces", geometry ? geometry->FaceCount() : 0);
    json.Member("influences", mesh.influences).Member("reflection_stage", mesh.reflection_stage);
    WriteBones(json, mesh);
    json.Key("materials").BeginArray();
    for (int group = 0; group < mesh.MaterialCount(); ++group)
        WriteMaterial(json, mesh.Material(group), mesh.Textures(group));
    json.EndArray();
    if (with_geometry) WriteGeometry(json, geometry, mesh.influences);
}

template <class List, class Rest>
void WriteList(JsonWriter& json, const char* key, const List& list, Rest rest) {
    json.Key(key).BeginArray();
    for (const auto& node : list) {
        json.BeginObject();
        WriteNode(json, node);
        rest(node);
        json.EndObject();
    }
    json.EndArray();
}

void WriteScene(JsonWriter& json, const KRN_3dScene& scene, const DumpOptions& options) {
    const SceneHeader& header = scene.header;
    json.Member("file", options.file.c_str()).Member("format", header.binary ? "binary" : "text");
    json.Member("version", header.version).Member("time", options.time);
    json.Member("first_frame", header.first_frame).Member("frame_speed", header.frame_speed);
    json.Member("length", scene.AnimationLength()).Member("loop", scene.Loops());
    json.Member("sound", View(header.sound));
    WriteBytes(json, "ambient", scene.ambient);
    WriteBytes(json, "background", scene.background);
    json.Key("fog").BeginObject().Member("on", scene.render_settings.FogOn());
    WriteBytes(json, "color", scene.render_settings.FogColour());
    json.EndObject().Key("environment");
    const MapSlot* environment = nullptr;
    if (scene.environment)
        for (const MapSlot& slot : scene.environment->slots)
            if (slot.InUse() && !environment) environment = &slot;
    environment ? json.Value(View(environment->file)) : json.Null();
    json.Member("world", scene.WorldMatrix());
    WriteBounds(json, scene);
    json.Member("active_camera", scene.active_camera).Member("opaque_meshes", scene.opaque_meshes);
}

}   // namespace

std::string DumpScene(const KRN_3dScene& scene, const DumpOptions& options) {
    JsonWriter json;
    json.BeginObject();
    WriteScene(json, scene, options);
    WriteList(json, "meshes", scene.meshes,
              [&](const KRN_Mesh& mesh) { WriteMesh(json, scene, mesh, options.geometry); });
    WriteList(json, "helpers", scene.helpers, [](const KRN_3dObject&) {});
    WriteList(json, "cameras", scene.cameras, [&](const KRN_Camera& camera) { WriteCamera(json, camera); });
    WriteList(json, "lights", scene.lights, [&](const KRN_Light& light) { WriteLight(json, light); });
    json.EndObject();
    return json.Text() + "\n";
}

}   // namespace sparkrig
