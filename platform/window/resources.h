// Menus, dialogs and icons as constant tables, in the shape of a resource file. A "&" stands in front of the letter
// that chooses a text by keyboard.
#pragma once
#include <cstdint>
#include <span>

#include "platform/system/win_types.h"

namespace sparkrig {

struct MenuItem {
    const char* text;
    UINT id;   // of its WM_COMMAND
};
struct MenuPopup {
    const char* text;
    std::span<const MenuItem> items;
};
using MenuTemplate = std::span<const MenuPopup>;

/// A square picture, rows from the top down, 0xAARRGGBB.
struct IconImage {
    int size = 0;
    std::span<const std::uint32_t> pixels;
};

enum class ControlKind { Button, Edit, ListBox, Text, Icon };

inline constexpr DWORD BS_DEFPUSHBUTTON = 0x1, ES_NUMBER = 0x2000, LBS_SORT = 0x2;
inline constexpr UINT IDOK = 1, IDCANCEL = 2;

/// Place and size are in dialog units: a quarter of a letter's width, an eighth of its height.
struct DialogControl {
    ControlKind kind;
    UINT id;
    int x, y, width, height;
    DWORD style;
    const char* text;
};
struct DialogTemplate {
    const char* title;
    int width, height;
    std::span<const DialogControl> controls;
    IconImage icon = {};
};

}   // namespace sparkrig
