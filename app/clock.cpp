#include "app/clock.h"

#include <algorithm>

namespace sparkrig {

FrameClock FrameClock::Stepped(double step_seconds) {
    FrameClock clock(nullptr);
    clock.step_ = step_seconds;
    return clock;
}

void FrameClock::NextFrame() {
    if (!source_) {
        ++frames_;
        frame_time_ = static_cast<double>(frames_) * step_;   // not a sum: no error may grow
        frame_seconds_ = step_;
        return;
    }
    const double now = source_();
    frame_seconds_ = std::min(now - frame_time_, kLongestFrame);
    frame_time_ = now;
}

void FrameClock::Restart() {
    if (source_) frame_time_ = source_();
}

void FrameRate::CountFrame(double frame_time) {
    constexpr double kWindowSeconds = 1.0;
    ++frames_;
    const double elapsed = frame_time - window_start_;
    if (elapsed <= kWindowSeconds) return;
    per_second_ = static_cast<float>(frames_ / elapsed);
    Restart(frame_time);
}

}   // namespace sparkrig
