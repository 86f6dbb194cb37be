// What stands behind an HWND, and the one place that knows all of them. For this folder alone.
#pragma once
#include <SDL2/SDL_video.h>

#include <memory>
#include <vector>

#include "platform/window/message_queue.h"

namespace sparkrig {

struct Window {
    SDL_Window* native;
    WNDPROC procedure;
    // The size that the whole window was asked to have; 0 x 0 once its frame has been taken off the client area.
    int whole_width = 0, whole_height = 0;
    bool dragged = false;   // between WM_ENTERSIZEMOVE and WM_EXITSIZEMOVE
};

/// Starts SDL's video part once. False when there is none.
bool StartVideo();

/// Whether nobody sees the windows; there is no focus then either.
bool DriverIsInvisible();

MessageQueue& Messages();

/// All windows that have not been destroyed.
const std::vector<std::unique_ptr<Window>>& Windows();

/// False once the window has been destroyed.
bool IsWindow(HWND window);
/// Null when the id belongs to none of our windows.
HWND WindowFromId(Uint32 sdl_window_id);
/// The window made first, null when there is none.
HWND FirstWindow();

/// Queues beginning and end of a drag by the title bar or the border. The system tells of neither: a button that goes
/// down on the frame of the window with the focus begins one, and the same button coming up ends it.
void WatchDragging();
bool AnyWindowDragged();

}   // namespace sparkrig
