#pragma once
#include <utility>

#include "gfx/shader_effect.h"

namespace sparkrig {

/// Which shader effect the next draw uses. All are borrowed.
class EffectChoice {
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

    /// Null for fixed-function drawing.
    KRN_ShaderEffect* ForDraw() const {
        if (forced_) return forced_;
        if (override_ && override_->IsValid()) return override_;
        return current_ && current_->IsValid() ? current_ : nullptr;
    }
    KRN_ShaderEffect* For2D() const { return for_2d_ && for_2d_->IsValid() ? for_2d_ : nullptr; }

  private:
    KRN_ShaderEffect* forced_ = nullptr;
    KRN_ShaderEffect* current_ = nullptr;
    KRN_ShaderEffect* override_ = nullptr;
    KRN_ShaderEffect* for_2d_ = nullptr;
};

}   // namespace sparkrig
