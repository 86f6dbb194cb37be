#include "scene/key_curve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace sparkrig {
namespace {

float At(const ScalarCurve& curve, double time) {
    float value[1];
    curve.EvaluateCurve(time, value);
    return value[0];
}

/// Keys at 1, 2, 4 and 5.
ScalarCurve FourKeys() {
    ScalarCurve curve;
    curve.AddKey(1, {2});
    curve.AddKey(2, {5});
    curve.AddKey(4, {-3});
    curve.AddKey(5, {7});
    return curve;
}

TEST(KeyCurve, HoldsItsEndsWithoutALoop) {
    ScalarCurve curve = FourKeys();
    curve.ComputeTangents(1);
    for (const double time : {-9.0, 0.5, 1.0}) EXPECT_EQ(At(curve, time), 2) << time;
    for (const double time : {5.0, 5.5, 99.0}) EXPECT_EQ(At(curve, time), 7) << time;
}

TEST(KeyCurve, TangentsAreTheMeanSlopesTimesTheIntervals) {
    ScalarCurve curve = FourKeys();
    curve.ComputeTangents(1);
    // slopes of the segments: 3, -4, 10
    const struct { float in, out; } kRows[] = {{0, 3}, {0.5f, -1}, {-6, 3}, {-10, 0}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_FLOAT_EQ(curve.GetKey(i).in[0], kRows[i].in) << i;
        EXPECT_FLOAT_EQ(curve.GetKey(i).out[0], kRows[i].out) << i;
    }
}

TEST(KeyCurve, TensionScalesTheTangents) {
    ScalarCurve curve = FourKeys();
    curve.ComputeTangents(0.25f);
    EXPECT_FLOAT_EQ(curve.GetKey(1).in[0], 0.125f);
    EXPECT_FLOAT_EQ(curve.GetKey(2).out[0], 0.75f);
}

TEST(KeyCurve, InterpolatesByHermite) {
    ScalarCurve curve = FourKeys();
    curve.ComputeTangents(1);
    // s = 0.25 between the keys at 2 and 4: 5 * 0.84375 - 3 * 0.15625 - 1 * 0.140625 - (-6) * -0.046875
    EXPECT_NEAR(At(curve, 2.5), 4.21875f - 0.46875f - 0.140625f - 0.28125f, 1e-5);
}

TEST(KeyCurve, InterpolatesStraightInLinearMode) {
    ScalarCurve curve = FourKeys();
    curve.SetMode(CurveMode::Linear);
    EXPECT_FLOAT_EQ(At(curve, 2.5), 3);
}

TEST(KeyCurve, ALoopRunsFromTheLastKeyToTheFirst) {
    ScalarCurve curve;
    curve.SetMode(CurveMode::Linear);
    curve.AddKey(0, {3});
    curve.AddKey(1, {7});
    curve.SetLoop(true, 2);
    const std::tuple<double, float> kRows[] = {{0.5, 5}, {1, 7},   {1.25, 6},  {1.75, 4},
                                               {2, 3},   {6.5, 5}, {-0.25, 4}, {-1.5, 5}};
    for (const auto& [time, value] : kRows) EXPECT_FLOAT_EQ(At(curve, time), value) << time;
}

TEST(KeyCurve, TangentsOfALoopReachAcrossTheSeam) {
    ScalarCurve curve;
    curve.AddKey(0, {3});
    curve.AddKey(1, {7});
    curve.SetLoop(true, 3);
    curve.ComputeTangents(1);
    // slopes: 4 up, -2 from the last key to the first
    EXPECT_FLOAT_EQ(curve.GetKey(0).in[0], -2);   // -(-2 + 4) * 2 * 0.5
    EXPECT_FLOAT_EQ(curve.GetKey(0).out[0], 1);
    EXPECT_FLOAT_EQ(curve.GetKey(1).in[0], -1);
    EXPECT_FLOAT_EQ(curve.GetKey(1).out[0], 2);
    EXPECT_FLOAT_EQ(At(curve, 2), 3 * 0.5f + 7 * 0.5f + 2 * 0.125f - (-2) * -0.125f);
}

TEST(KeyCurve, ALoopThatEndsBeforeTheLastKeyEndsThere) {
    ScalarCurve curve = FourKeys();
    curve.SetLoop(true, 3);
    curve.ComputeTangents(1);
    EXPECT_NEAR(At(curve, 4), At(curve, 8), 1e-5);   // the period is 5 - 1
    EXPECT_TRUE(std::isfinite(At(curve, 3.999)));
}

TEST(KeyCurve, OneKeyIsAConstant) {
    for (const bool loop : {false, true}) {
        for (const float loop_end : {2.0f, 9.0f}) {
            ScalarCurve curve;
            curve.AddKey({.time = 2, .value = {6}, .in = {3}, .out = {4}});
            curve.SetLoop(loop, loop_end);
            for (const double time : {-3.0, 2.0, 4.5, 70.0}) EXPECT_FLOAT_EQ(At(curve, time), 6) << loop << time;
        }
    }
}

TEST(KeyCurve, EqualTimesMakeAStep) {
    ScalarCurve curve;
    curve.SetMode(CurveMode::Linear);
    curve.AddKey(0, {2});
    curve.AddKey(1, {4});
    curve.AddKey(1, {9});
    curve.AddKey(2, {11});
    EXPECT_NEAR(At(curve, 0.999999), 4, 1e-4);
    EXPECT_FLOAT_EQ(At(curve, 1), 9);
    EXPECT_FLOAT_EQ(At(curve, 1.5), 10);
}

TEST(KeyCurve, ComponentsAreIndependent) {
    VectorCurve curve;
    curve.AddKey(0, {2, -4, 6});
    curve.AddKey(2, {4, 8, 3});
    curve.ComputeTangents(1);
    float value[3];
    curve.EvaluateCurve(1, value);
    EXPECT_FLOAT_EQ(value[0], 3);
    EXPECT_FLOAT_EQ(value[1], 2);
    EXPECT_FLOAT_EQ(value[2], 4.5f);
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

TEST(KeyCurve, WithoutKeysIsZero) { EXPECT_EQ(At(ScalarCurve(), 3), 0); }

void ExpectScannedSegments(std::size_t count) {
    std::mt19937 generator(7);
    std::uniform_int_distribution<int> distance(0, 3);
    std::vector<CurveKey<1>> keys(count);
    for (std::size_t i = 1; i < keys.size(); ++i)
        keys[i].time = keys[i - 1].time + 0.25f * static_cast<float>(distance(generator));
    for (double time = -1; time < keys.back().time + 1; time += 0.0625) {
        int last = 0;
        for (int i = 0; i < static_cast<int>(keys.size()); ++i)
            if (keys[static_cast<std::size_t>(i)].time <= time) last = i;
        EXPECT_EQ(FindSegment(keys, time), last) << count << " keys, at " << time;
    }
}

TEST(FindSegment, FindsTheSegmentThatAScanFinds) {
    for (const std::size_t count : {1, 2, 8, 9, 200}) ExpectScannedSegments(count);
}

}   // namespace
}   // namespace sparkrig
