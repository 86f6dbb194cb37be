#pragma once
#include "gfx/shader_effect.h"

namespace sparkrig {

/// Draws once without an effect; with one, fills its parameters and draws every pass.
template <class DrawOnce>
void DrawWithEffect(KRN_ShaderEffect* effect, DrawOnce draw) {
    if (!effect) {
        draw();
        return;
    }
    effect->ApplyFrameSemantics();
    const int passes = effect->Begin();
    for (int pass = 0; pass < passes; ++pass) {
        effect->BeginPass(pass);
        draw();
        effect->EndPass();
    }
    effect->End();
}

}   // namespace sparkrig
