#include "gfx/shaders/shader_effect_semantics.h"

namespace sparkrig {

namespace {

// clang-format off
constexpr const char* kNames[] = {
    "WORLDVIEWPROJECTION", "WORLDVIEW", "WORLD", "WORLDINVERSETRANSPOSE", "VIEW", "VIEWINVERSE", "PROJECTION",
    "VIEWPROJECTION", "VIEWPOSITION", "DIFFUSEMAP", "NORMALMAP", "TIME", "ELAPSEDTIME", "GAMETIME", "RANDOM",
    "FOGSTARTEND", "InvViewPortDim", "TextureMatrix", "Opacity", "SCREENCOPY", "SCREENQUARTERBUFFER1",
    "SCREENQUARTERBUFFER2", "SCREENQUARTERBUFFER3", "SCREENBUFFER1", "SCREENBUFFER2", "NUMBLENDWEIGHTS",
    "WORLDMATRIXARRAY", "REFLECTIONMAPTYPE", "REFLECTIONMAP", "TransformReflectionMap", "DiffuseMaterial",
    "AmbientMaterial", "SpecularMaterial", "EmissiveMaterial", "SpecularPower", "NumDirectionalLights",
    "NumOmniLights", "OmniLightPosition", "OmniLightDiffCol", "OmniLightSpecCol", "OmniLightAmbiCol",
    "OmniLightAttenuation", "DirectionalLightDirection", "DirectionalLightDiffCol", "DirectionalLightSpecCol",
    "AmbientColor", "fParam1", "fParam2", "fParam3", "fParam4", "fParam5", "fParam6", "fParam7", "fParam8",
    "vParam1", "vParam2", "vParam3", "vParam4", "vParam5", "vParam6", "vParam7", "vParam8",
};
// clang-format on
static_assert(std::size(kNames) == kSemantics);

}   // namespace

const char* SemanticName(Semantic semantic) { return kNames[static_cast<std::size_t>(semantic)]; }

SemanticHandles FindSemantics(ID3DXEffect& effect) {
    SemanticHandles handles = {};
    for (std::size_t i = 0; i < kSemantics; ++i) handles[i] = effect.GetParameterBySemantic(nullptr, kNames[i]);
    return handles;
}

}   // namespace sparkrig
