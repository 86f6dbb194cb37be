// The layer's compiled form of one vertex or pixel function, and the tables by which stages meet.
//
// A function is GLSL 4.50 text with one `void main()`; the device puts what Direct3D does around it (the half-pixel
// shift, fog, alpha test). Vertex inputs, interpolants and samplers have fixed numbers, so that any vertex function,
// or the fixed vertex pipeline, meets any pixel function, or the fixed texture stages.
//   vertex inputs   layout(location = kInput…) in vec4 …; blend indices are whole numbers 0..255 as floats
//   vertex outputs  gl_Position: the Direct3D clip position (0 <= z <= w, no half-pixel shift);
//                   layout(location = kVarying…) out vec4 …; unwritten ones are not declared
//   pixel inputs    layout(location = kVarying…) in vec4 …
//   pixel output    layout(location = 0) out vec4 pixel_color; depth, if any, through gl_FragDepth
//   globals         layout(std140, binding = kVertexGlobalsBinding / kPixelGlobalsBinding) uniform block
//   samplers        layout(binding = N) uniform sampler2D …, N the sampler register 0..15 (pixel functions only)
#pragma once
#include <string>
#include <vector>

#include "platform/system/win_types.h"

namespace sparkrig {

enum VertexInput : int {
    kInputPosition = 0,
    kInputBlendWeight = 1,
    kInputBlendIndices = 2,
    kInputNormal = 3,
    kInputPointSize = 4,
    kInputColor0 = 5,
    kInputColor1 = 6,
    kInputTexCoord0 = 7,   // .. 14 for set 7
    kInputTangent = 15,    // set 7 once more, where it has four floats: a tangent, and the side of its binormal
};
inline constexpr int kVertexInputs = 16;

enum Varying : int {
    kVaryingColor0 = 0,
    kVaryingColor1 = 1,
    kVaryingTexCoord0 = 2,   // .. 9 for set 7
    kVaryingFog = 10,
    kVaryingExtra = 11,   // .. 23 for functions that agree on further ones
};
inline constexpr int kVaryings = 24;

inline constexpr int kVertexGlobalsBinding = 0;
inline constexpr int kPixelGlobalsBinding = 1;

struct ShaderCode {
    std::string glsl;
    DWORD globals_bytes = 0;          // size of the uniform block, 0 for none
    DWORD inputs = 0;                 // vertex: bit n is set when input n is read
    DWORD varyings = 0;               // vertex: bit n is set when varying n is written; pixel: when it is read
    bool writes_point_size = false;   // vertex: gl_PointSize is written
    bool operator==(const ShaderCode&) const = default;
};

}   // namespace sparkrig
