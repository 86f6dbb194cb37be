#include "effects/random_table.h"

#include <algorithm>
#include <iterator>
#include <numbers>

#include "base/random.h"

namespace sparkrig {
namespace {

void FindCycles(const RandomTable& table, double spread, double least, Cycles& cycles) {
    for (int lane = 0; lane < kSpecialPoints; ++lane) {
        const float* T = table.At(PointOfLane(lane));
        cycles.start[lane] = T[1] + Cycles::kFixedPoint;
        cycles.per_second[lane] = 1 / (spread * T[0] + least);
    }
}

Rise RiseOf(const float* T) {
    constexpr float kLog2E = std::numbers::log2e_v<float>;
    Rise rise = {};
    const float radius = 0.2f * T[7] + 0.4f;
    for (int side = 0; side < 2; ++side) {
        rise.numbers[0 + side] = kHalfTurns * (3 * T[2 + side] + 1);
        rise.numbers[2 + side] = kHalfTurns * T[4 + side];
        rise.numbers[4 + side] = radius * 1.5f * (2 * T[8 + side] - 1);
        rise.numbers[6 + side] = radius * 0.3f * T[12 + side];
        rise.numbers[8 + side] = -kLog2E * (2 + 2.5f * T[10 + side]);
    }
    rise.numbers[10] = 0.4f * T[6] + 0.5f;
    return rise;
}

}   // namespace

void RandomTable::Draw() {
    std::generate_n(values, kSpecialPoints, [] { return static_cast<float>(Random01()); });
    for (int i = kSpecialPoints; i < std::ssize(values); ++i) values[i] = values[i - kSpecialPoints];
    for (int k = 0; k < kSpecialPoints; ++k) rises[k] = RiseOf(At(k));
    FindCycles(*this, 0.2, 0.5, slow);
    FindCycles(*this, 0.1, 0.3, fast);
}

}   // namespace sparkrig
