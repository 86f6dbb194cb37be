// Pixel formats: how their bytes lie in memory and what OpenGL calls them.
#pragma once
#include <epoxy/gl.h>

#include <cstddef>

#include "platform/d3d9/d3d9_types.h"

namespace sparkrig {

enum FormatRole : unsigned {
    kRoleTexture = 1,   // can be sampled
    kRoleTarget = 2,    // can be drawn into
    kRoleDepth = 4,     // depth buffer
};

struct FormatInfo {
    D3DFORMAT format;
    unsigned bytes;   // of one pixel, or of one block of 4 x 4
    bool blocks;
    bool alpha;
    unsigned roles;
    GLenum internal, external, type;   // 0, 0, 0: lives in system memory only
    GLint swizzle[4];

    /// Bytes from one row (of pixels or blocks) to the next in system memory.
    UINT Pitch(UINT width) const { return blocks ? (width + 3) / 4 * bytes : (width * bytes + 3) / 4 * 4; }
    UINT Rows(UINT height) const { return blocks ? (height + 3) / 4 : height; }
    std::size_t Bytes(UINT width, UINT height) const { return std::size_t{Pitch(width)} * Rows(height); }
};

/// Null for a format that the layer does not know.
const FormatInfo* FindFormat(D3DFORMAT format);

bool IsDepthFormat(D3DFORMAT format);

/// The components r, g, b, a of a colour in 0..1.
struct Rgba {
    float r, g, b, a;
};
constexpr Rgba ToRgba(D3DCOLOR colour) {
    return {static_cast<float>(colour >> 16 & 255) / 255.0f, static_cast<float>(colour >> 8 & 255) / 255.0f,
            static_cast<float>(colour & 255) / 255.0f, static_cast<float>(colour >> 24) / 255.0f};
}

}   // namespace sparkrig
