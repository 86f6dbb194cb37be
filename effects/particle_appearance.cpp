// Built as motion_lanes.cpp is.
#include "effects/particle_appearance.h"

#include "effects/packed_colour.h"
#include "effects/vector_code.h"

namespace sparkrig {
namespace {

constexpr int kSubtractiveBlendMode = 5;
constexpr std::uint32_t kSubtractiveAlpha = 1;   // 0 means invisible

/// The byte times `factor` 65536ths. Where the product leaves the byte, it wraps.
std::uint32_t Scaled(std::uint32_t byte, std::uint32_t factor) { return byte * factor >> 16 & 255u; }

}   // namespace

SPARKRIG_VECTOR_CODE void PackParticleColours(const VectorLanes& rgb, const float (&alpha)[kLanes], int count,
                                              int blend_mode, std::uint32_t (&colours)[kLanes]) {
    if (blend_mode != kSubtractiveBlendMode) {
        for (int i = 0; i < count; ++i) colours[i] = PackColour(rgb.x[i], rgb.y[i], rgb.z[i], ColourByte(alpha[i]));
        return;
    }
    for (int i = 0; i < count; ++i) {
        const auto factor = static_cast<std::uint32_t>(TruncateColour(alpha[i] * 65536.0f));
        const std::uint32_t shown = ColourByte(alpha[i]) != 0 ? kSubtractiveAlpha : 0;
        colours[i] = shown << 24 | Scaled(ColourByte(rgb.x[i]), factor) << 16 |
                     Scaled(ColourByte(rgb.y[i]), factor) << 8 | Scaled(ColourByte(rgb.z[i]), factor);
    }
}

}   // namespace sparkrig
