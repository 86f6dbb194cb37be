#include "gfx/device/presentation.h"

#include <algorithm>
#include <iterator>

namespace sparkrig {

namespace {

// clang-format off
constexpr struct { int bits; D3DFORMAT windowed, full_screen; } kDepthFormats[] = {
    {16, D3DFMT_D16,   D3DFMT_D16  },
    {24, D3DFMT_D24X8, D3DFMT_D24S8},
    {32, D3DFMT_D32,   D3DFMT_D32  },
};

constexpr UINT kIntervals[] = {   // by vsync setting
    D3DPRESENT_INTERVAL_IMMEDIATE, D3DPRESENT_INTERVAL_ONE, D3DPRESENT_INTERVAL_TWO, D3DPRESENT_INTERVAL_THREE,
    D3DPRESENT_INTERVAL_FOUR,
};
// clang-format on

UINT Interval(const KRN_Base& reporter, int vsync) {
    if (vsync < 0 || vsync >= static_cast<int>(std::size(kIntervals))) {
        reporter.Error("Wrong vsync parameter: %i", vsync);
    }
    return kIntervals[vsync];
}

void AddDepthBuffer(const KRN_Base& reporter, const PresentationSettings& settings, D3DPRESENT_PARAMETERS& parameters) {
    if (settings.z_buffer_bits == 0) return;
    const auto* row = std::find_if(std::begin(kDepthFormats), std::end(kDepthFormats),
                                   [&](const auto& entry) { return entry.bits == settings.z_buffer_bits; });
    if (row == std::end(kDepthFormats)) reporter.Error("Invalid Z-buffer: %i", settings.z_buffer_bits);
    parameters.EnableAutoDepthStencil = TRUE;
    parameters.AutoDepthStencilFormat = settings.windowed ? row->windowed : row->full_screen;
}

}   // namespace

D3DPRESENT_PARAMETERS BuildPresentParameters(const KRN_Base& reporter, const PresentationSettings& settings) {
    D3DPRESENT_PARAMETERS parameters = {};
    parameters.BackBufferCount = 1;
    parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
    parameters.hDeviceWindow = settings.window;
    parameters.Windowed = settings.windowed;
    parameters.BackBufferFormat = settings.mode.Format;
    if (!settings.windowed) {
        parameters.BackBufferWidth = settings.mode.Width;
        parameters.BackBufferHeight = settings.mode.Height;
        parameters.FullScreen_RefreshRateInHz = settings.mode.RefreshRate;
        parameters.PresentationInterval = Interval(reporter, settings.vsync);
    }
    AddDepthBuffer(reporter, settings, parameters);
    return parameters;
}

D3DFORMAT AlphaFormatOf(D3DFORMAT display) { return display == D3DFMT_X8R8G8B8 ? D3DFMT_A8R8G8B8 : display; }
D3DFORMAT OpaqueFormatOf(D3DFORMAT display) { return display == D3DFMT_A8R8G8B8 ? D3DFMT_X8R8G8B8 : display; }

}   // namespace sparkrig
