// The alpha test: which pixels are left out by their alpha.
#pragma once
#include "gfx/states/state_sender.h"

namespace sparkrig {

/// Leaves out pixels by their alpha: mode 0 none, 255 those whose alpha differs from the reference, others those whose
/// alpha is not above it.
class AlphaCutoff {
  public:
    explicit AlphaCutoff(StateSender& sender) : sender_(sender) {}

    void Set(int mode, int reference);
    /// Off, or on as it last was (mode 1 at first), with the kept reference.
    void Switch(bool on) { Set(on ? mode_when_on_ : 0, reference_); }
    /// The test off, and as it was set again.
    void Suspend() { sender_.SetRenderState(D3DRS_ALPHATESTENABLE, DWORD{FALSE}); }
    void Resume() { Reapply(); }
    /// After a reset.
    void Reapply() { Set(mode_, reference_); }

  private:
    StateSender& sender_;
    int mode_ = 0, reference_ = 0;
    int mode_when_on_ = 1;   // the last one but 0
};

}   // namespace sparkrig
