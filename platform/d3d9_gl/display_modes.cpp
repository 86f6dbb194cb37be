#include "platform/d3d9_gl/display_modes.h"

#include <SDL.h>

#include <algorithm>
#include <tuple>

#include "platform/window/window.h"

namespace sparkrig {

namespace {

// What is offered where there is no screen.
constexpr struct {
    UINT width, height;
} kModesWithoutScreen[] = {{640, 480}, {800, 600}, {1024, 768}, {1280, 720}, {1920, 1080}};
constexpr UINT kRefreshWithoutScreen = 60;

auto Order(const D3DDISPLAYMODE& mode) { return std::tuple(mode.Width, mode.Height, mode.RefreshRate); }

}   // namespace

std::vector<D3DDISPLAYMODE> DisplayModes(D3DFORMAT format) {
    if (format == D3DFMT_A8R8G8B8) format = D3DFMT_X8R8G8B8;
    std::vector<D3DDISPLAYMODE> modes;
    if (format != D3DFMT_X8R8G8B8 && format != D3DFMT_R5G6B5) return modes;
    const int monitor = MonitorInUse();
    for (int i = 0; i < SDL_GetNumDisplayModes(monitor); ++i) {
        SDL_DisplayMode mode;
        if (SDL_GetDisplayMode(monitor, i, &mode) != 0 || mode.w <= 0 || mode.h <= 0) continue;
        modes.push_back(
            {static_cast<UINT>(mode.w), static_cast<UINT>(mode.h), static_cast<UINT>(mode.refresh_rate), format});
    }
    if (modes.empty()) {
        for (const auto& mode : kModesWithoutScreen) {
            modes.push_back({mode.width, mode.height, kRefreshWithoutScreen, format});
        }
    }
    std::sort(modes.begin(), modes.end(), [](const auto& a, const auto& b) { return Order(a) < Order(b); });
    const auto equal = [](const auto& a, const auto& b) { return Order(a) == Order(b); };
    modes.erase(std::unique(modes.begin(), modes.end(), equal), modes.end());
    return modes;
}

D3DDISPLAYMODE DesktopMode() {
    SDL_DisplayMode mode = {};
    if (SDL_GetDesktopDisplayMode(MonitorInUse(), &mode) == 0 && mode.w > 0 && mode.h > 0) {
        return {static_cast<UINT>(mode.w), static_cast<UINT>(mode.h), static_cast<UINT>(mode.refresh_rate),
                D3DFMT_X8R8G8B8};
    }
    return DisplayModes(D3DFMT_X8R8G8B8).back();
}

}   // namespace sparkrig
