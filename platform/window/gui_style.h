// How menus and dialogs look.
#pragma once

struct ImGuiStyle;

namespace sparkrig {

/// Light and plain, as on a desktop of today.
void SetStyle(ImGuiStyle& style, float scale);

/// Pixels for what is one pixel on a screen of 96 dots per inch, from 1 to 4: by the desktop's setting for text
/// ("Xft.dpi"), else by GDK_SCALE, else by the size of the monitor, in SDL's numbers.
float DesktopScale(int monitor);

}   // namespace sparkrig
