#pragma once
#include <optional>

#include "tools/fxc/cursor.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

enum class StateOwner { Pass, Sampler };

/// Takes "{ state = value; ... }" and appends the assignments. A later one of the same state replaces the earlier.
void ParseStates(Cursor& cursor, ParsedEffect& effect, StateOwner owner, std::vector<StateAssignment>& states);

/// Takes NULL or 0.
bool AcceptNull(Cursor& cursor);

/// Takes "compile target entry(arguments)", or "asm { ... }", which the layer can not run, and gives the number of the
/// function; nothing for any other word.
std::optional<DWORD> AcceptFunction(Cursor& cursor, ParsedEffect& effect, FunctionStage stage);

}   // namespace sparkrig::fxc
