// What the desktop says of itself, and what it is told of a window.
#include <SDL2/SDL.h>
#include <SDL2/SDL_syswm.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "platform/window/gui_style.h"
#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

constexpr double kDotsPerInch = 96;

/// The desktop's resources: lines of "name: value". Empty without an X server.
std::string DesktopResources() {
    if (std::strcmp(SDL_GetCurrentVideoDriver(), "x11") != 0) return {};
    Display* display = XOpenDisplay(nullptr);
    if (!display) return {};
    const char* resources = XResourceManagerString(display);
    std::string copy = resources ? resources : "";
    XCloseDisplay(display);
    return copy;
}

double ScaleOfText() {
    constexpr char kName[] = "Xft.dpi:";
    const std::string resources = DesktopResources();
    const std::size_t line = resources.find(kName);
    return line == std::string::npos ? 0 : std::atof(resources.c_str() + line + std::strlen(kName)) / kDotsPerInch;
}

double ScaleOfEnvironment() {
    const char* scale = std::getenv("GDK_SCALE");
    return scale ? std::atof(scale) : 0;
}

double ScaleOfMonitor(int monitor) {
    float dots_per_inch = 0;
    return SDL_GetDisplayDPI(monitor, &dots_per_inch, nullptr, nullptr) == 0 ? dots_per_inch / kDotsPerInch : 0;
}

}   // namespace

float DesktopScale(int monitor) {
    static const double of_desktop = [] {
        const double scale = ScaleOfText();
        return scale > 0 ? scale : ScaleOfEnvironment();
    }();
    const double scale = of_desktop > 0 ? of_desktop : ScaleOfMonitor(monitor);
    return static_cast<float>(std::clamp(scale, 1.0, 4.0));
}

void SetClassAndIcon(SDL_Window* native, const char* class_name, const IconImage& icon) {
    std::vector<std::uint32_t> pixels(icon.pixels.begin(), icon.pixels.end());
    if (!pixels.empty()) {
        constexpr int kBits = 32, kBytes = 4;
        SDL_Surface* surface = SDL_CreateRGBSurfaceWithFormatFrom(pixels.data(), icon.size, icon.size, kBits,
                                                                  icon.size * kBytes, SDL_PIXELFORMAT_ARGB8888);
        SDL_SetWindowIcon(native, surface);
        SDL_FreeSurface(surface);
    }
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version)
    if (!SDL_GetWindowWMInfo(native, &info) || info.subsystem != SDL_SYSWM_X11) return;
    std::string name = class_name;
    XClassHint hint = {name.data(), name.data()};
    XSetClassHint(info.info.x11.display, info.info.x11.window, &hint);
}

}   // namespace sparkrig
