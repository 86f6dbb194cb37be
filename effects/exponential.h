// The exponential function in single precision, which a compiler turns into vector code.
#pragma once
#include <bit>
#include <cstdint>

namespace sparkrig {

/// e to the power x, within 3e-7 of the result for x in [-1, 1], 1e-7 more for each beyond; x is in [-87, 87].
inline float Exponential(float x) {
    constexpr float kRounder = 0x1.8p+23f;   // adding and subtracting it rounds to the nearest integer
    const float power = x * 1.44269504f, rounded = power + kRounder, r = power - (rounded - kRounder);
    const float rest =   // 2 to the power r, minimax (Remez)
        1 + r * (0.69314697f + r * (0.24022120f + r * (0.055507133f + r * (9.6755413e-3f + r * 1.3276472e-3f))));
    return std::bit_cast<float>(std::bit_cast<std::uint32_t>(rest) + (std::bit_cast<std::uint32_t>(rounded) << 23));
}

}   // namespace sparkrig
