#include "gfx/device/display_modes.h"

#include <algorithm>

#include "gfx/device/presentation.h"

namespace sparkrig {

void GetAdapterDisplayMode(const GraphicsDevice& graphics, D3DDISPLAYMODE& mode) {
    graphics.Require(graphics.Direct3D().GetAdapterDisplayMode(graphics.Adapter(), &mode),
                     "GetAdapterDisplayMode() failed: ");
}

bool FindDisplayMode(const GraphicsDevice& graphics, D3DDISPLAYMODE& mode) {
    const D3DFORMAT format = OpaqueFormatOf(mode.Format);   // display formats have no alpha
    const UINT count = graphics.Direct3D().GetAdapterModeCount(graphics.Adapter(), format);
    bool found = false;
    UINT best_rate = 0;
    for (UINT i = 0; i < count; ++i) {
        D3DDISPLAYMODE offered = {};
        graphics.Require(graphics.Direct3D().EnumAdapterModes(graphics.Adapter(), format, i, &offered),
                         " GetAdapterDisplayMode failed: ");
        if (offered.Width != mode.Width || offered.Height != mode.Height || offered.Format != format) continue;
        if (mode.RefreshRate != 0) {
            if (offered.RefreshRate == mode.RefreshRate) return true;
            continue;
        }
        found = true;
        best_rate = std::max(best_rate, offered.RefreshRate);
    }
    if (found) mode.RefreshRate = best_rate;
    return found;
}

bool CheckTextureFormat(const GraphicsDevice& graphics, D3DFORMAT opaque_format, D3DFORMAT format, int usage_mode) {
    const DWORD usage = usage_mode == 3 ? D3DUSAGE_RENDERTARGET : usage_mode == 5 ? D3DUSAGE_DEPTHSTENCIL : 0;
    const HRESULT result = graphics.Direct3D().CheckDeviceFormat(graphics.Adapter(), graphics.DeviceType(),
                                                                 opaque_format, usage, D3DRTYPE_TEXTURE, format);
    if (SUCCEEDED(result)) return true;
    graphics.Reporter().Warning("Texture format %i mode %i not supported by device", static_cast<int>(format),
                                static_cast<int>(usage));
    return false;
}

}   // namespace sparkrig
