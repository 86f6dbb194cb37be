// The random numbers of the special effects' shapes, drawn once, and what the shapes make of them before an age is
// known.
#pragma once
#include <cstdint>
#include <numbers>

namespace sparkrig {

inline constexpr int kSpecialPoints = 256;   // of one shape at most

/// Points are computed eight at a time. Lane by lane an eight holds points 0 2 4 6 1 3 5 7, so that neighbours are
/// written side by side.
inline constexpr int kTogether = 8;
constexpr int PointOfLane(int lane) { return (lane & -kTogether) | (lane << 1 & 6) | (lane >> 2 & 1); }

/// What the shapes take for a turn, in radians and in half turns: authored effects are tuned to it.
inline constexpr double kTurn = 6.2832;
inline constexpr float kHalfTurns = static_cast<float>(kTurn / std::numbers::pi);

/// Points that start afresh again and again. Point i has a period of its own, spread x T[i] + least seconds, T[i + 1]
/// of which have gone at age 0. All by lane.
struct Cycles {
    /// Added to a number of periods it leaves that number in the low bits, in fixed point: 24 behind the point, and
    /// before it 8, which count the cycles modulo kSpecialPoints. Good to 134 million periods, and harmless beyond.
    static constexpr double kFixedPoint = 0x1.8p+28;

    double start[kSpecialPoints];        // periods at age 0, and kFixedPoint
    double per_second[kSpecialPoints];   // periods
};

/// The random numbers of a point of a flame or smoke while it rises once, as its formula uses them; sways are in half
/// turns, dampings in powers of two.
struct Rise {
    // sway speeds 0 1, sway starts 2 3, drifts 4 5, sways 6 7, dampings 8 9, height 10: pairs are of either side
    alignas(16) float numbers[12];
};

struct RandomTable {
    static constexpr int kMost = 16;            // numbers of one point
    float values[2 * kSpecialPoints + kMost];   // T: in [0, 1], over and over, so that At(k) + i needs no modulus
    Rise rises[kSpecialPoints];                 // of the points whose numbers begin at T[k]
    Cycles slow, fast;                          // of half a second and more, and of less

    /// kSpecialPoints draws of Random01.
    void Draw();
    /// An index counts modulo kSpecialPoints.
    const float* At(std::int64_t index) const { return values + (index & (kSpecialPoints - 1)); }
};

}   // namespace sparkrig
