// How much was drawn in a frame.
#pragma once
#include <cstdint>

namespace sparkrig {

/// What was drawn since the last frame was presented, and the switch that stops drawing but not counting.
struct DrawStatistics {
    std::uint32_t draw_calls = 0;
    std::uint32_t primitives = 0;
    std::uint32_t meshes = 0;
    bool suppress_draws = false;

    void Count(std::uint32_t primitive_count) {
        ++draw_calls;
        primitives += primitive_count;
    }
    void NextFrame() { draw_calls = primitives = meshes = 0; }
};

}   // namespace sparkrig
