#pragma once
#include "gfx/state_sender.h"

namespace sparkrig {

/// Leaves out pixels by their alpha: mode 0 none, 255 those whose alpha differs from the reference, others those whose
/// alpha is not above it.
class AlphaTest {
  public:
    explicit AlphaTest(StateSender& sender) : sender_(sender) {}

    void Set(int mode, int reference);
    int Mode() const { return mode_; }
    int Reference() const { return reference_; }
    /// After a reset.
    void Reapply() { Set(mode_, reference_); }

  private:
    StateSender& sender_;
    int mode_ = 0, reference_ = 0;
};

}   // namespace sparkrig
