#include "app/clock.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

double now;
double Now() { return now; }

TEST(FrameClock, ClampsLongFramesAndKnowsNoStalls) {
    constexpr struct { double time, seconds; } kFrames[] = {{5.25, 0.0625}, {5.28125, 0.03125}, {8.5, 0.1}, {8.5, 0}};
    now = 5.1875;
    FrameClock clock(Now);
    const auto frame_at = [&](double time) {
        now = time;
        clock.NextFrame();
        EXPECT_EQ(clock.FrameTime(), time);
        return clock.FrameSeconds();
    };
    clock.Restart();
    for (const auto& frame : kFrames) EXPECT_EQ(frame_at(frame.time), frame.seconds);
    now = 60;
    clock.Restart();   // the stall before belongs to no frame
    EXPECT_EQ(frame_at(60.03125), 0.03125);
    now = 0;
    clock.Restart();
    EXPECT_EQ(frame_at(0.1), 0.1) << "exactly a tenth is kept";
}

TEST(FrameClock, SteppedMovesByEqualSteps) {
    FrameClock clock = FrameClock::Stepped(kAutomationStep);
    for (int frame = 1; frame <= 600; ++frame) {
        clock.NextFrame();
        EXPECT_EQ(clock.FrameSeconds(), kAutomationStep);
        clock.Restart();
    }
    EXPECT_DOUBLE_EQ(clock.Now(), 10.0);
}

TEST(FrameRate, IsMeasuredOverMoreThanASecond) {
    FrameRate rate;
    rate.Restart(3);
    for (int frame = 1; frame <= 4; ++frame) rate.CountFrame(3 + frame * 0.25);
    EXPECT_EQ(rate.PerSecond(), 0);
    rate.CountFrame(4.25);
    EXPECT_EQ(rate.PerSecond(), 4);
    for (int frame = 1; frame <= 3; ++frame) rate.CountFrame(4.25 + frame * 0.5);
    EXPECT_EQ(rate.PerSecond(), 2);
}

}   // namespace
}   // namespace sparkrig
