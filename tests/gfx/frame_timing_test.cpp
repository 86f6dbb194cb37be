#include "gfx/device/frame_timing.h"

#include <gtest/gtest.h>

namespace sparkrig {
namespace {

TEST(FrameTiming, NothingIsMeasuredAtFirst) {
    FrameTimeRing ring;
    EXPECT_EQ(ring.Rate(), 0.0f);
    ring.Presented(50.0);
    EXPECT_EQ(ring.Rate(), 0.0f) << "one sample spans no time";
    EXPECT_EQ(ring.TotalFrames(), 1u);
    EXPECT_EQ(ring.LastPresent(), 50.0);
}

TEST(FrameTiming, MeasuresASteadyRate) {
    for (const double rate : {24.0, 50.0, 59.0, 240.0, 1000.0}) {
        FrameTimeRing ring;
        for (int frame = 0; frame < 5000; ++frame) ring.Presented(70 + frame / rate);
        EXPECT_NEAR(ring.Rate(), rate, rate * 0.02) << rate;
    }
}

TEST(FrameTiming, LooksAtTheLastSecondOnly) {
    FrameTimeRing ring;
    double now = 30;
    for (int frame = 0; frame < 40; ++frame) ring.Presented(now += 0.1);
    EXPECT_NEAR(ring.Rate(), 10, 0.5);
    for (int frame = 0; frame < 41; ++frame) ring.Presented(now += 0.025);
    EXPECT_NEAR(ring.Rate(), 40, 1);
}

TEST(FrameTiming, AStallLeavesTheLastTwoSamples) {
    FrameTimeRing ring;
    double now = 30;
    for (int frame = 0; frame < 70; ++frame) ring.Presented(now += 0.02);
    ring.Presented(now += 5);
    EXPECT_NEAR(ring.Rate(), 1 / 5.0, 0.01);
}

}   // namespace
}   // namespace sparkrig
