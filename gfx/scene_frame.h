// The frame around what is drawn: where a scene begins, where it ends, and how it gets to the screen.
#pragma once
#include "gfx/gfx_parts.h"

namespace sparkrig {

int BeginScene(GfxParts& parts);
int EndScene(GfxParts& parts);
void ReleasePostRenderEffects(GfxParts& parts);

/// Inside a scene: draws the screen square with every pass of the effect, which finds what is drawn so far as
/// SCREENCOPY. False for an effect without file.
bool DrawScreenEffect(GfxParts& parts, KRN_ShaderEffect& effect);

/// Draws the screen square with every pass of the effect, which finds the scene as SCREENCOPY, in a scene of the
/// device's own. False with post-render effects off, and for an effect without file.
bool DrawScene(GfxParts& parts, KRN_ShaderEffect& effect);

}   // namespace sparkrig
