#include "gfx/states/render_sources.h"

namespace sparkrig {

int RenderSources::Set(int source, int stage, D3DCOLOR colour) {
    if (stage < 0 || stage >= static_cast<int>(kTextureStages)) sender_.Reporter().Error("Invalid stage: %i", stage);
    const DWORD s = static_cast<DWORD>(stage);
    switch (source) {
        case -1:
        case kSourceTextureDiffuse:
            sender_.SetStageState(s, D3DTSS_COLOROP, D3DTOP_MODULATE);
            sender_.SetStageState(s, D3DTSS_COLORARG1, D3DTA_TEXTURE);
            sender_.SetStageState(s, D3DTSS_COLORARG2, D3DTA_DIFFUSE);
            break;
        case kSourceDiffuse:
            sender_.SetStageState(s, D3DTSS_COLOROP, D3DTOP_SELECTARG2);
            sender_.SetStageState(s, D3DTSS_COLORARG2, D3DTA_DIFFUSE);
            break;
        case kSourceFactor:
            sender_.SetStageState(s, D3DTSS_COLOROP, D3DTOP_SELECTARG2);
            sender_.SetStageState(s, D3DTSS_COLORARG2, D3DTA_TFACTOR);
            factor_.Set(colour);
            break;
        default: sender_.Reporter().Error("Invalid render source selected");
    }
    sources_[stage] = source == -1 ? kSourceTextureDiffuse : source;
    return 1;
}

}   // namespace sparkrig
