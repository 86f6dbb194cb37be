// A window with a message queue and a window procedure, in the shape of the Win32 one, on SDL2.
// SDL events become the numbered messages below; mouse moves that wait are merged.
#pragma once
#include <cstdint>
#include <functional>
#include <span>

#include "platform/window/resources.h"

struct SDL_Window;

namespace sparkrig {

using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using WNDPROC = LRESULT (*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

inline constexpr UINT WM_DESTROY = 0x02, WM_SIZE = 0x05, WM_PAINT = 0x0F, WM_CLOSE = 0x10, WM_QUIT = 0x12,
                      WM_ACTIVATEAPP = 0x1C, WM_KEYDOWN = 0x100, WM_KEYUP = 0x101, WM_CHAR = 0x102, WM_COMMAND = 0x111,
                      WM_SYSCOMMAND = 0x112, WM_MOUSEMOVE = 0x200, WM_LBUTTONDOWN = 0x201, WM_LBUTTONUP = 0x202,
                      WM_MOUSEWHEEL = 0x20A, WM_ENTERMENULOOP = 0x211, WM_EXITMENULOOP = 0x212,
                      WM_ENTERSIZEMOVE = 0x231, WM_EXITSIZEMOVE = 0x232;
inline constexpr WPARAM SIZE_RESTORED = 0, SIZE_MINIMIZED = 1, SIZE_MAXIMIZED = 2, SIZE_MAXSHOW = 3, SIZE_MAXHIDE = 4;
// The menu is opened by the mouse, where lParam says, or by the keyboard, lParam the letter that was typed with Alt or
// 0.
inline constexpr WPARAM SC_MOUSEMENU = 0xF090, SC_KEYMENU = 0xF100;
inline constexpr int WHEEL_DELTA = 120;   // one notch, in the high word of WM_MOUSEWHEEL's wParam
inline constexpr int CW_USEDEFAULT = static_cast<int>(0x80000000u);
inline constexpr UINT PM_NOREMOVE = 0, PM_REMOVE = 1;

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    char character = 0;   // ours: what the key of a WM_KEYDOWN types, 0 for nothing; TranslateMessage posts it
};

struct WNDCLASSEXA {
    WNDPROC lpfnWndProc;
    const char* lpszClassName;   // copied; on X11 the class of the windows
    MenuTemplate menu = {};      // borrowed, as the icon is
    IconImage icon = {};
};

/// The two signed 16-bit numbers of a position or a size.
inline int LowWord(LPARAM words) { return static_cast<std::int16_t>(words & 0xFFFF); }
inline int HighWord(LPARAM words) { return static_cast<std::int16_t>((words >> 16) & 0xFFFF); }

/// False when the class has no name or no procedure. A class of the same name is replaced.
bool RegisterClassExA(const WNDCLASSEXA& window_class);

/// Width and height are those of the whole window, with its frame; CW_USEDEFAULT as width gives 1024 x 768 of client
/// area, times the desktop's scale factor, or what the monitor has room for. CW_USEDEFAULT as x is a place on the
/// monitor that the mouse is on. The menu of the class, if it has one, stands above the client area. The window is
/// hidden until ShowWindow. Null when the class is unknown or the system refuses.
HWND CreateWindowExA(const char* class_name, const char* title, int x, int y, int width, int height);
/// Hides the window and sends WM_DESTROY. What OpenGL drew into stays until the next window is made or the process
/// ends, since the device outlives its window.
void DestroyWindow(HWND window);
void ShowWindow(HWND window);
/// Lets the system place and size the window, so that its client area is the final one, and sends WM_PAINT.
void UpdateWindow(HWND window);
/// Empty (0 x 0) while the window is minimised.
void GetClientRect(HWND window, RECT& rectangle);

/// Collects what the system has and looks at the first message. PM_REMOVE takes it off the queue.
bool PeekMessageA(MSG& message, UINT remove);
/// Waits for a message and takes it off the queue. False for WM_QUIT.
bool GetMessageA(MSG& message);
void TranslateMessage(const MSG& message);
LRESULT DispatchMessageA(const MSG& message);
/// Works without any display: tests drive window procedures with it.
void PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
void PostQuitMessage(int exit_code);
LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Keeps a counter, starting at 0; the cursor shows while it is not negative.
void ShowCursor(bool show);
/// Sends WM_PAINT.
void RedrawWindow(HWND window);

/// For WM_PAINT. What is drawn until EndPaint shows on the background (white) until a device presents a frame; from
/// then on EndPaint shows that frame again.
using HDC = HWND;
HDC BeginPaint(HWND window);
/// Draws one line at the top of a rectangle of the client area, in its middle.
inline constexpr UINT DT_CENTER = 1;
void DrawTextA(HDC context, const char* text, const RECT& area, UINT format);
void EndPaint(HWND window);

/// Prints "caption: text" on the error stream and, where there is a display, shows it in a box of its own with an OK
/// button until that is pressed. The box is no wider and no higher than the screen; a longer text scrolls. Any bytes
/// can be shown.
void MessageBoxA(HWND window, const char* text, const char* caption);

/// For the keyboard alone: marks the keys, by the system's scan codes, that have gone down since the last call, and
/// those that were held meanwhile, also when they are up again. Keys that went down for a menu or a dialog are taken
/// out until they come up.
void AdjustKeys(std::span<std::uint8_t> keys);

/// For the device layer alone: the window that OpenGL draws into.
SDL_Window* NativeWindow(HWND window);
/// For the device layer alone: SDL's number of the monitor that shows the first window, or most of it; the first one,
/// 0, where there is no window.
int MonitorInUse();
/// For the device layer alone: draws the window's menu over a picture that is about to be shown. False when there is
/// nothing to draw; otherwise the device knows nothing of what it has told OpenGL.
bool DrawMenuBar(HWND window);
/// For the device layer alone, with its OpenGL context current: how to draw the frame presented last into the window
/// without showing it yet, false when there is none. Afterwards the device knows nothing of what it has told OpenGL.
/// Empty: the device goes.
void SetWindowPicture(HWND window, std::function<bool()> draw_picture);

/// For the device layer alone: in full screen the client area has the size of the device's picture, which is stretched
/// over the monitor. 0 x 0: not full screen.
void SetFullScreenSize(HWND window, int width, int height);

/// For the keyboard layer: turns what the system has into queued messages and dispatches none.
void CollectEvents();
/// For the keyboard layer: whether keys go to the window. Always true where there is no focus at all.
bool IsForegroundWindow(HWND window);

/// Starts the window system if need be; false when that fails.
bool CanMakeWindows();
/// Whether windows are seen by anybody: false with SDL's off-screen drivers, and where none can be made.
bool HasDisplay();
/// Windows made from now on are seen by nobody, whatever display there is. Before the first window.
void HideFromDisplay();

}   // namespace sparkrig
