// The one place that the frame loop takes its time from.
#pragma once
#include "base/log.h"

namespace sparkrig {

/// The length of one frame of automation.
inline constexpr double kAutomationStep = 1.0 / 60.0;

class FrameClock {
  public:
    using Source = double (*)();
    static constexpr double kLongestFrame = 0.1;   // seconds; a longer stall counts as this

    FrameClock() : FrameClock(GetSeconds) {}
    explicit FrameClock(Source source) : source_(source) {}
    /// A clock that stands still but for NextFrame, which moves it by one step.
    static FrameClock Stepped(double step_seconds);

    double Now() const { return source_ ? source_() : frame_time_; }
    /// Begins the next frame: its time is now, its length the time since the frame before or since Restart.
    void NextFrame();
    /// What has passed up to now belongs to no frame.
    void Restart();
    double FrameTime() const { return frame_time_; }
    double FrameSeconds() const { return frame_seconds_; }

  private:
    Source source_;   // null for a stepped clock
    double step_ = 0;
    long long frames_ = 0;
    double frame_time_ = 0;
    double frame_seconds_ = 0;
};

/// Frames per second, measured over windows of a little more than one second.
class FrameRate {
  public:
    void Restart(double now) { window_start_ = now, frames_ = 0; }
    void CountFrame(double frame_time);
    float PerSecond() const { return per_second_; }

  private:
    double window_start_ = 0;
    int frames_ = 0;
    float per_second_ = 0;
};

}   // namespace sparkrig
