#pragma once
#include "tools/fxc/cursor.h"
#include "tools/fxc/effect_syntax.h"

namespace sparkrig::fxc {

enum class StateOwner { Pass, Sampler };

/// Takes "{ state = value; ... }" and appends the assignments. A later one of the same state replaces the earlier.
void ParseStates(Cursor& cursor, ParsedEffect& effect, StateOwner owner, std::vector<StateAssignment>& states);

/// Takes "compile target entry(arguments)" and gives the number of the function.
DWORD ParseCompile(Cursor& cursor, ParsedEffect& effect, FunctionStage stage);

/// The same for "asm { ... }", which the layer can not run.
DWORD ParseAssembly(Cursor& cursor, ParsedEffect& effect, FunctionStage stage);

}   // namespace sparkrig::fxc
