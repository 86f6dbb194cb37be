#pragma once
#include <SDL2/SDL_keycode.h>

#include "platform/window/window.h"

namespace sparkrig {

/// The number that WM_KEYDOWN and WM_KEYUP carry for a key; 0 for a key without one.
WPARAM VirtualKey(SDL_Keycode key);

/// The character that a key types without SDL calling it text: back space, tab, return, escape. 0 for all others.
char ControlCharacter(SDL_Keycode key);

}   // namespace sparkrig
