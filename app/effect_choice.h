#pragma once
#include <optional>
#include <string>

#include "effects/visual_effect_system.h"

namespace sparkrig {

/// The index of the effect of that name, ignoring letter case; 0 for an empty name. None, with a sentence on the error
/// stream, when there is no such effect.
std::optional<int> ChooseEffect(const VisualEffectSystem& effects, const std::string& name);

}   // namespace sparkrig
