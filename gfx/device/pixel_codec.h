// How 32-bit ARGB colours are stored in locked surfaces.
#pragma once
#include "platform/d3d9/d3d9_constants.h"

namespace sparkrig {

/// One row of the table of pixel formats: pack gives the stored value, unpack the ARGB colour. Channels are cut to
/// their upper bits and come back shifted, not stretched: 31 of 5 bits is 248.
struct PixelCodec {
    D3DFORMAT format;
    int bytes;   // per pixel; 0 for block-compressed formats
    DWORD (*pack)(D3DCOLOR argb);
    D3DCOLOR (*unpack)(DWORD stored);
};

/// Null for a format without a row.
const PixelCodec* FindPixelCodec(D3DFORMAT format);

}   // namespace sparkrig
