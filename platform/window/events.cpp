#include "platform/window/events.h"

#include <algorithm>
#include <array>

#include "platform/window/virtual_keys.h"
#include "platform/window/window_object.h"

namespace sparkrig {

namespace {

/// Two signed 16-bit numbers, the first in the low word.
LPARAM PackWords(int low, int high) {
    return static_cast<LPARAM>((static_cast<DWORD>(high) & 0xFFFFu) << 16 | (static_cast<DWORD>(low) & 0xFFFFu));
}

void QueueSize(HWND window, WPARAM type) {
    RECT client;
    GetClientRect(window, client);
    Messages().Post({window, WM_SIZE, type, PackWords(client.right, client.bottom)});
    if (type != SIZE_MINIMIZED) Messages().Post({window, WM_PAINT, 0, 0});   // the system fills it anew
}

WPARAM ShownSizeType(HWND window) {
    return (SDL_GetWindowFlags(window->native) & SDL_WINDOW_MAXIMIZED) != 0 ? SIZE_MAXIMIZED : SIZE_RESTORED;
}

// By scan code: the keys that are down as far as the events tell, and those that went down, or were held while another
// went down, since the keyboard was last read.
using Keys = std::array<std::uint8_t, SDL_NUM_SCANCODES>;
Keys held_keys = {}, pressed_keys = {}, hidden_keys = {};

void NotePress(SDL_Scancode key) {
    held_keys[key] = 1;
    for (std::size_t i = 0; i < held_keys.size(); ++i) pressed_keys[i] |= held_keys[i];
}

bool alt_is_alone = false;   // no other key has gone down since Alt did

void QueueWindowEvent(const SDL_WindowEvent& event) {
    const HWND window = WindowFromId(event.windowID);
    if (!window) return;
    switch (event.event) {
        case SDL_WINDOWEVENT_MINIMIZED: QueueSize(window, SIZE_MINIMIZED); break;
        case SDL_WINDOWEVENT_SIZE_CHANGED:
        case SDL_WINDOWEVENT_MAXIMIZED:
        case SDL_WINDOWEVENT_RESTORED: QueueSize(window, ShownSizeType(window)); break;
        case SDL_WINDOWEVENT_DISPLAY_CHANGED:
            if (TakeMonitorScale(*window)) QueueSize(window, ShownSizeType(window));
            break;
        case SDL_WINDOWEVENT_FOCUS_GAINED: Messages().Post({window, WM_ACTIVATEAPP, 1, 0}); break;
        case SDL_WINDOWEVENT_FOCUS_LOST:
            held_keys.fill(0);
            pressed_keys.fill(0);
            alt_is_alone = false;
            Messages().Post({window, WM_ACTIVATEAPP, 0, 0});
            break;
        case SDL_WINDOWEVENT_EXPOSED: Messages().Post({window, WM_PAINT, 0, 0}); break;
        case SDL_WINDOWEVENT_CLOSE: Messages().Post({window, WM_CLOSE, 0, 0}); break;
        default: break;
    }
}

// The text of a repeat that was merged away goes with it, and that of a key that opens the menu.
bool text_is_dropped = false;

void OpenMenu(HWND window, LPARAM letter) {
    if (window && !window->modal) Messages().Post({window, WM_SYSCOMMAND, SC_KEYMENU, letter});
}

void QueueKey(const SDL_KeyboardEvent& event) {
    const HWND window = WindowFromId(event.windowID);
    const WPARAM key = VirtualKey(event.keysym.sym);
    if (event.type == SDL_KEYUP) {
        held_keys[event.keysym.scancode] = hidden_keys[event.keysym.scancode] = 0;
        Messages().Post({window, WM_KEYUP, key, 0});
        if (key == VK_MENU && alt_is_alone) OpenMenu(window, 0);
        return;
    }
    text_is_dropped = false;
    alt_is_alone = key == VK_MENU;
    if (event.repeat == 0) NotePress(event.keysym.scancode);
    const bool takes_letter = (event.keysym.mod & KMOD_ALT) != 0 && key >= 'A' && key <= 'Z';
    if (window && !window->modal && (key == VK_F10 || takes_letter)) {
        text_is_dropped = true;
        return OpenMenu(window, takes_letter ? static_cast<LPARAM>(key) : 0);
    }
    // A repeat that finds its key still waiting adds nothing: a slow program must not be buried in repeats.
    text_is_dropped = event.repeat != 0 && Messages().Holds(WM_KEYDOWN, key);
    if (!text_is_dropped) Messages().Post({window, WM_KEYDOWN, key, 1, ControlCharacter(event.keysym.sym)});
}

void QueueText(const SDL_TextInputEvent& event) {
    for (const char* character = event.text; *character && !text_is_dropped; ++character) {
        MSG* last = Messages().Last();
        if (last && last->message == WM_KEYDOWN && last->character == 0) {
            last->character = *character;
        } else {
            Messages().Post({WindowFromId(event.windowID), WM_CHAR, static_cast<std::uint8_t>(*character), 1});
        }
    }
}

void QueueButton(const SDL_MouseButtonEvent& event) {
    if (event.button != SDL_BUTTON_LEFT) return;
    const HWND window = WindowFromId(event.windowID);
    if (!window) return;
    alt_is_alone = false;
    const POINT place = ToClient(*window, {event.x, event.y});
    const bool down = event.type == SDL_MOUSEBUTTONDOWN;
    if (down && place.y < 0 && !window->modal) {
        Messages().Post({window, WM_SYSCOMMAND, SC_MOUSEMENU, PackWords(place.x, place.y)});
    } else {
        Messages().Post({window, down ? WM_LBUTTONDOWN : WM_LBUTTONUP, 0, PackWords(place.x, place.y)});
    }
}

void QueueMotion(const SDL_MouseMotionEvent& event) {
    const HWND window = WindowFromId(event.windowID);
    if (!window) return;
    const POINT place = ToClient(*window, {event.x, event.y});
    Messages().Post({window, WM_MOUSEMOVE, 0, PackWords(place.x, place.y)});
}

}   // namespace

void AdjustKeys(std::span<std::uint8_t> keys) {
    const std::size_t count = std::min(keys.size(), pressed_keys.size());
    for (std::size_t i = 0; i < count; ++i) keys[i] = hidden_keys[i] ? 0 : keys[i] | pressed_keys[i];
    pressed_keys.fill(0);
}

void HideHeldKeys() {
    hidden_keys = held_keys;
    pressed_keys.fill(0);
}

void QueueEvent(const SDL_Event& event) {
    switch (event.type) {
        case SDL_WINDOWEVENT: QueueWindowEvent(event.window); break;
        case SDL_KEYDOWN:
        case SDL_KEYUP: QueueKey(event.key); break;
        case SDL_TEXTINPUT: QueueText(event.text); break;
        case SDL_MOUSEMOTION: QueueMotion(event.motion); break;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP: QueueButton(event.button); break;
        case SDL_MOUSEWHEEL:
            Messages().Post({WindowFromId(event.wheel.windowID), WM_MOUSEWHEEL,
                             static_cast<WPARAM>(PackWords(0, event.wheel.y * WHEEL_DELTA)), 0});
            break;
        case SDL_QUIT: Messages().Post({FirstWindow(), WM_CLOSE, 0, 0}); break;   // the session ends
        default: break;
    }
}

}   // namespace sparkrig
