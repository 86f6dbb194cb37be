#pragma once
#include "tools/fxc/diagnostics.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

/// Reads the preprocessed tokens of an effect. Faults are reported; the result is then incomplete.
ParsedEffect ParseEffect(const Tokens& tokens, Diagnostics& diagnostics);

}   // namespace sparkrig::fxc
