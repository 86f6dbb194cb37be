#pragma once
#include <cstdint>
#include <span>

#include "tools/fxc/diagnostics.h"

namespace sparkrig::fxc {

/// The value of the expression of an #if whose macros are expanded; names that are left count as 0.
/// A fault is reported at `place` and gives 0.
std::int64_t EvaluateCondition(std::span<const Token> tokens, const Place& place, Diagnostics& diagnostics);

}   // namespace sparkrig::fxc
