#pragma once
#include <string>

#include "platform/d3dx/effect_file.h"

namespace sparkrig::fxc {

/// An effect as text: parameters with semantics, annotations and values; techniques, and why one is not valid; passes
/// with their states.
std::string DescribeEffect(const EffectFile& effect);

}   // namespace sparkrig::fxc
