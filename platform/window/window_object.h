// What stands behind an HWND, and the one place that knows all of them. For this folder alone.
#pragma once
#include <SDL2/SDL_video.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/window/gui.h"
#include "platform/window/menu.h"
#include "platform/window/message_queue.h"

namespace sparkrig {

class ModalView;

/// A line that the window procedure draws while it paints.
struct PaintedText {
    std::string text;
    RECT area;
};

struct Window {
    SDL_Window* native;
    WNDPROC procedure;
    // The size that the whole window was asked to have; 0 x 0 once its frame has been taken off the client area.
    int whole_width = 0, whole_height = 0;
    bool dragged = false;   // between WM_ENTERSIZEMOVE and WM_EXITSIZEMOVE
    float scale = 1;        // of its monitor
    MenuTemplate menu;
    MenuState menu_state;
    ModalView* modal = nullptr;           // what holds its input
    POINT full_screen_size = {0, 0};      // of the device's picture, stretched over the monitor; 0 x 0: windowed
    std::function<bool()> draw_picture;   // the device's: draws the frame presented last; false when there is none
    void* device_context = nullptr;       // borrowed, the device's OpenGL context
    std::vector<PaintedText> painted;     // since BeginPaint
    std::unique_ptr<Gui> gui;             // made when it is first needed
};

/// Starts SDL's video part once. False when there is none.
bool StartVideo();

/// Whether nobody sees the windows; there is no focus then either.
bool DriverIsInvisible();

MessageQueue& Messages();

/// All windows that have not been destroyed.
const std::vector<std::unique_ptr<Window>>& Windows();

/// Sets the attributes of the OpenGL contexts made from now on.
void ChooseOpenGL();

bool IsFullScreen(const Window& window);

/// The height of a menu bar, and what that of a window takes off its client area: nothing in full screen.
int StripHeightAt(float scale);
int StripHeight(const Window& window);

/// A point of the client area and the same one of the window, in the system's pixels. They differ by the menu bar, and
/// in full screen by the size of the picture.
POINT ToClient(const Window& window, POINT place);
POINT ToWindow(const Window& window, POINT place);

/// After the window has come to another monitor: menu and dialogs take on its scale. True when that is another one.
bool TakeMonitorScale(Window& window);

/// For the keyboard: the keys that are down now are not down for it until they come up.
void HideHeldKeys();

/// Tells the desktop whose window it is.
void SetClassAndIcon(SDL_Window* native, const char* class_name, const IconImage& icon);

/// Takes over a native window.
HWND AddWindow(SDL_Window* native, WNDPROC procedure);

/// Shows the device's picture, or what was painted where there is none, and widgets above it.
void ShowContents(HWND window, const std::function<void(Gui&)>& widgets);

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
