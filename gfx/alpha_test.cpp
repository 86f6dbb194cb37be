#include "gfx/alpha_test.h"

namespace sparkrig {

void AlphaTest::Set(int mode, int reference) {
    if (known_ && mode == mode_ && reference == reference_) return;
    mode_ = mode;
    reference_ = reference;
    known_ = false;   // stays so when the device refuses one of the three
    sender_.SendRenderState(D3DRS_ALPHATESTENABLE, static_cast<DWORD>(mode));
    if (mode != 0) {
        sender_.SendRenderState(D3DRS_ALPHAFUNC, mode == 255 ? D3DCMP_EQUAL : D3DCMP_GREATER);
        sender_.SendRenderState(D3DRS_ALPHAREF, static_cast<DWORD>(reference));
    }
    known_ = true;
}

}   // namespace sparkrig
