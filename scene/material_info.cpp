#include "scene/material_info.h"

namespace sparkrig {

namespace {

D3DCOLORVALUE Times(const D3DCOLORVALUE& colour, float f) { return {colour.r * f, colour.g * f, colour.b * f, 1}; }

/// Tangents by the intervals to the neighbours, then ticks to seconds.
template <int Components>
void FinishCurve(KeyCurve<Components>& curve, const TickTimes& times) {
    auto& keys = curve.Keys();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        for (int c = 0; c < Components; ++c) {
            if (i > 0) keys[i].in[c] *= keys[i].time - keys[i - 1].time;
            if (i + 1 < keys.size()) keys[i].out[c] *= keys[i + 1].time - keys[i].time;
        }
    }
    for (auto& key : keys) key.time = times.Seconds(key.time);
}

void FinishMap(KRN_TextMatrixAni& animation, const TickTimes& times) {
    for (ScalarCurve* curve :
         {&animation.offset_u, &animation.offset_v, &animation.tiling_u, &animation.tiling_v, &animation.angle_w})
        FinishCurve(*curve, times);
}

class MapLoader {
  public:
    MapLoader(KRN_MaterialInfo& material, const TickTimes& times, const MapFiles& files, const ErrorClass& reporter)
        : material_(material), times_(times), files_(files), reporter_(reporter) {}

    /// The slot that the map took, or null where there is none or its file is missing.
    MapSlot* Load(const MapInfo& map, MapRole role, const char* kind) {
        if (map.file.GetLength() == 0) return nullptr;
        const std::string path = files_.Find(map.file.c_str());
        if (path.empty()) {
            reporter_.Warning("Can not open %s map '%s'", kind, map.file.c_str());
            return nullptr;
        }
        MapSlot& slot = material_.textures.slots[next_slot_++];
        slot.file = map.file;
        slot.path = path.c_str();
        slot.role = role;
        slot.animation = map.animation;
        FinishMap(slot.animation, times_);
        slot.values = slot.animation.constants;
        return &slot;
    }

  private:
    KRN_MaterialInfo& material_;
    const TickTimes& times_;
    const MapFiles& files_;
    const ErrorClass& reporter_;
    int next_slot_ = 0;
};

void SetSequence(TextureRecord& textures, const MapInfo& map, float frames_per_second) {
    const float rate = map.playback_rate * frames_per_second;
    textures.playback = map.end_condition;
    textures.start = frames_per_second != 0 ? map.start_frame / frames_per_second : 0;
    textures.frame_seconds = rate != 0 ? 1 / rate : 0;
}

}   // namespace

void FinaliseMaterial(KRN_MaterialInfo& material, const TickTimes& times, const SceneLoadFlags& flags) {
    if (material.finalised) return;
    material.finalised = true;
    MeshMaterial& drawn = material.drawn;
    drawn.colours = {Times(material.diffuse, 1), Times(material.ambient, 1),
                     Times(material.specular, material.shine_strength), material.emissive, material.shine * 100.0f};
    for (ColourCurve* curve :
         {&drawn.diffuse_track, &drawn.ambient_track, &drawn.specular_track, &drawn.emissive_track})
        FinishCurve(*curve, times);
    FinishCurve(drawn.transparency_track, times);
    drawn.blending = drawn.transparency > 0 || !drawn.transparency_track.IsEmpty();
    material.has_reflection_map = material.reflection_map.file.GetLength() > 0;
    material.has_diffuse_map = material.diffuse_map.file.GetLength() > 0;
    material.has_bump_map = material.bump_map.file.GetLength() > 0 && flags.bump_maps;
    for (const auto& submaterial : material.submaterials) {
        FinaliseMaterial(*submaterial, times, flags);
        material.has_reflection_map |= submaterial->has_reflection_map;
        material.has_diffuse_map |= submaterial->has_diffuse_map;
        material.has_bump_map |= submaterial->has_bump_map;
    }
}

void LoadMaps(KRN_MaterialInfo& material, const TickTimes& times, const SceneLoadFlags& flags, const MapFiles& files,
              const ErrorClass& reporter) {
    if (material.maps_loaded || flags.skip_textures) return;
    material.maps_loaded = true;
    MeshMaterial& drawn = material.drawn;
    drawn.blending |= !drawn.transparency_track.IsEmpty();
    MapLoader loader(material, times, files, reporter);
    if (loader.Load(material.reflection_map, MapRole::Reflection, "reflection")) {
        drawn.reflection_amount = material.reflection_map.amount;
        drawn.reflection_with_diffuse = material.diffuse_map.file.GetLength() > 0;
    }
    if (const MapSlot* slot = loader.Load(material.diffuse_map, MapRole::Diffuse, "diffuse")) {
        SetSequence(material.textures, material.diffuse_map, times.frames_per_second);
        if (!drawn.blending) drawn.blending = files.HasAlpha(slot->path.c_str());
        for (D3DCOLORVALUE* colour : {&drawn.colours.Diffuse, &drawn.colours.Ambient}) *colour = {1, 1, 1, colour->a};
    }
    if (flags.bump_maps) loader.Load(material.bump_map, MapRole::Bump, "bump");
    for (const auto& submaterial : material.submaterials) LoadMaps(*submaterial, times, flags, files, reporter);
}

}   // namespace sparkrig
