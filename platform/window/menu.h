// The menu bar of a window: drawn in a strip above the client area, in full screen over the picture while it is used.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "platform/window/resources.h"
#include "platform/window/window.h"

namespace sparkrig {

class Gui;

/// Where a menu stands. -1: none.
struct MenuState {
    bool in_use = false, open = false;   // open: the popup of the title
    int title = -1, item = -1;
};

/// The text without its "&", and the place of the marked letter, npos without one.
struct MenuText {
    explicit MenuText(std::string_view text);
    std::string shown;
    std::size_t marked;
    /// In small letters: the marked one, without one the first.
    char Letter() const;
};

/// What a key does to a menu. Returns the command that was chosen, 0 for none.
UINT MenuKey(MenuTemplate menu, MenuState& state, WPARAM key);

/// A rectangle of window coordinates with what is in it.
struct MenuArea {
    RECT area;
    int title, item;   // item -1: the title itself
};
/// Draws the strip and the open popup, and tells where they are.
std::vector<MenuArea> DrawMenu(Gui& gui, MenuTemplate menu, const MenuState& state);

/// Runs the menu until an item is chosen, which is posted as WM_COMMAND, or it is left.
///   letter    of the title to open; 0: none is opened
///   position  window coordinates of the press that opens a title; null for the keyboard
void TrackMenu(HWND window, char letter, const POINT* position);

}   // namespace sparkrig
