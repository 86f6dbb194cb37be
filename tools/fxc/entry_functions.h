#pragma once
#include <string>

#include "tools/fxc/diagnostics.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

/// The name of the function that the compiler starts with for a request.
std::string EntryName(std::size_t request);

/// Appends to the code, for each request, a function that gives the static variables their values and calls the
/// requested one with its uniform parameters. So the effect's own function stays one that others may call.
void AddEntryFunctions(ParsedEffect& effect, Diagnostics& diagnostics);

/// The code as text, with #line directives whose file names are the sources' numbers.
std::string CodeText(const Tokens& code);

}   // namespace sparkrig::fxc
