// The uniform blocks of the generated programs: the records as C++ fills them and their text in GLSL, side by side.
#pragma once
#include <array>

#include "platform/d3d9/device_state.h"
#include "platform/d3d9_gl/formats.h"

namespace sparkrig {

inline constexpr int kStatesBinding = 2, kTransformsBinding = 3, kLightingBinding = 4, kPaletteBinding = 5;
inline constexpr int kUniformBindings = 6;   // with the two of the shader functions

struct Vec4 {
    float x, y, z, w;
};

/// What render and stage states give as numbers.
struct StatesBlock {
    Vec4 half_pixel;    // 1/W, -1/H of the viewport; 2/TW, 2/TH of the target
    Vec4 point;         // size, smallest, largest, height of the viewport
    Vec4 point_scale;   // A, B, C
    Vec4 fog;           // start, end, density, 1 / (end - start)
    Rgba fog_colour;
    Rgba texture_factor;
    Vec4 pixel;   // alpha reference 0..255; 1 where the projection is affine, so that fog goes by depth and not by w
    std::array<Rgba, kTextureStages> constants;
    std::array<Vec4, kTextureStages> bump;   // M00, M01, M10, M11
};
inline constexpr const char* kStatesGlsl = R"(layout(std140, binding = 2) uniform StatesBlock {
    vec4 half_pixel;
    vec4 point;
    vec4 point_scale;
    vec4 fog;
    vec4 fog_colour;
    vec4 texture_factor;
    vec4 pixel;
    vec4 constants[8];
    vec4 bump[8];
} d3d_states;
)";

struct TransformsBlock {
    D3DMATRIX world_view, view, projection;
    std::array<Vec4, 3> normal;   // what the three axes of a normal become in camera space
};
inline constexpr const char* kTransformsGlsl = R"(layout(std140, binding = 3) uniform TransformsBlock {
    mat4 world_view;
    mat4 view;
    mat4 projection;
    vec4 normal[3];
} d3d_transforms;
)";

/// A light in camera space.
struct LightRow {
    Rgba diffuse, specular, ambient;
    Vec4 position;      // w: range
    Vec4 direction;     // towards the light's source of a directional one, unit; w: D3DLIGHTTYPE
    Vec4 attenuation;   // a0, a1, a2, falloff
    Vec4 cone;          // cos(theta / 2), cos(phi / 2)
};
struct LightingBlock {
    Rgba ambient;
    Rgba diffuse_material, ambient_material, specular_material, emissive_material;
    Vec4 counts;   // x: lights, y: power
    std::array<D3DMATRIX, kTextureStages> texture;
    std::array<LightRow, kMaxActiveLights> lights;
};
inline constexpr const char* kLightingGlsl = R"(struct LightRow {
    vec4 diffuse;
    vec4 specular;
    vec4 ambient;
    vec4 position;
    vec4 direction;
    vec4 attenuation;
    vec4 cone;
};
layout(std140, binding = 4) uniform LightingBlock {
    vec4 ambient;
    vec4 diffuse_material;
    vec4 ambient_material;
    vec4 specular_material;
    vec4 emissive_material;
    vec4 counts;
    mat4 texture_matrix[8];
    LightRow lights[8];
} d3d_lighting;
)";

using PaletteBlock = std::array<D3DMATRIX, kWorldMatrices>;
inline constexpr const char* kPaletteGlsl = R"(layout(std140, binding = 5) uniform PaletteBlock {
    mat4 world[256];
} d3d_palette;
)";

/// target_width, target_height: of the render target in pixels.
void FillStates(const DeviceState& state, UINT target_width, UINT target_height, StatesBlock& block);
void FillTransforms(const DeviceState& state, TransformsBlock& block);
void FillLighting(const DeviceState& state, LightingBlock& block);

}   // namespace sparkrig
