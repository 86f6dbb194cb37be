// Pixel formats: how their bytes lie in memory and what a surface of each can be.
#pragma once
#include <cstddef>

#include "platform/d3d9/d3d9_types.h"

namespace sparkrig {

enum FormatRole : unsigned {
    kRoleTexture = 1,   // can be sampled
    kRoleTarget = 2,    // can be drawn into
    kRoleDepth = 4,     // depth buffer
};

struct PixelFormat {
    D3DFORMAT format;
    unsigned bytes;   // of one pixel, or of one block of 4 x 4
    bool blocks;
    bool alpha;
    unsigned roles;   // 0: lives in system memory only

    /// Pixels along the edge of what is stored together.
    UINT Step() const { return blocks ? 4 : 1; }
    /// Bytes of a row of pixels or blocks.
    UINT RowBytes(UINT width) const { return (width + Step() - 1) / Step() * bytes; }
    /// From one row to the next in a surface.
    UINT Pitch(UINT width) const { return (RowBytes(width) + 3) / 4 * 4; }
    UINT Rows(UINT height) const { return (height + Step() - 1) / Step(); }
    std::size_t Bytes(UINT width, UINT height) const { return std::size_t{Pitch(width)} * Rows(height); }
};

/// Null for a format that the layer does not know.
const PixelFormat* FindPixelFormat(D3DFORMAT format);

}   // namespace sparkrig
