// Eight numbers side by side: a register of the processors with AVX2, two of the others. What takes or returns them is
// inlined into the loop that uses it (SPARKRIG_VECTOR_CODE), so that it never matters how they would be handed over.
#pragma once
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "effects/four.h"

#pragma GCC diagnostic ignored "-Wpsabi"   // about how they would be handed over

namespace sparkrig {

using Eight = float __attribute__((vector_size(32)));
using EightWords = std::uint32_t __attribute__((vector_size(32)));
using EightInts = std::int32_t __attribute__((vector_size(32)));

inline Eight EightAt(const float* numbers) {
    Eight eight;
    std::memcpy(&eight, numbers, sizeof eight);
    return eight;
}
inline void Store(const Eight& eight, void* to) { std::memcpy(to, &eight, sizeof eight); }

/// The bits as they are.
inline EightWords Bits(Eight x) { return std::bit_cast<EightWords>(x); }
inline Eight FromBits(EightWords x) { return std::bit_cast<Eight>(x); }

/// Of values in (-2^31, 2^31), and back.
inline EightWords Truncated(Eight x) { return std::bit_cast<EightWords>(__builtin_convertvector(x, EightInts)); }
inline Eight Converted(EightWords x) { return __builtin_convertvector(std::bit_cast<EightInts>(x), Eight); }

using FourDoubles = double __attribute__((vector_size(32)));

inline FourDoubles FourDoublesAt(const double* numbers) {
    FourDoubles four;
    std::memcpy(&four, numbers, sizeof four);
    return four;
}

/// The lower half of the bits of each.
inline EightWords LowWords(FourDoubles first, FourDoubles second) {
    return __builtin_shufflevector(std::bit_cast<EightWords>(first), std::bit_cast<EightWords>(second), 0, 2, 4, 6, 8,
                                   10, 12, 14);
}

inline Eight SquareRoot(Eight x) {
    for (int lane = 0; lane < 8; ++lane) x[lane] = std::sqrt(x[lane]);
    return x;
}

// ---- Rows and columns

struct FourEights {
    Eight a, b, c, d;
};

/// Four numbers of each of eight lanes become the lanes of each number, and back: a row holds those of one lane, and
/// then those of the lane four further on.
inline FourEights Transposed(Eight row_0, Eight row_1, Eight row_2, Eight row_3) {
    const Eight low_01 = __builtin_shufflevector(row_0, row_1, 0, 8, 1, 9, 4, 12, 5, 13);
    const Eight low_23 = __builtin_shufflevector(row_2, row_3, 0, 8, 1, 9, 4, 12, 5, 13);
    const Eight high_01 = __builtin_shufflevector(row_0, row_1, 2, 10, 3, 11, 6, 14, 7, 15);
    const Eight high_23 = __builtin_shufflevector(row_2, row_3, 2, 10, 3, 11, 6, 14, 7, 15);
    return {__builtin_shufflevector(low_01, low_23, 0, 1, 8, 9, 4, 5, 12, 13),
            __builtin_shufflevector(low_01, low_23, 2, 3, 10, 11, 6, 7, 14, 15),
            __builtin_shufflevector(high_01, high_23, 0, 1, 8, 9, 4, 5, 12, 13),
            __builtin_shufflevector(high_01, high_23, 2, 3, 10, 11, 6, 7, 14, 15)};
}

/// Four numbers from each of two places: as a vector of halves, of which the second is inserted from memory. A shuffle
/// would have it loaded first.
inline Eight Joined(const float* low, const float* high) {
    __extension__ using Half = __int128;
    using Halves = Half __attribute__((vector_size(32)));
    Half halves[2];
    std::memcpy(&halves[0], low, sizeof(Half));
    std::memcpy(&halves[1], high, sizeof(Half));
    return std::bit_cast<Eight>(Halves{halves[0], halves[1]});
}

/// Of each lane the four numbers from `first` on.
inline FourEights FourOfEach(const float* const (&lanes)[8], int first) {
    const auto row = [&](int lane) { return Joined(lanes[lane] + first, lanes[lane + 4] + first); };
    return Transposed(row(0), row(1), row(2), row(3));
}

// ---- Pairs: where a lane has two numbers of a kind. An eight holds those of four lanes: of 0 1 4 5 (half 0), or of
// 2 3 6 7 (half 1).

struct TwoEights {
    Eight a, b;
};

/// Of each lane of a half the numbers `first` and `first` + 1, and the two behind them.
inline TwoEights PairsOfEach(const float* const (&lanes)[8], int first, int half) {
    const auto row = [&](int lane) { return Joined(lanes[lane] + first, lanes[lane + 4] + first); };
    const Eight row_0 = row(2 * half), row_1 = row(2 * half + 1);
    return {__builtin_shufflevector(row_0, row_1, 0, 1, 8, 9, 4, 5, 12, 13),
            __builtin_shufflevector(row_0, row_1, 2, 3, 10, 11, 6, 7, 14, 15)};
}

/// Each lane's number twice, for both halves.
inline TwoEights Doubled(Eight x) {
    return {__builtin_shufflevector(x, x, 0, 0, 1, 1, 4, 4, 5, 5),
            __builtin_shufflevector(x, x, 2, 2, 3, 3, 6, 6, 7, 7)};
}

/// The first number of each pair of both halves, by lane, and the second.
inline TwoEights Parted(Eight half_0, Eight half_1) {
    return {__builtin_shufflevector(half_0, half_1, 0, 2, 8, 10, 4, 6, 12, 14),
            __builtin_shufflevector(half_0, half_1, 1, 3, 9, 11, 5, 7, 13, 15)};
}

// ---- Functions: minimax polynomials (Lawson) behind a reduction of the argument

/// A number as a whole one and what is left of it, in [-1/2, 1/2]: for numbers below four million.
struct Nearest {
    EightWords whole;   // its low bits are those of the whole number
    Eight rest;

    explicit Nearest(Eight x) {
        constexpr float kRounder = 0x1.8p+23f;   // adding and subtracting it rounds to the nearest integer
        const Eight rounded = x + kRounder;
        whole = Bits(rounded);
        rest = x - (rounded - kRounder);
    }
    Eight NegatedIfOdd(Eight value) const { return FromBits(Bits(value) ^ whole << 31); }
    /// By 2 to the power of the whole number.
    Eight Scaled(Eight value) const { return FromBits(Bits(value) + (whole << 23)); }
};

/// sin(pi x), within 6e-7.
inline Eight SineOfHalfTurns(Eight x) {
    const Nearest n(x);
    const Eight s = n.rest * n.rest;
    return n.NegatedIfOdd(n.rest * (3.1415820f + s * (-5.1671428f + s * (2.5418990f + s * -0.55463598f))));
}
inline Eight CosineOfHalfTurns(Eight x) { return SineOfHalfTurns(x + 0.5f); }

/// The same within 7e-5.
inline Eight RoughSineOfHalfTurns(Eight x) {
    const Nearest n(x);
    const Eight s = n.rest * n.rest;
    return n.NegatedIfOdd(n.rest * (3.1406400f + s * (-5.1369049f + s * 2.2995457f)));
}

/// 2 to the power x, within 3e-6 of the result, 1 at 0; x is in [-126, 126].
inline Eight PowerOfTwo(Eight x) {
    const Nearest n(x);
    const Eight r = n.rest;
    return n.Scaled(1.0f + r * (0.69312419f + r * (0.24024099f + r * (0.055906430f + r * 0.0095828541f))));
}

/// The same within 8e-5.
inline Eight RoughPowerOfTwo(Eight x) {
    const Nearest n(x);
    const Eight r = n.rest;
    return n.Scaled(0.99992807f + r * (0.69326099f + r * (0.24261116f + r * 0.055171675f)));
}

}   // namespace sparkrig
