#include "gfx/device/frame_timing.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

TEST(FrameTiming, MeasuresASteadyRate) {
    for (const double rate : {24.0, 50.0, 59.0, 240.0, 1000.0}) {
        FrameTimeRing ring;
        for (int frame = 0; frame < 5000; ++frame) {
            ring.Presented(70 + frame / rate);
            EXPECT_TRUE(frame > 0 || ring.Rate() == 0.0f) << "one sample spans no time";
        }
        EXPECT_NEAR(ring.Rate(), rate, rate * 0.02) << rate;
        EXPECT_EQ(ring.TotalFrames(), 5000u);
        EXPECT_EQ(ring.LastPresent(), 70 + 4999 / rate);
    }
}

TEST(FrameTiming, LooksAtTheLastSecondAndAtTwoSamplesAtLeast) {
    FrameTimeRing ring;
    double now = 30;
    const auto rate_after = [&](int frames, double seconds) {
        for (int frame = 0; frame < frames; ++frame) ring.Presented(now += seconds);
        return ring.Rate();
    };
    EXPECT_NEAR(rate_after(40, 0.1), 10, 0.5);
    EXPECT_NEAR(rate_after(41, 0.025), 40, 1);
    EXPECT_NEAR(rate_after(1, 5), 1 / 5.0, 0.01) << "a stall";
}

}   // namespace
}   // namespace sparkrig
