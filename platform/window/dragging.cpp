#include <SDL2/SDL_mouse.h>

#include <algorithm>

#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

bool mouse_was_down = false;

bool OnFrame(const Window& window, int x, int y) {
    int top = 0, left = 0, bottom = 0, right = 0;
    if (SDL_GetWindowBordersSize(window.native, &top, &left, &bottom, &right) != 0) return false;
    int width = 0, height = 0, client_x = 0, client_y = 0;
    SDL_GetWindowSize(window.native, &width, &height);
    SDL_GetWindowPosition(window.native, &client_x, &client_y);
    x -= client_x;
    y -= client_y;
    const bool in_client = x >= 0 && y >= 0 && x < width && y < height;
    return !in_client && x >= -left && y >= -top && x < width + right && y < height + bottom;
}

bool HasFocus(const Window& window) { return (SDL_GetWindowFlags(window.native) & SDL_WINDOW_INPUT_FOCUS) != 0; }

}   // namespace

void WatchDragging() {
    if (DriverIsInvisible()) return;
    int x = 0, y = 0;
    const bool down = SDL_GetGlobalMouseState(&x, &y) != 0;
    for (const std::unique_ptr<Window>& window : Windows()) {
        if (window->dragged && !down) {
            window->dragged = false;
            Messages().Post({window.get(), WM_EXITSIZEMOVE, 0, 0});
        } else if (down && !mouse_was_down && HasFocus(*window) && OnFrame(*window, x, y)) {
            window->dragged = true;
            Messages().Post({window.get(), WM_ENTERSIZEMOVE, 0, 0});
        }
    }
    mouse_was_down = down;
}

bool AnyWindowDragged() {
    return std::any_of(Windows().begin(), Windows().end(), [](const auto& window) { return window->dragged; });
}

}   // namespace sparkrig
