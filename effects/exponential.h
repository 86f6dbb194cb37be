// The exponential function in single precision, which a compiler turns into vector code.
#pragma once
#include <bit>
#include <cstdint>

namespace sparkrig {

/// e to the power x, within 3e-7 of the result; x is held in [-87, 87].
inline float Exponential(float x) {
    constexpr float kRounder = 0x1.8p+23f;   // adding and subtracting it rounds to the nearest integer
    x = x < -87.0f ? -87.0f : (x > 87.0f ? 87.0f : x);
    const float shifted = x * 1.44269504f + kRounder, n = shifted - kRounder;
    const float r = (x - n * 0.693359375f) + n * 2.12194440e-4f;
    const float rest =
        1 + r * (1 + r * (0.5f + r * (0.16666665f + r * (0.041665796f + r * (8.3334519e-3f + r * 1.3981999e-3f)))));
    const auto exponent = static_cast<std::uint32_t>(static_cast<std::int32_t>(n) + 127);
    return rest * std::bit_cast<float>(exponent << 23);
}

}   // namespace sparkrig
