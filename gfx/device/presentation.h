// How the picture reaches the window: presentation parameters and the formats that follow from the display's.
#pragma once
#include "base/error.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

struct PresentationSettings {
    HWND window = nullptr;
    bool windowed = true;
    D3DDISPLAYMODE mode = {};
    int z_buffer_bits = 0;   // 0, 16, 24 or 32
    int vsync = 0;           // 0 to 4; looked at in full screen only
};

/// Settings without a row in the tables are errors of `reporter`.
D3DPRESENT_PARAMETERS BuildPresentParameters(const KRN_Base& reporter, const PresentationSettings& settings);

/// The display's format with and without alpha; formats other than the 32-bit ones stand for both.
D3DFORMAT AlphaFormatOf(D3DFORMAT display);
D3DFORMAT OpaqueFormatOf(D3DFORMAT display);

}   // namespace sparkrig
