// Names of the effect as the code for the function compiler has them.
#pragma once
#include <string>

#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

/// A name that the compiler keeps for itself gets a prefix; any other stays.
std::string CodeName(const std::string& name);

/// Gives the code's words the spelling that the compiler takes: type words in lower case and of the one size of float
/// that it knows, numbers without suffixes, no names that it keeps for itself, and the intrinsic functions that
/// it gets wrong by the names of ours.
void SpellOut(ParsedEffect& effect);

/// Our own intrinsic functions, in front of the code.
extern const char* const kIntrinsicFunctions;

}   // namespace sparkrig::fxc
