#include "platform/window/window.h"

#include <SDL2/SDL.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "platform/window/gui_style.h"
#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

constexpr float kDefaultWidth = 1024, kDefaultHeight = 768;   // of the client area, at 96 dots per inch

struct WindowSystem {
    std::map<std::string, WNDCLASSEXA> classes;
    std::vector<std::unique_ptr<Window>> windows;
    std::vector<std::unique_ptr<Window>> destroyed;   // a device may still hold its context on them
    int cursor_counter = 0;
};

WindowSystem& System() {
    static WindowSystem system;
    return system;
}

auto FindWindow(HWND window) {
    auto& windows = System().windows;
    return std::find_if(windows.begin(), windows.end(), [&](const auto& known) { return known.get() == window; });
}

void DestroyNativeWindows(std::vector<std::unique_ptr<Window>>& windows) {
    for (const std::unique_ptr<Window>& window : windows) SDL_DestroyWindow(window->native);
    windows.clear();
}

void TakeOffFrame(Window& window) {
    int top = 0, left = 0, bottom = 0, right = 0;
    if (window.whole_width <= 0 || SDL_GetWindowBordersSize(window.native, &top, &left, &bottom, &right) != 0) return;
    SDL_SetWindowSize(window.native, std::max(window.whole_width - left - right, 1),
                      std::max(window.whole_height - top - bottom, 1));
    window.whole_width = window.whole_height = 0;
}

int MonitorOfMouse() {
    SDL_Point mouse = {0, 0};
    SDL_GetGlobalMouseState(&mouse.x, &mouse.y);
    return std::max(SDL_GetPointDisplayIndex(&mouse), 0);
}

/// The size of a window that was asked for none: as large on every screen, and with its frame within the monitor.
std::pair<int, int> DefaultSize(int monitor, float scale, int strip) {
    constexpr float kMostOfMonitor = 0.9f;
    const int width = static_cast<int>(kDefaultWidth * scale);
    const int height = static_cast<int>(kDefaultHeight * scale) + strip;
    SDL_Rect room = {0, 0, 0, 0};
    if (DriverIsInvisible() || SDL_GetDisplayUsableBounds(monitor, &room) != 0) return {width, height};
    return {std::min(width, static_cast<int>(static_cast<float>(room.w) * kMostOfMonitor)),
            std::min(height, static_cast<int>(static_cast<float>(room.h) * kMostOfMonitor))};
}

int MonitorOf(SDL_Window* native) { return std::max(SDL_GetWindowDisplayIndex(native), 0); }

/// Whether the window shows a picture of a size of its own.
bool IsStretched(const Window& window) { return IsFullScreen(window) && window.full_screen_size.x > 0; }

POINT SizeOf(const Window& window) {
    POINT size = {0, 0};
    SDL_GetWindowSize(window.native, &size.x, &size.y);
    return {std::max(size.x, 1), std::max(size.y, 1)};
}

POINT Stretch(POINT place, POINT from, POINT to) { return {place.x * to.x / from.x, place.y * to.y / from.y}; }

bool IsMinimised(HWND window) { return (SDL_GetWindowFlags(window->native) & SDL_WINDOW_MINIMIZED) != 0; }

}   // namespace

void ChooseOpenGL() {
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 4);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 5);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
    SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 0);   // frames are drawn into a buffer of our own and copied
}

bool StartVideo() {
    if (SDL_WasInit(SDL_INIT_VIDEO) != 0) return true;
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");          // Ctrl+C ends long work at once
    SDL_SetHint(SDL_HINT_QUIT_ON_LAST_WINDOW_CLOSE, "0");   // the window procedure decides
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");    // the click that activates counts
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    if (!std::getenv("WAYLAND_DISPLAY"))   // as SDL would, without asking those that cannot be there, which complain
        SDL_SetHint(SDL_HINT_VIDEODRIVER, std::getenv("DISPLAY") ? "x11" : "offscreen");
    if (SDL_Init(SDL_INIT_VIDEO) != 0) return false;
    std::atexit(SDL_Quit);
    return true;
}

bool DriverIsInvisible() {
    const std::string driver = SDL_GetCurrentVideoDriver();
    return driver == "offscreen" || driver == "dummy";
}

const std::vector<std::unique_ptr<Window>>& Windows() { return System().windows; }

bool CanMakeWindows() { return StartVideo(); }

bool HasDisplay() { return StartVideo() && !DriverIsInvisible(); }

void HideFromDisplay() { SDL_SetHintWithPriority(SDL_HINT_VIDEODRIVER, "offscreen", SDL_HINT_OVERRIDE); }

MessageQueue& Messages() {
    static MessageQueue queue;
    return queue;
}

bool IsWindow(HWND window) { return FindWindow(window) != System().windows.end(); }

HWND WindowFromId(Uint32 sdl_window_id) {
    for (const std::unique_ptr<Window>& window : System().windows) {
        if (SDL_GetWindowID(window->native) == sdl_window_id) return window.get();
    }
    return nullptr;
}

HWND FirstWindow() { return System().windows.empty() ? nullptr : System().windows.front().get(); }

bool RegisterClassExA(const WNDCLASSEXA& window_class) {
    if (!window_class.lpszClassName || !window_class.lpfnWndProc) return false;
    System().classes[window_class.lpszClassName] = window_class;
    return true;
}

HWND CreateWindowExA(const char* class_name, const char* title, int x, int y, int width, int height) {
    const auto window_class = System().classes.find(class_name);
    if (window_class == System().classes.end() || !StartVideo()) return nullptr;
    DestroyNativeWindows(System().destroyed);
    const bool sized = width != CW_USEDEFAULT;
    const WNDCLASSEXA& made_of = window_class->second;
    const int monitor = MonitorOfMouse();
    const float scale = DesktopScale(monitor);
    const int strip = made_of.menu.empty() ? 0 : StripHeightAt(scale);
    if (!sized) std::tie(width, height) = DefaultSize(monitor, scale, strip);
    if (x == CW_USEDEFAULT) x = y = static_cast<int>(SDL_WINDOWPOS_UNDEFINED_DISPLAY(static_cast<unsigned>(monitor)));
    ChooseOpenGL();
    SDL_Window* native = SDL_CreateWindow(title, x, y, std::max(width, 1), std::max(height, 1),
                                          SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_HIDDEN);
    if (!native) return nullptr;
    const HWND window = AddWindow(native, made_of.lpfnWndProc);
    window->menu = made_of.menu;
    SetClassAndIcon(native, class_name, made_of.icon);
    if (sized) window->whole_width = width, window->whole_height = height;
    return window;
}

HWND AddWindow(SDL_Window* native, WNDPROC procedure) {
    auto window = std::make_unique<Window>();
    window->native = native;
    window->procedure = procedure;
    window->scale = DesktopScale(MonitorOf(native));
    return System().windows.emplace_back(std::move(window)).get();
}

void DestroyWindow(HWND window) {
    const auto place = FindWindow(window);
    if (place == System().windows.end()) return;
    SDL_HideWindow(window->native);
    window->procedure(window, WM_DESTROY, 0, 0);
    Messages().Forget(window);
    window->gui.reset();
    System().destroyed.push_back(std::move(*place));
    System().windows.erase(place);
}

void ShowWindow(HWND window) { SDL_ShowWindow(window->native); }

void UpdateWindow(HWND window) {
    SDL_PumpEvents();
    TakeOffFrame(*window);
    if (!DriverIsInvisible()) RedrawWindow(window);
}

int StripHeightAt(float scale) {
    constexpr float kHeight = 26;
    return static_cast<int>(kHeight * scale);
}

bool IsFullScreen(const Window& window) { return (SDL_GetWindowFlags(window.native) & SDL_WINDOW_FULLSCREEN) != 0; }

int StripHeight(const Window& window) {
    return IsFullScreen(window) || window.menu.empty() ? 0 : StripHeightAt(window.scale);
}

bool TakeMonitorScale(Window& window) {
    const float scale = DesktopScale(MonitorOf(window.native));
    if (scale == window.scale) return false;
    window.scale = scale;
    window.gui.reset();   // letters and edges are made for one scale
    return true;
}

void GetClientRect(HWND window, RECT& rectangle) {
    rectangle = {0, 0, 0, 0};
    if (IsMinimised(window)) return;
    const POINT size = IsStretched(*window) ? window->full_screen_size : SizeOf(*window);
    rectangle = {0, 0, size.x, std::max(size.y - StripHeight(*window), 0)};
}

void SetFullScreenSize(HWND window, int width, int height) {
    if (IsWindow(window)) window->full_screen_size = {width, height};
}

POINT ToClient(const Window& window, POINT place) {
    if (IsStretched(window)) return Stretch(place, SizeOf(window), window.full_screen_size);
    return {place.x, place.y - StripHeight(window)};
}

POINT ToWindow(const Window& window, POINT place) {
    if (IsStretched(window)) return Stretch(place, window.full_screen_size, SizeOf(window));
    return {place.x, place.y + StripHeight(window)};
}

void ShowCursor(bool show) {
    System().cursor_counter += show ? 1 : -1;
    SDL_ShowCursor(System().cursor_counter >= 0 ? SDL_ENABLE : SDL_DISABLE);
}

SDL_Window* NativeWindow(HWND window) { return window->native; }

int MonitorInUse() {
    const HWND window = FirstWindow();
    return window ? MonitorOf(window->native) : 0;
}

bool IsForegroundWindow(HWND window) {
    return DriverIsInvisible() || (SDL_GetWindowFlags(window->native) & SDL_WINDOW_INPUT_FOCUS) != 0;
}

LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SYSCOMMAND) {
        const POINT place = ToWindow(*window, {LowWord(lParam), HighWord(lParam)});
        if (wParam == SC_KEYMENU) TrackMenu(window, static_cast<char>(lParam), nullptr);
        if (wParam == SC_MOUSEMENU) TrackMenu(window, 0, &place);
    }
    if (message == WM_CLOSE) DestroyWindow(window);
    if (message == WM_PAINT) EndPaint(BeginPaint(window));
    return 0;
}

}   // namespace sparkrig
