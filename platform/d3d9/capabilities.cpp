#include "platform/d3d9/capabilities.h"

namespace sparkrig {

D3DCAPS9 DeviceCaps(const DeviceLimits& limits) {
    D3DCAPS9 caps = {};
    caps.DeviceType = D3DDEVTYPE_HAL;
    caps.AdapterOrdinal = D3DADAPTER_DEFAULT;
    caps.Caps2 = D3DCAPS2_FULLSCREENGAMMA | D3DCAPS2_DYNAMICTEXTURES;
    caps.DevCaps = D3DDEVCAPS_HWTRANSFORMANDLIGHT;
    caps.DevCaps2 = D3DDEVCAPS2_CAN_STRETCHRECT_FROM_TEXTURES;
    caps.RasterCaps = D3DPRASTERCAPS_FOGVERTEX | D3DPRASTERCAPS_FOGTABLE | D3DPRASTERCAPS_MIPMAPLODBIAS |
                      D3DPRASTERCAPS_FOGRANGE | D3DPRASTERCAPS_WFOG | D3DPRASTERCAPS_ZFOG;
    caps.TextureCaps = D3DPTEXTURECAPS_MIPMAP;
    caps.PresentationIntervals = D3DPRESENT_INTERVAL_IMMEDIATE | D3DPRESENT_INTERVAL_ONE | D3DPRESENT_INTERVAL_TWO |
                                 D3DPRESENT_INTERVAL_THREE | D3DPRESENT_INTERVAL_FOUR;
    caps.MaxTextureWidth = caps.MaxTextureHeight = static_cast<DWORD>(limits.max_texture_size);
    caps.MaxTextureBlendStages = caps.MaxSimultaneousTextures = kTextureStages;
    caps.MaxActiveLights = kMaxActiveLights;
    caps.MaxVertexBlendMatrices = 4;
    caps.MaxVertexBlendMatrixIndex = kWorldMatrices - 1;
    caps.VertexShaderVersion = 0xFFFE0300;   // 3.0
    caps.PixelShaderVersion = 0xFFFF0300;
    caps.NumSimultaneousRTs = 1;
    caps.MaxPointSize = kMaxPointSize;
    return caps;
}

}   // namespace sparkrig
