// Whether depths are tested and written.
#pragma once
#include "gfx/states/state_sender.h"

namespace sparkrig {

/// The depth test and the writing of depths.
class DepthStates {
  public:
    explicit DepthStates(StateSender& sender) : sender_(sender) {}

    /// 0 off, 1 on, 2 w-buffer where the device has it, else on.
    void SetMode(int mode);
    int Mode() const { return mode_; }
    void SetWrite(bool on);
    bool Write() const { return write_; }

    /// Nested: the first push switches the test off, the last pop puts the mode back.
    void PushOff();
    void PopOff();
    /// After a reset.
    void Reapply();

  private:
    StateSender& sender_;
    int mode_ = 0;
    bool write_ = true;
    int pushes_ = 0;
};

}   // namespace sparkrig
