// Which of the shader effects that are set, forced or brought along a draw uses.
#pragma once
#include <utility>

#include "gfx/shaders/shader_effect.h"

namespace sparkrig {

/// Which shader effect the next draw uses. All are borrowed.
class ShaderEffectChoice {
  public:
    /// Kept only while it is valid; otherwise, or for null, there is no current effect.
    void SetCurrent(KRN_ShaderEffect* effect) { current_ = effect && effect->IsValid() ? effect : nullptr; }
    /// Goes before the current one, as long as it is valid.
    void SetOverride(KRN_ShaderEffect* effect) { override_ = effect; }
    /// Goes before both, valid or not: the effect of a pass that draws into a screen buffer, or of the scene's way to
    /// the screen. Returns the one that was forced before.
    KRN_ShaderEffect* Force(KRN_ShaderEffect* effect) { return std::exchange(forced_, effect); }
    /// The effect of two-dimensional drawing.
    void SetFor2D(KRN_ShaderEffect* effect) { for_2d_ = effect; }

    /// Draws geometry that is skinned by a shader and has no other effect.
    void SetSkinning(KRN_ShaderEffect* effect) { skinning_ = effect; }

    /// How the vertices of geometry are processed, as far as it matters here.
    enum class Processing { Fixed = 0, ShaderSkinning = 2 };
    /// own: what the geometry brings along, or null; one without a valid technique is drawn with its last. Null for
    /// fixed-function drawing.
    KRN_ShaderEffect* ForDraw(KRN_ShaderEffect* own = nullptr, Processing processing = Processing::Fixed) const {
        if (forced_) return forced_;
        KRN_ShaderEffect* const skinning = processing == Processing::ShaderSkinning ? skinning_ : nullptr;
        for (KRN_ShaderEffect* effect : {override_, current_})
            if (effect && effect->IsValid()) return effect;
        if (own && own->Technique() >= 0) return own;
        return skinning && skinning->IsValid() ? skinning : nullptr;
    }
    KRN_ShaderEffect* For2D() const { return for_2d_ && for_2d_->IsValid() ? for_2d_ : nullptr; }

  private:
    KRN_ShaderEffect* forced_ = nullptr;
    KRN_ShaderEffect* current_ = nullptr;
    KRN_ShaderEffect* override_ = nullptr;
    KRN_ShaderEffect* skinning_ = nullptr;
    KRN_ShaderEffect* for_2d_ = nullptr;
};

}   // namespace sparkrig
