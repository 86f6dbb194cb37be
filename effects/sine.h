// Sine and cosine that a compiler turns into vector code: no table, no branch, no call.
//
// Accurate to 3e-11 of the result for angles up to a million, and as good as the rounding of the angle itself beyond.
// Every path of the effects uses these two, so that one instance and many at once give equal bits.
#pragma once
#include <bit>
#include <cmath>
#include <cstdint>

namespace sparkrig {

namespace sine_detail {

constexpr double kPi = 3.141592653589793;
// pi as the sum of two numbers; the first has 20 trailing zero bits, so that its product with a turn count is exact.
constexpr double kPiHigh = 0x1.921fb544p+1;
constexpr double kPiLow = 0x1.0b4611a626331p-33;
// Adding and subtracting it rounds to the nearest integer, whose lowest bit then is the sum's lowest bit.
constexpr double kRounder = 0x1.8p+52;

/// sin(r) for r in [-pi/2, pi/2]: odd minimax polynomial (Remez) for the relative error.
inline double Polynomial(double r) {
    const double s = r * r;
    return r *
           (0.99999999997883593439 +
            s * (-0.16666666608796471484 + s * (0.0083333307194933723981 +
                                                s * (-0.00019840832690427536924 +
                                                     s * (2.7523964358626888003e-6 + s * -2.3868228455719058467e-8)))));
}

/// The angle without `turns` half turns. Angles that are too large to have a phase have phase 0; a factor says so,
/// because a choice between two results would become a branch.
inline double Reduce(double angle, double turns) {
    const double r = (angle - turns * kPiHigh) - turns * kPiLow;
    return r * (std::abs(r) <= 2 ? 1.0 : 0.0);
}

inline double NegateIfOdd(double value, double rounded) {
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(value) ^ (std::bit_cast<std::uint64_t>(rounded) << 63));
}

}   // namespace sine_detail

inline double Sine(double angle) {
    using namespace sine_detail;
    const double rounded = angle * (1 / kPi) + kRounder;
    return NegateIfOdd(Polynomial(Reduce(angle, rounded - kRounder)), rounded);
}

inline double Cosine(double angle) {
    using namespace sine_detail;
    const double rounded = (angle * (1 / kPi) - 0.5) + kRounder;
    return -NegateIfOdd(Polynomial(Reduce(angle, (rounded - kRounder) + 0.5)), rounded);
}

/// Both in single precision, within 1e-6, twice as fast.
inline void SineAndCosine(float angle, float& sine, float& cosine) {
    using namespace sine_detail;
    const double rounded = angle * (2 / kPi) + kRounder;   // quarter turns
    const double quarters = rounded - kRounder;
    const auto r = static_cast<float>(angle - quarters * (kPi / 2));   // in [-pi/4, pi/4]
    const float s = r * r;
    const float odd = r * (1 + s * (-1.6666654611e-1f + s * (8.3321608736e-3f + s * -1.9515295891e-4f)));
    const float even =
        1 - 0.5f * s + s * s * (4.166664568298827e-2f + s * (-1.388731625493765e-3f + s * 2.443315711809948e-5f));
    const auto quarter = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(rounded));
    const bool swap = (quarter & 1u) != 0;
    const auto flip = [](float value, std::uint32_t sign) {
        return std::bit_cast<float>(std::bit_cast<std::uint32_t>(value) ^ sign << 31);
    };
    sine = flip(swap ? even : odd, quarter >> 1 & 1u);
    cosine = flip(swap ? odd : even, (quarter ^ quarter >> 1) & 1u);
}

}   // namespace sparkrig
