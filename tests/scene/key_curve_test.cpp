// Single curves; their tangents and loops are also those of a plain reference in the tests of the effects' motion.
#include "scene/key_curve.h"

#include <cmath>
#include <random>
#include "tests/support/test.h"

namespace sparkrig {
namespace {

float At(const ScalarCurve& curve, double time) {
    float value[1] = {-7};
    curve.EvaluateCurve(time, value);
    return value[0];
}

ScalarCurve CurveOf(std::initializer_list<std::pair<float, float>> keys) {
    ScalarCurve curve;
    for (const auto& [time, value] : keys) curve.AddKey(time, {value});
    return curve;
}

TEST(KeyCurve, HasTheMeanSlopesTimesTheIntervalsAsTangents) {
    ScalarCurve curve = CurveOf({{1, 2}, {2, 5}, {4, -3}, {5, 7}});   // slopes of the segments: 3, -4, 10
    for (const float tension : {1.0f, 0.25f}) {
        curve.ComputeTangents(tension);
        constexpr std::pair<float, float> kRows[] = {{0, 3}, {0.5f, -1}, {-6, 3}, {-10, 0}};   // in, out
        for (int i = 0; i < 4; ++i) {
            EXPECT_FLOAT_EQ(curve.GetKey(i).in[0], kRows[i].first * tension) << i;
            EXPECT_FLOAT_EQ(curve.GetKey(i).out[0], kRows[i].second * tension) << i;
        }
    }
    curve.SetLoop(true, 3);   // ends at the last key all the same: the period is 5 - 1
    curve.ComputeTangents(1);
    EXPECT_NEAR(At(curve, 4), At(curve, 8), 1e-5);
    EXPECT_TRUE(std::isfinite(At(curve, 3.999)));
}

TEST(KeyCurve, ALoopRunsFromTheLastKeyToTheFirst) {
    ScalarCurve curve = CurveOf({{0, 3}, {1, 7}});
    curve.SetLoop(true, 3);
    curve.ComputeTangents(1);
    curve.SetMode(CurveMode::Linear);
    curve.SetLoop(true, 2);
    constexpr std::pair<double, float> kRows[] = {{0.5, 5}, {1, 7},   {1.25, 6},  {1.75, 4},
                                                  {2, 3},   {6.5, 5}, {-0.25, 4}, {-1.5, 5}};
    for (const auto& [time, value] : kRows) EXPECT_FLOAT_EQ(At(curve, time), value) << time;
}

TEST(KeyCurve, MayHaveNoKeyOneKeyOrTwoOfATime) {
    EXPECT_EQ(At(ScalarCurve(), 3), 0);
    for (const bool loop : {false, true}) {
        ScalarCurve one;
        one.AddKey({.time = 2, .value = {6}, .in = {3}, .out = {4}});
        for (const float loop_end : {2.0f, 9.0f}) {
            one.SetLoop(loop, loop_end);
            for (const double time : {-3.0, 2.0, 4.5, 70.0}) EXPECT_FLOAT_EQ(At(one, time), 6) << loop << time;
        }
    }
    ScalarCurve step = CurveOf({{0, 2}, {1, 4}, {1, 9}, {2, 11}});
    step.SetMode(CurveMode::Linear);
    EXPECT_NEAR(At(step, 0.999999), 4, 1e-4);
    EXPECT_FLOAT_EQ(At(step, 1), 9);
    EXPECT_FLOAT_EQ(At(step, 1.5), 10);
}

TEST(KeyCurve, TheDerivativeIsTheSlopeOfTheCurve) {
    for (const CurveMode mode : {CurveMode::Linear, CurveMode::Hermite}) {
        for (const bool loop : {false, true}) {
            ColourCurve curve;
            curve.AddKey({.time = 2, .value = {3, 5, 7, 9}, .in = {-1, 2, 4, 8}, .out = {6, -2, 3, 5}});
            curve.AddKey({.time = 5, .value = {4, -6, 8, 2}, .in = {-3, 7, 2, -5}, .out = {2, 4, -8, 6}});
            curve.SetLoop(loop, 9);
            curve.SetMode(mode);
            for (const double time : {1.0, 2.75, 4.5, 7.25, 13.5}) {
                float before[4], behind[4], slope[4];
                curve.EvaluateCurve(time - 0.001, before);
                curve.EvaluateCurve(time + 0.001, behind);
                curve.EvaluateDerivative(time, slope);
                for (int i = 0; i < 4; ++i) EXPECT_NEAR(slope[i], (behind[i] - before[i]) / 0.002f, 0.01f) << time;
            }
        }
    }
}

TEST(FindSegment, FindsTheSegmentThatAScanFinds) {
    std::mt19937 generator(7);
    for (const std::size_t count : {1, 2, 8, 9, 200}) {
        std::vector<CurveKey<1>> keys(count);
        for (std::size_t i = 1; i < count; ++i)
            keys[i].time = keys[i - 1].time + 0.25f * static_cast<float>(generator() % 4);
        for (double time = -1; time < keys.back().time + 1; time += 0.0625) {
            int last = 0;
            for (std::size_t i = 0; i < count; ++i)
                if (keys[i].time <= time) last = static_cast<int>(i);
            EXPECT_EQ(FindSegment(keys, time), last) << count << " keys, at " << time;
        }
    }
}

}   // namespace
}   // namespace sparkrig
