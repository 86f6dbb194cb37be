#pragma once
#include "app/engine.h"

namespace sparkrig {

/// Loads every configuration file and everything it names, and the shader effects of the command line; prints each
/// problem on the standard output. The engine has been started. True when there is none.
bool CheckEverything(Engine& engine, const TesterState& state);

}   // namespace sparkrig
