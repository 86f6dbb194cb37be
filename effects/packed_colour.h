// Colours as 32-bit ARGB. Components are not clamped: what lies outside [0, 1] wraps, as authored effects may rely on.
#pragma once
#include <cstdint>

#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

inline constexpr std::uint32_t kOpaque = 255;

/// Truncated towards zero. Where an int does not reach, 0: a float that large is a multiple of 256 anyway.
inline std::int32_t TruncateColour(float value) {
    return value >= -2147483648.0f && value < 2147483648.0f ? static_cast<std::int32_t>(value) : 0;
}

/// The low 8 bits of the component in 255ths.
inline std::uint32_t ColourByte(float component) {
    return static_cast<std::uint32_t>(TruncateColour(component * 255.0f)) & 255u;
}

inline std::uint32_t PackColour(float red, float green, float blue, std::uint32_t alpha) {
    return alpha << 24 | ColourByte(red) << 16 | ColourByte(green) << 8 | ColourByte(blue);
}
inline std::uint32_t PackColour(const D3DXVECTOR3& rgb, std::uint32_t alpha) {
    return PackColour(rgb.x, rgb.y, rgb.z, alpha);
}

}   // namespace sparkrig
