#pragma once
#include "tools/fxc/diagnostics.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

/// Rewrites in the effect's code what the compiler of functions does not take as it is written: half and double
/// become float, matrix swizzles become elements, and plain samplers get the shape that their use shows.
void AdaptCode(ParsedEffect& effect, Diagnostics& diagnostics);

}   // namespace sparkrig::fxc
