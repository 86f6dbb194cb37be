// What stands behind an HWND, and the one place that knows all of them. For this folder alone.
#pragma once
#include <SDL2/SDL_video.h>

#include "platform/window/message_queue.h"

namespace sparkrig {

struct Window {
    SDL_Window* native;
    WNDPROC procedure;
    // The size that the whole window was asked to have; 0 x 0 once its frame has been taken off the client area.
    int whole_width = 0, whole_height = 0;
    bool moved_by_hand = false;   // between WM_ENTERSIZEMOVE and WM_EXITSIZEMOVE
};

/// Starts SDL's video part once. False when there is none.
bool StartVideo();

MessageQueue& Messages();

/// False once the window has been destroyed.
bool IsWindow(HWND window);
/// Null when the id belongs to none of our windows.
HWND WindowFromId(Uint32 sdl_window_id);
/// The window made first, null when there is none.
HWND FirstWindow();

/// Sends the end of a drag by the title bar or the border when the mouse button is up again.
void WatchDragging();
bool AnyWindowDragged();

}   // namespace sparkrig
