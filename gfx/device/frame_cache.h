// Which frame it is, and what was made for it already.
#pragma once
#include <cstdint>

namespace sparkrig {

/// Which frame is being drawn, and whether what was once made for a frame serves until that frame was presented.
struct FrameCache {
    bool on = false;
    std::int64_t frame = 0;

    /// Whether what was made in frame `made` serves now.
    bool Serves(std::int64_t made) const { return on && made == frame; }
    void NextFrame() { ++frame; }
};

}   // namespace sparkrig
