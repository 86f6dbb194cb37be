#pragma once
#include <string>

#include "gfx/gfx.h"
#include "gfx/textures/texture.h"

namespace sparkrig {

/// Loads the picture behind the effects. An empty path, or one without a file, releases it. A file that cannot be read
/// leaves the picture that is there: a setting must not keep the program from starting. Returns why, empty when all is
/// well; the log has the same.
std::string LoadBackgroundPicture(KRN_Gfx& gfx, KRN_Texture& picture, const char* path);

}   // namespace sparkrig
