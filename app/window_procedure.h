#pragma once
#include "platform/window/window.h"

namespace sparkrig {

/// Records in Tester() what the window's messages tell; other messages go to DefWindowProcA.
LRESULT WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

}   // namespace sparkrig
