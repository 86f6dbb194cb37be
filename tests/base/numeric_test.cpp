#include "base/numeric.h"

#include <array>
#include <climits>
#include <cmath>
#include <limits>

#include "base/random.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

TEST(Numeric, RoundsHalvesAwayFromZeroAndClamps) {
    const std::pair<float, int> kRows[] = {{2.5f, 3},   {-2.5f, -3},          {0.49999997f, 0},
                                           {-7.4f, -7}, {1e30f, INT_MAX},     {-INFINITY, INT_MIN},
                                           {NAN, 0},    {8388609.0f, 8388609}};
    for (const auto& [x, rounded] : kRows) EXPECT_EQ(Round(x), rounded) << x;
    EXPECT_EQ(TruncateToInt(-3.9), -3);
    EXPECT_EQ(TruncateToInt(-1e300), INT_MIN);
    EXPECT_EQ(TruncateToInt(2147483647.5), INT_MAX);
}

TEST(Numeric, WrapsIntoThePeriod) {
    const std::array<double, 3> kRows[] = {{-0.25, 1, 0.75}, {-1, 1, 1}, {7.5, 2, 1.5},     {-7.5, 2, 0.5},
                                           {0, 3, 0},        {5, 0, 0},  {1e300, 1e-300, 0}};
    for (const auto& [a, m, wrapped] : kRows) {
        EXPECT_DOUBLE_EQ(WrapFloat(a, m), wrapped) << a;
        if (std::abs(a) > 1e30) continue;
        EXPECT_FLOAT_EQ(WrapFloat(static_cast<float>(a), static_cast<float>(m)), static_cast<float>(wrapped));
    }
}

TEST(Numeric, DividesRoundingDown) {
    const std::tuple<float, float, int> kRows[] = {{-1, 4, -1},     {7, 2, 3},       {-8, 4, -2},        {-9, 4, -3},
                                                   {-1e-9f, 4, -1}, {2.5f, 0.5f, 5}, {1e30f, 2, INT_MAX}};
    for (const auto& [a, m, quotient] : kRows) EXPECT_EQ(FloorDiv(a, m), quotient) << a;
}

TEST(Numeric, RemainderIsNeverNegative) {
    const struct { int a, m, remainder; } kRows[] = {{-1, 5, 4}, {-5, 5, 0}, {13, 5, 3}, {INT_MIN, 3, 1}, {7, 0, 0}};
    for (const auto& row : kRows) EXPECT_EQ(PositiveMod(row.a, row.m), row.remainder) << row.a;
}

// In its own process: only a generator that was never used can show its default seed.
TEST(RandomDeathTest, StartsFrom4357WhenNeverSeeded) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(std::exit(RandomUInt32() == 2867219139u ? 23 : 1), testing::ExitedWithCode(23), "");
}

TEST(Random, GivesThePublishedSequence) {
    SeedRandom(4357);
    for (const std::uint32_t published : {2867219139u, 1585203162u, 3113124129u, 2953900839u, 2463794868u})
        EXPECT_EQ(RandomUInt32(), published);
    for (int i = 5; i < 999; ++i) RandomUInt32();
    EXPECT_EQ(RandomUInt32(), 1030650439u);   // the thousandth
}

TEST(Random, FillsTheClosedUnitInterval) {
    SeedRandom(4357);
    EXPECT_DOUBLE_EQ(Random01(), 2867219139u / 4294967295.0);
    EXPECT_DOUBLE_EQ(RandomRange(-3, 5), -3 + 8 * (1585203162u / 4294967295.0));
}

}   // namespace
}   // namespace sparkrig
