#include "scene/kva_materials.h"

namespace sparkrig {

namespace {

constexpr std::size_t kMostCurveKeys = 1024;
constexpr int kDeepestSubmaterial = 32;   // a file may nest as deep as it is long
constexpr int kFlagsStartCleared = 2 * 256 + 10;

// ---- Maps

using MapTrack = ScalarCurve KRN_TextMatrixAni::*;

constexpr struct {
    const char* name;
    MapTrack track;
} kMapTracks[] = {
    {"OffsetU", &KRN_TextMatrixAni::offset_u}, {"OffsetV", &KRN_TextMatrixAni::offset_v},
    {"TileU", &KRN_TextMatrixAni::tiling_u},   {"TileV", &KRN_TextMatrixAni::tiling_v},
    {"AngleW", &KRN_TextMatrixAni::angle_w},
};

constexpr const char* kEndConditions[] = {"loop", "pingpong", "hold"};

void ReadEndCondition(KvaText& text, std::uint32_t& condition) {
    String word;
    if (!text.SetWord(word)) return;
    for (std::uint32_t i = 0; i < std::size(kEndConditions); ++i)
        if (EqualNoCase(word.c_str(), kEndConditions[i])) return void(condition = i);
    text.Warning("Unknown end condition for map time parameter");
}

void ReadAddressing(KvaText& text, bool& mirror, bool& tile) {
    String word;
    if (!text.SetWord(word)) return;
    if (EqualNoCase(word.c_str(), "Mirror")) mirror = true;
    if (EqualNoCase(word.c_str(), "Tile")) tile = true;
}

bool ReadBezierKey(KvaText& text, CurveKey<1>& key) {
    return text.Number(key.time) && text.Number(key.value[0]) && text.Number(key.in[0]) && text.Number(key.out[0]);
}

void ReadMapTrack(KvaText& text, ScalarCurve* track) {
    if (!track) return;   // the block is skipped
    track->Keys().clear();
    const auto add_key = [&] {
        if (track->Keys().size() == kMostCurveKeys) return;
        CurveKey<1> key;
        if (!ReadBezierKey(text, key)) return;
        track->AddKey(key);
        if (track->Keys().size() == kMostCurveKeys) text.Warning("More than 1024 float bezier keys");
    };
    text.Block({{"CONTROL_BEZIER_FLOAT_KEY", add_key}});
}

void ReadMapAnimation(KvaText& text, KRN_TextMatrixAni& animation) {
    ScalarCurve* selected = nullptr;
    const auto select = [&] {
        String name;
        if (!text.SetWord(name)) return;
        for (const auto& row : kMapTracks)
            if (name == row.name) selected = &(animation.*row.track);
    };
    text.Block({{"MAP_ATTRIBUTE", select}, {"CONTROL_FLOAT_BEZIER", [&] { ReadMapTrack(text, selected); }}});
}

/// A mirrored map shows the picture twice in the same room.
void Mirror(float& tiling, float& offset, ScalarCurve& tiling_track, ScalarCurve& offset_track) {
    tiling *= 2;
    const float shift = 0.5f / tiling;
    offset -= shift;
    for (CurveKey<1>& key : tiling_track.Keys())
        for (float* value : {key.value, key.in, key.out}) *value *= 2;
    for (CurveKey<1>& key : offset_track.Keys()) key.value[0] -= shift;
}

// ---- Materials

void ReadColour(KvaText& text, D3DCOLORVALUE& colour) {
    float rgb[3];
    if (text.Triple(rgb)) colour = {rgb[0], rgb[1], rgb[2], 1};
}

void ReadBlend(KvaText& text, MeshMaterial& drawn) {
    String word;
    if (!text.SetWord(word) || !(drawn.transparency > 0)) return;
    if (EqualNoCase(word.c_str(), "Additive")) drawn.blend = MaterialBlend::Additive;
    if (EqualNoCase(word.c_str(), "Subtractive")) drawn.blend = MaterialBlend::Subtractive;
}

template <int Components>
void AddKey(KvaText& text, KeyCurve<Components>& track, const CurveKey<Components>& key, CurveMode mode) {
    if (track.Keys().size() == kMostCurveKeys) return text.Warning("Not more than 1024 float bezier keys allowed");
    track.AddKey(key);
    if (mode == CurveMode::Linear) track.SetMode(mode);
}

void ReadColourTrack(KvaText& text, ColourCurve* track) {
    if (!track) return;
    track->Keys().clear();
    const auto read_key = [&](CurveMode mode) {
        CurveKey<4> key;
        float rgb[3][3] = {};   // value, in, out
        bool read = text.Number(key.time);
        for (int i = 0; i < (mode == CurveMode::Hermite ? 3 : 1); ++i) read = read && text.Triple(rgb[i]);
        if (!read) return;
        for (int c = 0; c < 3; ++c) key.value[c] = rgb[0][c], key.in[c] = rgb[1][c], key.out[c] = rgb[2][c];
        key.value[3] = 1;
        AddKey(text, *track, key, mode);
    };
    text.Block({{"CONTROL_BEZIER_POINT3_KEY", [&] { read_key(CurveMode::Hermite); }},
                {"CONTROL_POINT3_KEY", [&] { read_key(CurveMode::Linear); }}});
}

/// The file holds opacities, the track transparencies.
void ReadOpacityTrack(KvaText& text, ScalarCurve* track) {
    if (!track) return;
    track->Keys().clear();
    const auto read_key = [&](CurveMode mode) {
        CurveKey<1> key;
        const bool read =
            mode == CurveMode::Hermite ? ReadBezierKey(text, key) : text.Number(key.time) && text.Number(key.value[0]);
        if (!read) return;
        key.value[0] = 1 - key.value[0];
        key.in[0] = -key.in[0];
        key.out[0] = -key.out[0];
        AddKey(text, *track, key, mode);
    };
    text.Block({{"CONTROL_BEZIER_FLOAT_KEY", [&] { read_key(CurveMode::Hermite); }},
                {"CONTROL_FLOAT_KEY", [&] { read_key(CurveMode::Linear); }}});
}

void ReadMaterialAnimation(KvaText& text, MeshMaterial& drawn) {
    const struct {
        const char* name;
        ColourCurve* track;
    } colours[] = {{"Ambient", &drawn.ambient_track},
                   {"Diffuse", &drawn.diffuse_track},
                   {"Specular", &drawn.specular_track},
                   {"SelfIllumColor", &drawn.emissive_track}};
    ColourCurve* colour = nullptr;
    ScalarCurve* opacity = nullptr;
    const auto select = [&] {
        String name;
        if (!text.SetWord(name)) return;
        for (const auto& row : colours)
            if (EqualNoCase(name.c_str(), row.name)) colour = row.track, opacity = nullptr;
        if (EqualNoCase(name.c_str(), "Opacity")) colour = nullptr, opacity = &drawn.transparency_track;
    };
    text.Block({{"MATERIAL_ATTRIBUTE", select},
                {"CONTROL_COLOR_BEZIER", [&] { ReadColourTrack(text, colour); }},
                {"CONTROL_COLOR_LINEAR", [&] { ReadColourTrack(text, colour); }},
                {"CONTROL_FLOAT_BEZIER", [&] { ReadOpacityTrack(text, opacity); }},
                {"CONTROL_FLOAT_LINEAR", [&] { ReadOpacityTrack(text, opacity); }}});
}

bool ReadMaterial(KvaText& text, int version, KRN_MaterialInfo& material, int depth) {
    MeshMaterial& drawn = material.drawn;
    if (version >= kFlagsStartCleared) drawn.addressing = {false, false, false, false};
    const auto read_two_sided = [&] {
        int value = 0;
        drawn.two_sided = !text.Integer(value) || value != 0;
    };
    const auto read_submaterial = [&] {
        int index = -1;
        text.Integer(index);
        if (index != static_cast<int>(material.submaterials.size())) text.Error("Submaterial in wrong order!");
        if (depth == kDeepestSubmaterial) text.Error("Submaterials deeper than %i", kDeepestSubmaterial);
        material.submaterials.push_back(std::make_unique<KRN_MaterialInfo>());
        ReadMaterial(text, version, *material.submaterials.back(), depth + 1);
    };
    return text.Block({
        {"MATERIAL_NAME", [&] { text.LimitedText(material.name); }},
        {"MATERIAL_AMBIENT", [&] { ReadColour(text, material.ambient); }},
        {"MATERIAL_DIFFUSE", [&] { ReadColour(text, material.diffuse); }},
        {"MATERIAL_SPECULAR", [&] { ReadColour(text, material.specular); }},
        {"MATERIAL_SELFILLUM_COLOR", [&] { ReadColour(text, material.emissive); }},
        {"MATERIAL_SHINE", [&] { text.Number(material.shine); }},
        {"MATERIAL_SHINESTRENGTH", [&] { text.Number(material.shine_strength); }},
        {"MATERIAL_TRANSPARENCY", [&] { text.Number(drawn.transparency); }},
        {"MATERIAL_TRANSPARENCY_TYPE", [&] { ReadBlend(text, drawn); }},
        {"MATERIAL_TWOSIDED", read_two_sided},
        {"SUBMATERIAL", read_submaterial},
        {"MAP_DIFFUSE", [&] { ReadMap(text, drawn.addressing, material.diffuse_map); }},
        {"MAP_REFLECT", [&] { ReadMap(text, drawn.addressing, material.reflection_map); }},
        {"MAP_BUMP", [&] { ReadMap(text, drawn.addressing, material.bump_map); }},
        {"MATERIAL_ANIMATION", [&] { ReadMaterialAnimation(text, drawn); }},
    });
}

}   // namespace

bool ReadMap(KvaText& text, TextureAddressing& addressing, MapInfo& map) {
    TextureMatrixValues& values = map.animation.constants = {};
    const bool whole = text.Block({
        {"BITMAP", [&] { text.LimitedText(map.file); }},
        {"MAP_AMOUNT", [&] { text.Number(map.amount); }},
        {"UVW_U_OFFSET", [&] { text.Number(values.offset_u); }},
        {"UVW_V_OFFSET", [&] { text.Number(values.offset_v); }},
        {"UVW_U_TILING", [&] { text.Number(values.tiling_u); }},
        {"UVW_V_TILING", [&] { text.Number(values.tiling_v); }},
        {"UVW_W_ANGLE", [&] { text.Number(values.angle_w); }},
        {"UVW_TILE_U", [&] { ReadAddressing(text, addressing.mirror_u, addressing.tile_u); }},
        {"UVW_TILE_V", [&] { ReadAddressing(text, addressing.mirror_v, addressing.tile_v); }},
        {"TIME_STARTFRAME", [&] { text.Number(map.start_frame); }},
        {"TIME_PLAYBACKRATE", [&] { text.Number(map.playback_rate); }},
        {"TIME_ENDCONDITION", [&] { ReadEndCondition(text, map.end_condition); }},
        {"MAP_ANIMATION", [&] { ReadMapAnimation(text, map.animation); }},
    });
    KRN_TextMatrixAni& tracks = map.animation;
    if (addressing.mirror_u) Mirror(values.tiling_u, values.offset_u, tracks.tiling_u, tracks.offset_u);
    if (addressing.mirror_v) Mirror(values.tiling_v, values.offset_v, tracks.tiling_v, tracks.offset_v);
    return whole;
}

bool ReadMaterialList(KvaText& text, int version, std::vector<std::unique_ptr<KRN_MaterialInfo>>& materials) {
    const auto read_material = [&] {
        int index = -1;
        text.Integer(index);
        if (index != static_cast<int>(materials.size())) text.Error("Material in wrong order!");
        materials.push_back(std::make_unique<KRN_MaterialInfo>());
        ReadMaterial(text, version, *materials.back(), 0);
    };
    return text.Block({{"MATERIAL", read_material}});
}

}   // namespace sparkrig
