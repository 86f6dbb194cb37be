// From SDL's keys to the numbers and characters of key messages.
#pragma once
#include <SDL2/SDL_keycode.h>

#include "platform/window/window.h"

namespace sparkrig {

inline constexpr WPARAM VK_BACK = 0x08, VK_TAB = 0x09, VK_RETURN = 0x0D, VK_SHIFT = 0x10, VK_CONTROL = 0x11,
                        VK_MENU = 0x12, VK_ESCAPE = 0x1B, VK_SPACE = 0x20, VK_PRIOR = 0x21, VK_NEXT = 0x22,
                        VK_END = 0x23, VK_HOME = 0x24, VK_LEFT = 0x25, VK_UP = 0x26, VK_RIGHT = 0x27, VK_DOWN = 0x28,
                        VK_DELETE = 0x2E, VK_F10 = 0x79;

/// The number that WM_KEYDOWN and WM_KEYUP carry for a key; 0 for a key without one.
WPARAM VirtualKey(SDL_Keycode key);

/// The character that a key types without SDL calling it text: back space, tab, return, escape. 0 for all others.
char ControlCharacter(SDL_Keycode key);

}   // namespace sparkrig
