#include "gfx/device/gamma.h"

namespace sparkrig {

namespace {

D3DGAMMARAMP IdentityRamp() {
    D3DGAMMARAMP ramp;
    for (int i = 0; i < 256; ++i) ramp.red[i] = ramp.green[i] = ramp.blue[i] = static_cast<WORD>(i * 257);
    return ramp;
}

}   // namespace

GammaState::GammaState(const GraphicsDevice& graphics) : graphics_(graphics), ramp_(IdentityRamp()) {}

bool GammaState::Set(const D3DGAMMARAMP* ramp, bool calibrate) {
    const DWORD caps = graphics_.Caps().Caps2;
    const bool possible = (caps & D3DCAPS2_CANCALIBRATEGAMMA) != 0;
    ramp_ = ramp ? *ramp : IdentityRamp();
    calibrate_ = calibrate && possible;
    Reapply();
    return !calibrate || possible;
}

void GammaState::Reapply() {
    if (!(graphics_.Caps().Caps2 & D3DCAPS2_FULLSCREENGAMMA)) return;
    graphics_.Device()->SetGammaRamp(0, calibrate_ ? D3DSGR_CALIBRATE : D3DSGR_NO_CALIBRATION, &ramp_);
}

}   // namespace sparkrig
