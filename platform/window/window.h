// A window with a message queue and a window procedure, in the shape of the Win32 one, on SDL2.
// SDL events become the numbered messages below; mouse moves that wait are merged.
#pragma once
#include "platform/system/win_types.h"

struct SDL_Window;

namespace sparkrig {

using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using WNDPROC = LRESULT (*)(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

inline constexpr UINT WM_DESTROY = 0x02, WM_SIZE = 0x05, WM_CLOSE = 0x10, WM_QUIT = 0x12, WM_ACTIVATEAPP = 0x1C,
                      WM_KEYDOWN = 0x100, WM_KEYUP = 0x101, WM_CHAR = 0x102, WM_COMMAND = 0x111, WM_MOUSEMOVE = 0x200,
                      WM_LBUTTONDOWN = 0x201, WM_LBUTTONUP = 0x202, WM_ENTERMENULOOP = 0x211, WM_EXITMENULOOP = 0x212,
                      WM_ENTERSIZEMOVE = 0x231, WM_EXITSIZEMOVE = 0x232;
inline constexpr WPARAM SIZE_RESTORED = 0, SIZE_MINIMIZED = 1, SIZE_MAXIMIZED = 2, SIZE_MAXSHOW = 3, SIZE_MAXHIDE = 4;
inline constexpr int CW_USEDEFAULT = static_cast<int>(0x80000000u);
inline constexpr UINT PM_NOREMOVE = 0, PM_REMOVE = 1;

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
};

struct WNDCLASSEXA {
    UINT style;
    WNDPROC lpfnWndProc;
    const char* lpszClassName;
};

bool RegisterClassExA(const WNDCLASSEXA& window_class);

/// Width and height are those of the whole window; CW_USEDEFAULT gives 1024 x 768 of client area. Null on failure.
HWND CreateWindowExA(const char* class_name, const char* title, DWORD style, int x, int y, int width, int height);
void DestroyWindow(HWND window);
void ShowWindow(HWND window, int command);
void UpdateWindow(HWND window);
/// Empty (0 x 0) while the window is minimised.
void GetClientRect(HWND window, RECT& rectangle);

/// Collects what the system has and looks at the first message. PM_REMOVE takes it off the queue.
bool PeekMessageA(MSG& message, UINT remove);
/// Waits for a message and takes it off the queue. False for WM_QUIT.
bool GetMessageA(MSG& message);
void TranslateMessage(const MSG& message);
LRESULT DispatchMessageA(const MSG& message);
void PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
void PostQuitMessage(int exit_code);
LRESULT DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

void ShowCursor(bool show);
void RedrawWindow(HWND window);
/// A modal box with an OK button. Without a display it prints "caption: text" on the error stream.
void MessageBoxA(HWND window, const char* text, const char* caption);

/// For the device layer alone: the window that OpenGL draws into.
SDL_Window* NativeWindow(HWND window);

}   // namespace sparkrig
