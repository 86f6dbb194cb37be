#pragma once
#include "app/tester_state.h"
#include "gfx/gfx.h"

namespace sparkrig {

enum class BasePathUse { Enter, Ignore };

/// Reads the three per-user values. The base path becomes the current directory and the device's base path, unless the
/// user has named a folder to work in.
void ReadRegistrySettings(TesterState& state, KRN_Gfx& gfx, BasePathUse base_path_use);

/// Writes the path of the background picture, for the next start. A failure is ignored: it is shown now.
void StoreBackgroundPath(const char* path);

}   // namespace sparkrig
