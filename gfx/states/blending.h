// The numbered blending modes: how what is drawn mixes with what is there already.
#pragma once
#include "gfx/states/texture_factor.h"

namespace sparkrig {

class BlendingState {
  public:
    BlendingState(StateSender& sender, TextureFactor& factor) : sender_(sender), factor_(factor) {}

    /// mode 1 to 17 but not 8, -1 counts as 1; alpha 0 to 255; stage 0 to 6. Another mode is an error.
    int Set(int mode, int alpha, int stage);
    /// Once more as it was given, at this stage.
    void Reapply(int stage) { Set(mode_, given_alpha_, stage); }
    /// Blending off, and as the mode has it again.
    void Suspend() { sender_.SetRenderState(D3DRS_ALPHABLENDENABLE, DWORD{FALSE}); }
    void Resume() { sender_.SetRenderState(D3DRS_ALPHABLENDENABLE, DWORD{mode_ != 1}); }
    int Mode() const { return mode_; }
    int Alpha() const { return alpha_; }

  private:
    void SendStage(const struct BlendRow& row, DWORD stage);

    StateSender& sender_;
    TextureFactor& factor_;
    int mode_ = 1;
    int alpha_ = 255, given_alpha_ = 255;   // what the mode keeps, and what it was set with
};

}   // namespace sparkrig
