// Which faces are left out by the way they turn.
#pragma once
#include "gfx/states/state_sender.h"

namespace sparkrig {

/// Which faces are left out: -1 counterclockwise ones (the default), 0 none, 1 clockwise ones.
class CullingState {
  public:
    explicit CullingState(StateSender& sender) : sender_(sender) {}

    void Set(int mode) {
        sender_.SetRenderState(D3DRS_CULLMODE, CullMode(mode));
        mode_ = mode;
    }
    int Mode() const { return mode_; }

  private:
    DWORD CullMode(int mode) const {
        constexpr DWORD kCullModes[] = {D3DCULL_CCW, D3DCULL_NONE, D3DCULL_CW};
        if (mode < -1 || mode > 1) sender_.Reporter().Error("Invalid culling mode");
        return kCullModes[mode + 1];
    }

    StateSender& sender_;
    int mode_ = -1;
};

}   // namespace sparkrig
