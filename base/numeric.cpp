#include "base/numeric.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace sparkrig {
namespace {

/// a in the period m. A quotient beyond all numbers (m is 0, or far too small for a) gives 0, which lies in any period.
template <class Float>
Float Wrap(Float a, Float m) {
    const Float t = std::trunc(a / m);
    if (!std::isfinite(t)) return 0;
    return a >= 0 ? a - m * t : a + m * (1 - t);
}

}   // namespace

int TruncateToInt(double x) {
    constexpr double kLowest = std::numeric_limits<int>::min(), kHighest = std::numeric_limits<int>::max();
    if (std::isnan(x)) return 0;
    if (x <= kLowest) return std::numeric_limits<int>::min();
    if (x >= kHighest) return std::numeric_limits<int>::max();
    return static_cast<int>(x);
}

int RoundToInt(double x) { return TruncateToInt(std::round(x)); }
int Round(float x) { return RoundToInt(x); }

double WrapFloat(double a, double m) { return Wrap(a, m); }
float WrapFloat(float a, float m) { return Wrap(a, m); }

int FloorDiv(float a, float m) {
    const double dividend = a, divisor = m;   // in doubles: a small negative a must not vanish beside m
    const double t = std::trunc(dividend / divisor);
    if (a >= 0) return TruncateToInt(t);
    const double u = 1 - t;
    return TruncateToInt(std::trunc((dividend + u * divisor) / divisor) - u);
}

int PositiveMod(int a, int m) {
    if (m == 0) return 0;
    const std::int64_t wide = a;
    return static_cast<int>(a >= 0 ? wide % m : (m - (-wide % m)) % m);
}

}   // namespace sparkrig
