// The ramp by which the display brightens or darkens what is shown in full screen.
#pragma once
#include "gfx/device/graphics_device.h"

namespace sparkrig {

class GammaState {
  public:
    explicit GammaState(const GraphicsDevice& graphics);

    /// Null for the identity. False when calibration was asked for and is not possible; the ramp is set all the same.
    bool Set(const D3DGAMMARAMP* ramp, bool calibrate);
    /// After a reset.
    void Reapply();

  private:
    const GraphicsDevice& graphics_;
    D3DGAMMARAMP ramp_;
    bool calibrate_ = false;
};

}   // namespace sparkrig
