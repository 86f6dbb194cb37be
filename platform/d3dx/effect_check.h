// The check that every compiled effect from outside goes through before it is used.
#pragma once
#include <string>

#include "platform/d3dx/effect_file.h"

namespace sparkrig {

/// What is out of range in a compiled effect that came from outside; empty when every index, count and size is good.
std::string FindEffectFault(const EffectFile& effect);

}   // namespace sparkrig
