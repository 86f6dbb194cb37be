// What a particle looks like at its present age.
#pragma once
#include "effects/motion_lanes.h"

namespace sparkrig {

/// Packed colours of up to kLanes particles. The alpha byte is that of `alpha`, an instance's alpha, wrapped like the
/// colours. In the subtractive blend mode the colours are multiplied by the alpha instead, and the alpha byte is 1, or
/// 0 where it would have been 0.
void PackParticleColours(const VectorLanes& rgb, const float (&alpha)[kLanes], int count, int blend_mode,
                         std::uint32_t (&colours)[kLanes]);

}   // namespace sparkrig
