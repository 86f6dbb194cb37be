#include "gfx/states/depth_states.h"

namespace sparkrig {

void DepthStates::SetMode(int mode) {
    if (mode == 2 && !(sender_.Graphics().Caps().RasterCaps & D3DPRASTERCAPS_WBUFFER)) mode = 1;
    sender_.SetRenderState(D3DRS_ZENABLE, static_cast<DWORD>(mode));
    mode_ = mode;
}

void DepthStates::SetWrite(bool on) {
    sender_.SetRenderState(D3DRS_ZWRITEENABLE, DWORD{on});
    write_ = on;
}

void DepthStates::PushOff() {
    if (pushes_++ == 0) sender_.SetRenderState(D3DRS_ZENABLE, DWORD{FALSE});
}

void DepthStates::PopOff() {
    if (pushes_ == 0) return;   // a pop without its push
    if (--pushes_ == 0 && mode_ != 0) sender_.SetRenderState(D3DRS_ZENABLE, static_cast<DWORD>(mode_));
}

void DepthStates::Reapply() {
    sender_.SetRenderState(D3DRS_ZENABLE, pushes_ > 0 ? 0 : static_cast<DWORD>(mode_));
    SetWrite(write_);
}

}   // namespace sparkrig
