#include "platform/d3d9/present_parameters.h"

#include <algorithm>

#include "platform/d3d9/pixel_format.h"
#include "platform/system/result_codes.h"

namespace sparkrig {

namespace {

constexpr UINT kMostBackBuffers = 3;

bool KnownInterval(DWORD interval, bool windowed) {
    switch (interval) {
        case D3DPRESENT_INTERVAL_DEFAULT:
        case D3DPRESENT_INTERVAL_ONE:
        case D3DPRESENT_INTERVAL_IMMEDIATE: return true;
        case D3DPRESENT_INTERVAL_TWO:
        case D3DPRESENT_INTERVAL_THREE:
        case D3DPRESENT_INTERVAL_FOUR: return !windowed;
        default: return false;
    }
}

HRESULT CheckCommon(const D3DPRESENT_PARAMETERS& parameters) {
    const bool known_effect =
        parameters.SwapEffect >= D3DSWAPEFFECT_DISCARD && parameters.SwapEffect <= D3DSWAPEFFECT_COPY;
    if (!known_effect || parameters.BackBufferCount > kMostBackBuffers) return D3DERR_INVALIDCALL;
    if (parameters.SwapEffect == D3DSWAPEFFECT_COPY && parameters.BackBufferCount > 1) return D3DERR_INVALIDCALL;
    if (!KnownInterval(parameters.PresentationInterval, parameters.Windowed != FALSE)) return D3DERR_INVALIDCALL;
    if (parameters.MultiSampleType != D3DMULTISAMPLE_NONE) {   // of the back buffer; render targets can have it
        return parameters.SwapEffect == D3DSWAPEFFECT_DISCARD ? D3DERR_NOTAVAILABLE : D3DERR_INVALIDCALL;
    }
    const auto has_role = [](D3DFORMAT format, FormatRole role) {
        const PixelFormat* found = FindPixelFormat(format);
        return found != nullptr && (found->roles & role) != 0;
    };
    if (!has_role(parameters.BackBufferFormat, kRoleTarget)) return D3DERR_NOTAVAILABLE;
    const bool depth = parameters.EnableAutoDepthStencil != FALSE;
    return depth && !has_role(parameters.AutoDepthStencilFormat, kRoleDepth) ? D3DERR_NOTAVAILABLE : D3D_OK;
}

bool IsMode(const D3DPRESENT_PARAMETERS& parameters, std::span<const D3DDISPLAYMODE> modes) {
    const UINT refresh = parameters.FullScreen_RefreshRateInHz;
    return std::any_of(modes.begin(), modes.end(), [&](const D3DDISPLAYMODE& mode) {
        return mode.Width == parameters.BackBufferWidth && mode.Height == parameters.BackBufferHeight &&
               (refresh == 0 || refresh == mode.RefreshRate);
    });
}

}   // namespace

HRESULT CompleteParameters(const RECT& client_area, std::span<const D3DDISPLAYMODE> modes,
                           D3DPRESENT_PARAMETERS& parameters) {
    parameters.BackBufferCount = std::max(parameters.BackBufferCount, 1u);
    if (!parameters.Windowed) {
        if (const HRESULT result = CheckCommon(parameters); FAILED(result)) return result;
        return IsMode(parameters, modes) ? D3D_OK : D3DERR_INVALIDCALL;
    }
    if (parameters.FullScreen_RefreshRateInHz != 0) return D3DERR_INVALIDCALL;
    if (parameters.BackBufferFormat == D3DFMT_UNKNOWN) parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
    if (parameters.BackBufferWidth == 0) {
        parameters.BackBufferWidth = static_cast<UINT>(std::max(client_area.right - client_area.left, 0));
    }
    if (parameters.BackBufferHeight == 0) {
        parameters.BackBufferHeight = static_cast<UINT>(std::max(client_area.bottom - client_area.top, 0));
    }
    return CheckCommon(parameters);
}

}   // namespace sparkrig
