// The textures that effects name.
#pragma once
#include <memory>

#include "gfx/textures/texture.h"

namespace sparkrig {

class KRN_Gfx;

/// Loads what a sub-effect names at its first use: of the texture catalogue, or else of a file.
void LoadEffectTexture(KRN_Gfx& gfx, const char* name, std::shared_ptr<KRN_Texture>& texture);

}   // namespace sparkrig
