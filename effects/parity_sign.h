#pragma once
#include <cstdint>

namespace sparkrig {

/// -1 for an odd number of whole hundredths, else 1: what a random number decides about mirroring.
inline float ParitySign(float random) {
    const float hundredths = random * 100;
    const bool in_range = hundredths >= -2147483648.0f && hundredths < 2147483648.0f;
    return (static_cast<std::int32_t>(in_range ? hundredths : 0.0f) & 1) != 0 ? -1.0f : 1.0f;
}

}   // namespace sparkrig
