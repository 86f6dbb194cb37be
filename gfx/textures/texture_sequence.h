// Which frame of a picture sequence is shown at a time.
#pragma once
#include <cstdint>

namespace sparkrig {

enum class PlaybackMode : std::int32_t { Loop = 0, PingPong = 1, Once = 2 };

struct SequenceTiming {
    float start = 0;                      // seconds
    float frame_seconds = 1.0f / 30.0f;   // the rate at which frame lists are made
    PlaybackMode mode = PlaybackMode::Loop;
};

/// The frame at time t (seconds), in 0 .. frames - 1. A frame duration that is not above 0 shows frame 0.
int FrameAt(const SequenceTiming& timing, int frames, float t);

}   // namespace sparkrig
