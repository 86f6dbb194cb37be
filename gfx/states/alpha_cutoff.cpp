#include "gfx/states/alpha_cutoff.h"

namespace sparkrig {

void AlphaCutoff::Set(int mode, int reference) {
    mode_ = mode;
    reference_ = reference;
    if (mode != 0) mode_when_on_ = mode;
    sender_.SetRenderState(D3DRS_ALPHATESTENABLE, static_cast<DWORD>(mode));
    if (mode != 0) {
        sender_.SetRenderState(D3DRS_ALPHAFUNC, mode == 255 ? D3DCMP_EQUAL : D3DCMP_GREATER);
        sender_.SetRenderState(D3DRS_ALPHAREF, static_cast<DWORD>(reference));
    }
}

}   // namespace sparkrig
