#include <SDL2/SDL.h>
#include <SDL2/SDL_syswm.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/window/gui_style.h"
#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

constexpr double kDotsPerInch = 96;

/// The desktop's resources: lines of "name: value". Null without an X server.
const char* DesktopResources() {
    if (Windows().empty()) return nullptr;
    SDL_SysWMinfo info;
    SDL_VERSION(&info.version)
    if (!SDL_GetWindowWMInfo(Windows().front()->native, &info) || info.subsystem != SDL_SYSWM_X11) return nullptr;
    return XResourceManagerString(info.info.x11.display);
}

double ScaleOfText() {
    constexpr char kName[] = "Xft.dpi:";
    const char* resources = DesktopResources();
    const char* line = resources ? std::strstr(resources, kName) : nullptr;
    return line ? std::atof(line + std::strlen(kName)) / kDotsPerInch : 0;
}

double ScaleOfEnvironment() {
    const char* scale = std::getenv("GDK_SCALE");
    return scale ? std::atof(scale) : 0;
}

double ScaleOfScreen() {
    float dots_per_inch = 0;
    return SDL_GetDisplayDPI(0, &dots_per_inch, nullptr, nullptr) == 0 ? dots_per_inch / kDotsPerInch : 0;
}

}   // namespace

float DesktopScale() {
    double scale = ScaleOfText();
    if (scale <= 0) scale = ScaleOfEnvironment();
    if (scale <= 0) scale = ScaleOfScreen();
    return static_cast<float>(std::clamp(scale, 1.0, 4.0));
}

}   // namespace sparkrig
