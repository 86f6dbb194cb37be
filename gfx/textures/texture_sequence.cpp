#include "gfx/textures/texture_sequence.h"

#include <algorithm>
#include <cmath>

namespace sparkrig {
namespace {

/// x modulo m in [0, m), also for negative x.
double FloorMod(double x, double m) { return x - std::floor(x / m) * m; }

int ToFrame(double frame, int frames) { return static_cast<int>(std::clamp(frame, 0.0, frames - 1.0)); }

}   // namespace

int FrameAt(const SequenceTiming& timing, int frames, float t) {
    const double since = static_cast<double>(t) - timing.start, duration = timing.frame_seconds;
    const double frame = std::floor(since / duration);
    if (frames <= 1 || !(duration > 0) || !std::isfinite(duration) || !std::isfinite(frame)) return 0;
    switch (timing.mode) {
        case PlaybackMode::Once: return ToFrame(frame, frames);
        case PlaybackMode::PingPong: {
            const double pass = std::floor(since / (frames * duration));
            const int step =
                ToFrame(FloorMod(std::floor((since - pass * frames * duration) / duration), frames), frames);
            return FloorMod(pass, 2) == 1 ? frames - 1 - step : step;
        }
        default: return ToFrame(FloorMod(frame, frames), frames);
    }
}

}   // namespace sparkrig
