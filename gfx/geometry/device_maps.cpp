#include "gfx/geometry/device_maps.h"

#include <string>

#include "gfx/textures/frame_list.h"

namespace sparkrig {

namespace {

/// Whether the map can be a layer of its own. A picture sequence fills a whole texture.
bool FitsBeside(const KRN_Texture& texture, int layers, const char* path) {
    return layers == 0 || (texture.SequenceFrames() == 0 && !IsFrameListName(path));
}

void AddLayer(TextureLoader& loader, const MapSlot& slot, DeviceMaps& maps) {
    KRN_Texture& texture = maps.texture;
    texture.SelectLayer(maps.layers, false);
    loader.LoadTexture(&texture, slot.path.c_str(), 0, 0, -1, 1);
    texture.SetStageMap(maps.layers, static_cast<MapKind>(slot.role), slot.factor);
    texture.SetLayerAnimation(maps.layers, slot.animation);
    ++maps.layers;
}

SequenceTiming TimingOf(const TextureRecord& maps) {
    return {maps.start, maps.frame_seconds, static_cast<PlaybackMode>(maps.playback)};
}

}   // namespace

DeviceMaps& MakeDeviceMaps(TextureLoader& loader, TextureRecord& maps) {
    if (maps.device) return static_cast<DeviceMaps&>(*maps.device);
    auto made = std::make_shared<DeviceMaps>();
    for (const MapSlot& slot : maps.slots) {
        if (slot.path.GetLength() == 0) continue;
        if (FitsBeside(made->texture, made->layers, slot.path.c_str())) {
            AddLayer(loader, slot, *made);
        } else {
            made->texture.Warning("No stages with texture sequence allowed");
        }
    }
    if (made->texture.SequenceFrames() == 0) made->texture.SelectLayer(0, false);
    made->texture.SetSequenceTiming(TimingOf(maps));
    maps.device = made;
    return *made;
}

KRN_ShaderEffect* EffectOf(const MeshMaterial& material) {
    return material.shader.device ? &static_cast<DeviceEffect&>(*material.shader.device).effect : nullptr;
}

void SetParameters(const ShaderSettings& settings, KRN_ShaderEffect& effect) {
    int number = 0;
    for (const ShaderSettings::Parameter& parameter : settings.parameters) {
        ++number;
        const auto handle = [&](const char* kind) {
            return effect.ParameterBySemantic((kind + std::to_string(number)).c_str());
        };
        if (parameter.number)
            if (const D3DXHANDLE place = handle("fParam")) effect.SetParameter(place, *parameter.number);
        if (!parameter.vector) continue;
        const auto& [x, y, z] = *parameter.vector;
        if (const D3DXHANDLE place = handle("vParam")) effect.SetParameter(place, D3DXVECTOR4{x, y, z, 1});
    }
}

}   // namespace sparkrig
