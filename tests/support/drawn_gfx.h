// A KRN_Gfx on OpenGL, in a window of its own that nobody sees.
#pragma once
#include "gfx/gfx.h"
#include "platform/window/window.h"
#include "tests/support/canvas.h"
#include "tests/support/test.h"

namespace sparkrig {

struct DrawnGfx {
    DrawnGfx(int width, int height) {
        KeepDriverLoaded();
        RegisterClassExA({DefWindowProcA, "DRAWN"});
        window = CreateWindowExA("DRAWN", "", 0, 0, width, height);
        gfx.emplace();
        gfx->InitDevice(window, 1, nullptr, 16, 0, 1, 0, 0);
    }
    KRN_Gfx* operator->() { return &*gfx; }
    KRN_Gfx& operator*() { return *gfx; }
    /// The back buffer, row by row from the top.
    std::vector<D3DCOLOR> Pixels() { return ReadBackBuffer(*gfx->Device()); }

    HWND window = nullptr;
    std::optional<KRN_Gfx> gfx;
};

}   // namespace sparkrig
