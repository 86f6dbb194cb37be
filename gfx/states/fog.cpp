#include "gfx/states/fog.h"

namespace sparkrig {

void FogState::Set(const FogSettings& settings) {
    settings_ = settings;
    sender_.SetRenderState(D3DRS_FOGCOLOR, settings.colour);
    if (settings.vertex_fog) {
        sender_.SetRenderState(D3DRS_FOGVERTEXMODE, settings.mode);
        sender_.SetRenderState(D3DRS_RANGEFOGENABLE, DWORD{TRUE});
        sender_.SetRenderState(D3DRS_FOGTABLEMODE, DWORD{D3DFOG_NONE});   // which would go before
    } else {
        sender_.SetRenderState(D3DRS_FOGTABLEMODE, settings.mode);
    }
    if (settings.mode == D3DFOG_LINEAR) {
        sender_.SetRenderState(D3DRS_FOGSTART, settings.start);
        sender_.SetRenderState(D3DRS_FOGEND, settings.end);
    } else {
        sender_.SetRenderState(D3DRS_FOGDENSITY, settings.density);
    }
}

void FogState::Enable(bool on) {
    enabled_ = on;
    sender_.SetRenderState(D3DRS_FOGENABLE, DWORD{on});
}

}   // namespace sparkrig
