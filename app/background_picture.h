#pragma once
#include "gfx/gfx.h"
#include "gfx/textures/texture.h"

namespace sparkrig {

/// Loads the picture behind the effects. An empty path, or one without a file, releases it.
void LoadBackgroundPicture(KRN_Gfx& gfx, KRN_Texture& picture, const char* path);

}   // namespace sparkrig
