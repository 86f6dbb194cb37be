// What OpenGL calls the pixel formats.
#pragma once
#include <epoxy/gl.h>

#include "platform/d3d9/pixel_format.h"

namespace sparkrig {

struct GlFormat {
    D3DFORMAT format;
    GLenum internal, external, type;   // external, type: 0 for blocks and depth
    GLint swizzle[4];                  // what r, g, b, a are sampled as
};

/// Of a format that has a role; what lives in system memory only has no names.
const GlFormat& FindGlFormat(D3DFORMAT format);

/// The components r, g, b, a of a colour in 0..1.
struct Rgba {
    float r, g, b, a;
};
constexpr Rgba ToRgba(D3DCOLOR colour) {
    return {static_cast<float>(colour >> 16 & 255) / 255.0f, static_cast<float>(colour >> 8 & 255) / 255.0f,
            static_cast<float>(colour & 255) / 255.0f, static_cast<float>(colour >> 24) / 255.0f};
}

}   // namespace sparkrig
