// The semantics by which the engine knows an effect's parameters, in the order of their lookup.
#pragma once
#include <array>
#include <cstddef>

#include "platform/d3dx/d3dx_effect.h"

namespace sparkrig {

// clang-format off
enum class Semantic {
    WorldViewProjection, WorldView, World, WorldInverseTranspose, View, ViewInverse, Projection, ViewProjection,
    ViewPosition, DiffuseMap, NormalMap, Time, ElapsedTime, GameTime, Random, FogStartEnd, InvViewPortDim,
    TextureMatrix, Opacity, ScreenCopy, ScreenQuarterBuffer1, ScreenQuarterBuffer2, ScreenQuarterBuffer3,
    ScreenBuffer1, ScreenBuffer2, NumBlendWeights, WorldMatrixArray, ReflectionMapType, ReflectionMap,
    TransformReflectionMap, DiffuseMaterial, AmbientMaterial, SpecularMaterial, EmissiveMaterial, SpecularPower,
    NumDirectionalLights, NumOmniLights, OmniLightPosition, OmniLightDiffCol, OmniLightSpecCol, OmniLightAmbiCol,
    OmniLightAttenuation, DirectionalLightDirection, DirectionalLightDiffCol, DirectionalLightSpecCol, AmbientColor,
    FloatParameter1, FloatParameter2, FloatParameter3, FloatParameter4, FloatParameter5, FloatParameter6,
    FloatParameter7, FloatParameter8, VectorParameter1, VectorParameter2, VectorParameter3, VectorParameter4,
    VectorParameter5, VectorParameter6, VectorParameter7, VectorParameter8, Count,
};
// clang-format on

/// The semantics of lights and of ambient light stand together.
constexpr bool IsLightSemantic(std::size_t semantic) {
    return semantic >= static_cast<std::size_t>(Semantic::NumDirectionalLights) &&
           semantic <= static_cast<std::size_t>(Semantic::AmbientColor);
}

inline constexpr std::size_t kSemantics = static_cast<std::size_t>(Semantic::Count);
inline constexpr int kNumberedParameters = 8;   // fParam1 to fParam8, vParam1 to vParam8

const char* SemanticName(Semantic semantic);

/// One handle a semantic; null where the effect has no such parameter.
using SemanticHandles = std::array<D3DXHANDLE, kSemantics>;
SemanticHandles FindSemantics(ID3DXEffect& effect);

}   // namespace sparkrig
