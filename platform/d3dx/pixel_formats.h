// How textures store 32-bit ARGB colours: by format, to the nearest value of each channel.
#pragma once
#include <cstddef>

#include "platform/d3d9/d3d9_constants.h"

namespace sparkrig {

/// Bytes of one pixel; 0 for formats that are not stored pixel by pixel.
UINT PixelBytes(D3DFORMAT format);
bool IsDxt(D3DFORMAT format);
bool HasAlpha(D3DFORMAT format);

/// Stores `count` pixels. Channels that the format lacks are dropped; grey is (r + g + b)/3. The format has PixelBytes.
void PackPixels(D3DFORMAT format, const D3DCOLOR* pixels, std::size_t count, BYTE* stored);
/// The reverse: an n-bit channel v becomes v/(2^n - 1) of 255; missing colours are 0 for A8, missing alpha is 255.
void UnpackPixels(D3DFORMAT format, const BYTE* stored, std::size_t count, D3DCOLOR* pixels);

}   // namespace sparkrig
