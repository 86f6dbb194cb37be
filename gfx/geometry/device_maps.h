// The texture that a device has of a material's maps, and the shader effect that a material names. They hang on the
// scene's records, so that copies of a record share them.
#pragma once
#include "gfx/shaders/shader_effect.h"
#include "gfx/textures/texture_loader.h"
#include "scene/mesh_material.h"

namespace sparkrig {

/// The maps of one material as the layers of one texture, in the order of their slots. Those without a picture take no
/// layer.
struct DeviceMaps : DeviceResource {
    KRN_Texture texture;
    int layers = 0;
};

/// Made if there are none yet: the pictures are loaded. What cannot be loaded is an error.
DeviceMaps& MakeDeviceMaps(TextureLoader& loader, TextureRecord& maps);

/// A shader effect that a material names.
struct DeviceEffect : DeviceResource {
    KRN_ShaderEffect effect;
};

/// Null for a material without, or with one that was not found.
KRN_ShaderEffect* EffectOf(const MeshMaterial& material);
/// Gives the effect the parameters that the material names, for the draws until its next End.
void SetParameters(const ShaderSettings& settings, KRN_ShaderEffect& effect);

}   // namespace sparkrig
