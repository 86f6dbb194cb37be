// What the annotations of an effect's passes ask for: where a pass draws, and when.
#pragma once
#include <cstdint>
#include <vector>

#include "base/error.h"
#include "platform/d3dx/d3dx_effect.h"

namespace sparkrig {

enum class TargetKind : std::int32_t {
    None = 0,            // where the drawing goes anyway
    QuarterBuffer = 1,   // "ScreenQuarterBuffer1" to 3
    FullBuffer = 2,      // "ScreenBuffer1" to 2
    Initial = 3,         // "Initial": what was the target before the passes around this one drew into buffers
};

/// How many screen buffers there are of a kind.
constexpr int BufferCount(TargetKind kind) {
    return kind == TargetKind::QuarterBuffer ? 3 : kind == TargetKind::FullBuffer ? 2 : 0;
}

struct PassTarget {
    TargetKind kind = TargetKind::None;
    std::int32_t index = 0;   // of the buffer, from 0
    bool init_pass = false;   // drawn only while the effect's screen buffers are new
    bool no_pixel_shader = false;
};
static_assert(sizeof(PassTarget) == 12);

struct TechniqueTargets {
    bool has_pixel_shader = false;   // in one of its passes
    bool reads_tangents = false;     // one of its vertex shaders
    std::vector<PassTarget> passes;
};

/// One entry a technique. A buffer number beyond the count of its kind is an error of `reporter`.
std::vector<TechniqueTargets> ReadPassTargets(const KRN_Base& reporter, ID3DXEffect& effect);

}   // namespace sparkrig
