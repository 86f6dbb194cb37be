// The shader effects that the tester plays with, and what becomes of them when their files change.
#pragma once
#include "app/engine.h"

namespace sparkrig {

/// Loads the effect that the whole picture goes through; none where the setting is empty. What fails is an error, and
/// leaves the effect that there is.
void LoadScreenEffect(Engine& engine, const TesterState& state);

/// Loads those whose files have changed again. The overlay tells about one that fails, which stays as it was.
void ReloadShaders(Engine& engine, TesterState& state);

}   // namespace sparkrig
