#include "gfx/device/frame_timing.h"

namespace sparkrig {

namespace {
constexpr double kSampleSeconds = 0.016666668;
constexpr double kWindowSeconds = 1.0;
}   // namespace

void FrameTimeRing::Presented(double now) {
    if (now - entries_[Previous(write_)].time > kSampleSeconds) {
        entries_[write_] = {total_frames_, now};
        write_ = Next(write_);
    }
    last_present_ = now;
    ++total_frames_;
}

float FrameTimeRing::Rate() const {
    const int newest = Previous(write_);
    int oldest = write_;
    double span = entries_[newest].time - entries_[oldest].time;
    while (span > kWindowSeconds && Next(oldest) != newest) {
        oldest = Next(oldest);
        span = entries_[newest].time - entries_[oldest].time;
    }
    if (span <= 0) return 0;
    return static_cast<float>((entries_[newest].frames - entries_[oldest].frames) / span);
}

}   // namespace sparkrig
