#include <SDL2/SDL.h>

#include "platform/window/events.h"
#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

// While a window is dragged its end has to be asked for. Else SDL holds a change of the focus back for a moment, so as
// not to report one that is undone at once, and delivers it when it is next asked, not when a wait without end wakes.
constexpr int kDragPollMilliseconds = 50, kFocusPollMilliseconds = 200;

bool VideoRuns() { return SDL_WasInit(SDL_INIT_VIDEO) != 0; }

}   // namespace

void CollectEvents() {
    if (!VideoRuns()) return;
    SDL_Event event;
    while (SDL_PollEvent(&event) != 0) QueueEvent(event);
    WatchDragging();
}

bool PeekMessageA(MSG& message, UINT remove) {
    CollectEvents();
    const std::optional<MSG> first = remove == PM_REMOVE ? Messages().Take() : Messages().First();
    if (first) message = *first;
    return first.has_value();
}

bool GetMessageA(MSG& message) {
    while (!PeekMessageA(message, PM_REMOVE)) {
        if (!VideoRuns()) return false;   // nothing will ever come
        SDL_Event event;
        if (SDL_WaitEventTimeout(&event, AnyWindowDragged() ? kDragPollMilliseconds : kFocusPollMilliseconds) != 0) {
            QueueEvent(event);
        }
    }
    return message.message != WM_QUIT;
}

void TranslateMessage(const MSG& message) {
    if (message.message != WM_KEYDOWN || message.character == 0) return;
    Messages().PostFirst({message.hwnd, WM_CHAR, static_cast<std::uint8_t>(message.character), message.lParam});
}

LRESULT DispatchMessageA(const MSG& message) {
    if (message.message == WM_QUIT || !IsWindow(message.hwnd)) return 0;
    return message.hwnd->procedure(message.hwnd, message.message, message.wParam, message.lParam);
}

void PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Messages().Post({window, message, wParam, lParam});
}

void PostQuitMessage(int exit_code) { Messages().PostQuit(exit_code); }

}   // namespace sparkrig
