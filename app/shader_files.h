// The shader effects that the tester plays with, and what becomes of them when their files change.
#pragma once
#include "app/engine.h"

namespace sparkrig {

/// Loads the effects that the settings name, for the whole picture and for meshes. What fails is an error, and leaves
/// the effect that there is.
void LoadShaderFiles(Engine& engine, const TesterState& state);

/// Loads those whose files have changed again. The overlay tells about one that fails, which stays as it was.
void ReloadShaders(Engine& engine, TesterState& state);

}   // namespace sparkrig
