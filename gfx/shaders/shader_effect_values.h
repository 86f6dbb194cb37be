// The values that parameters get by their semantics, from what the device and the program around it hold.
#pragma once
#include <span>

#include "gfx/shaders/shader_effect_registry.h"

namespace sparkrig {

class KRN_ShaderEffect;
struct ShaderEffectContext;

/// The matrices, times, fog and viewport values of this moment.
void FillFrameSemantics(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data,
                        ShaderEffectSettings& settings);
/// The textures that "ResourceName" annotations name, through the texture catalogue.
void FillResourceTextures(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data);
/// The copy of the screen, unless a pass that reads it is being drawn already, and the screen buffers.
void FillScreenTextures(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data);
void FillObjectSemantics(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data,
                         int blend_weights, std::span<const D3DXMATRIX> palette);
void FillLightSemantics(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data);
void FillMaterialSemantics(const ShaderEffectContext& context, KRN_ShaderEffect& effect, const ShaderEffectData& data);

}   // namespace sparkrig
