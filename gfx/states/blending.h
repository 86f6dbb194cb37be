// The numbered blending modes: how what is drawn mixes with what is there already.
#pragma once
#include "gfx/states/texture_factor.h"

namespace sparkrig {

/// Whether the alpha that the mode was set with fades what is drawn.
bool FadesByFactor(int mode);

class BlendingState {
  public:
    BlendingState(StateSender& sender, TextureFactor& factor) : sender_(sender), factor_(factor) {}

    /// mode 1 to 17 but not 8, -1 counts as 1; alpha 0 to 255; stage 0 to 6. Another mode is an error.
    int Set(int mode, int alpha, int stage);
    /// Once more as it was given, at this stage.
    void Reapply(int stage) { Set(now_.mode, now_.given_alpha, stage); }
    /// Blending off, and as the mode has it again.
    void Suspend() { sender_.SetRenderState(D3DRS_ALPHABLENDENABLE, DWORD{FALSE}); }
    void Resume() { sender_.SetRenderState(D3DRS_ALPHABLENDENABLE, DWORD{now_.mode != 1}); }
    int Mode() const { return now_.mode; }
    int Alpha() const { return now_.alpha; }

    struct Setting {
        int mode = 1;
        int alpha = 255, given_alpha = 255;   // what the mode keeps, and what it was set with
        bool operator==(const Setting&) const = default;
    };
    const Setting& Now() const { return now_; }
    void GoBackTo(const Setting& before);

  private:
    void SendStage(const struct BlendRow& row, DWORD stage);

    StateSender& sender_;
    TextureFactor& factor_;
    Setting now_;
};

}   // namespace sparkrig
