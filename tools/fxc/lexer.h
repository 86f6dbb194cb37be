#pragma once
#include <string_view>

#include "tools/fxc/diagnostics.h"

namespace sparkrig::fxc {

/// The tokens of a source text, without comments and line splices. The last one is of kind End.
/// A comment that does not close is reported; a string that does not close on its line is for those who read its line.
Tokens ReadTokens(std::string_view text, int file, Diagnostics& diagnostics);

}   // namespace sparkrig::fxc
