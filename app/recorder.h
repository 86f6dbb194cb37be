#pragma once
#include <string>

#include "effects/visual_effect_system.h"

namespace sparkrig {

/// One frame as a line of JSON: the clock, the counters of the last draw, every live instance by ascending id. Without
/// a line end.
std::string DescribeFrame(const VisualEffectSystem& effects, int frame);

}   // namespace sparkrig
