#include "platform/window/virtual_keys.h"

namespace sparkrig {

namespace {

struct KeyRow {
    SDL_Keycode key;
    WPARAM virtual_key;
};

// Letters, digits and space are numbered by their upper-case character and need no row.
// clang-format off
constexpr KeyRow kKeyRows[] = {
    {SDLK_BACKSPACE, 0x08}, {SDLK_TAB, 0x09}, {SDLK_RETURN, 0x0D}, {SDLK_KP_ENTER, 0x0D}, {SDLK_PAUSE, 0x13},
    {SDLK_ESCAPE, 0x1B},    {SDLK_PAGEUP, 0x21}, {SDLK_PAGEDOWN, 0x22}, {SDLK_END, 0x23}, {SDLK_HOME, 0x24},
    {SDLK_LEFT, 0x25},      {SDLK_UP, 0x26}, {SDLK_RIGHT, 0x27}, {SDLK_DOWN, 0x28}, {SDLK_INSERT, 0x2D},
    {SDLK_DELETE, 0x2E},    {SDLK_LSHIFT, 0x10}, {SDLK_RSHIFT, 0x10}, {SDLK_LCTRL, 0x11}, {SDLK_RCTRL, 0x11},
    {SDLK_LALT, 0x12},      {SDLK_RALT, 0x12}, {SDLK_KP_MULTIPLY, 0x6A}, {SDLK_KP_PLUS, 0x6B},
    {SDLK_KP_MINUS, 0x6D},  {SDLK_KP_DIVIDE, 0x6F},
    {SDLK_F1, 0x70}, {SDLK_F2, 0x71}, {SDLK_F3, 0x72}, {SDLK_F4, 0x73}, {SDLK_F5, 0x74}, {SDLK_F6, 0x75},
    {SDLK_F7, 0x76}, {SDLK_F8, 0x77}, {SDLK_F9, 0x78}, {SDLK_F10, 0x79}, {SDLK_F11, 0x7A}, {SDLK_F12, 0x7B},
};
// clang-format on

}   // namespace

WPARAM VirtualKey(SDL_Keycode key) {
    if (key >= SDLK_a && key <= SDLK_z) return static_cast<WPARAM>(key) - SDLK_a + 'A';
    if ((key >= SDLK_0 && key <= SDLK_9) || key == SDLK_SPACE) return static_cast<WPARAM>(key);
    for (const KeyRow& row : kKeyRows) {
        if (row.key == key) return row.virtual_key;
    }
    return 0;
}

char ControlCharacter(SDL_Keycode key) {
    switch (key) {
        case SDLK_BACKSPACE: return '\b';
        case SDLK_TAB: return '\t';
        case SDLK_RETURN:
        case SDLK_KP_ENTER: return '\r';
        case SDLK_ESCAPE: return '\x1B';
        default: return 0;
    }
}

}   // namespace sparkrig
