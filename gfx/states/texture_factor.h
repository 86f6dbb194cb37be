// The one colour that every texture stage can take.
#pragma once
#include "gfx/states/state_sender.h"

namespace sparkrig {

/// The colour that texture stages take as TFACTOR. Blending changes its alpha byte alone.
class TextureFactor {
  public:
    explicit TextureFactor(StateSender& sender) : sender_(sender) {}

    void Set(D3DCOLOR colour) {
        colour_ = colour;
        sender_.SetRenderState(D3DRS_TEXTUREFACTOR, colour_);
    }
    void SetAlpha(int alpha) { Set((colour_ & 0x00FFFFFF) | static_cast<D3DCOLOR>(alpha & 0xFF) << 24); }
    D3DCOLOR Colour() const { return colour_; }

  private:
    StateSender& sender_;
    D3DCOLOR colour_ = 0xFF000000;
};

}   // namespace sparkrig
