// The values that parameters get by their semantics, from what the graphics device holds.
#pragma once
#include <span>

#include "gfx/shaders/shader_effect_registry.h"

namespace sparkrig {

class KRN_Gfx;
class KRN_ShaderEffect;

/// The matrices, times, fog and viewport values of this moment.
void FillFrameSemantics(KRN_Gfx& gfx, KRN_ShaderEffect& effect, const ShaderEffectData& data,
                        ShaderEffectSettings& settings);
/// The textures that "ResourceName" annotations name, through the texture catalogue.
void FillResourceTextures(KRN_Gfx& gfx, KRN_ShaderEffect& effect, const ShaderEffectData& data);
/// The copy of the screen, unless a pass that reads it is being drawn already, and the screen buffers.
void FillScreenTextures(KRN_Gfx& gfx, KRN_ShaderEffect& effect, const ShaderEffectData& data);
void FillObjectSemantics(KRN_Gfx& gfx, KRN_ShaderEffect& effect, const ShaderEffectData& data, int blend_weights,
                         std::span<const D3DXMATRIX> palette);
void FillLightSemantics(KRN_Gfx& gfx, KRN_ShaderEffect& effect, const ShaderEffectData& data);
void FillMaterialSemantics(KRN_Gfx& gfx, KRN_ShaderEffect& effect, const ShaderEffectData& data);

}   // namespace sparkrig
