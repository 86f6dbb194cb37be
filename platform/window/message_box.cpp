#include <SDL2/SDL_messagebox.h>

#include <cstdio>

#include "platform/window/window_object.h"

namespace sparkrig {

void MessageBoxA(HWND window, const char* text, const char* caption) {
    std::fprintf(stderr, "%s: %s\n", caption, text);
    if (!HasDisplay()) return;
    SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_ERROR, caption, text, window ? window->native : nullptr);
}

}   // namespace sparkrig
