// Drawing once for every pass of a shader effect.
#pragma once
#include <span>

#include "gfx/shaders/shader_effect.h"

namespace sparkrig {

/// An effect between Begin and End. What an error leaves begun ends without a further report: the render target is
/// what it was before.
class BegunEffect {
  public:
    explicit BegunEffect(KRN_ShaderEffect& effect) : effect_(effect), passes_(effect.Begin()) {}
    ~BegunEffect() { effect_.Abandon(); }
    BegunEffect(const BegunEffect&) = delete;
    BegunEffect& operator=(const BegunEffect&) = delete;

    int Passes() const { return passes_; }

  private:
    KRN_ShaderEffect& effect_;
    int passes_;
};

/// What an effect gets to know of the object that is drawn.
struct DrawnObject {
    int blend_weights = 0;                      // of a vertex
    std::span<const D3DXMATRIX> palette = {};   // its bones; none for an object without
};

/// Draws once without an effect; with one, fills its parameters and draws every pass. While a pass of the effect is
/// open already, draws once more through that one.
template <class DrawOnce>
void DrawWithEffect(KRN_ShaderEffect* effect, const DrawnObject& object, DrawOnce draw) {
    if (!effect) {
        draw();
        return;
    }
    effect->ApplyFrameSemantics();
    effect->ApplyObjectSemantics(object.blend_weights, object.palette);
    if (effect->LightSemantics()) effect->ApplyLightSemantics();
    effect->ApplyMaterialSemantics();
    if (effect->InPass()) {
        effect->RepeatPass();
        draw();
        return;
    }
    const BegunEffect begun(*effect);
    for (int pass = 0; pass < begun.Passes(); ++pass) {
        if (!effect->BeginPass(pass)) continue;
        draw();
        effect->EndPass();
    }
    effect->End();
}

}   // namespace sparkrig
