#include "platform/d3d9_gl/formats.h"

#include <algorithm>
#include <iterator>

namespace sparkrig {

namespace {

constexpr GLint R = GL_RED, G = GL_GREEN, B = GL_BLUE, A = GL_ALPHA, I = GL_ONE, O = GL_ZERO;

// clang-format off
constexpr GlFormat kFormats[] = {
    // format         internal                           external  type                           sampled as
    {D3DFMT_A8R8G8B8, GL_RGBA8,                          GL_BGRA,  GL_UNSIGNED_INT_8_8_8_8_REV,   {R, G, B, A}},
    {D3DFMT_X8R8G8B8, GL_RGBA8,                          GL_BGRA,  GL_UNSIGNED_INT_8_8_8_8_REV,   {R, G, B, I}},
    {D3DFMT_R5G6B5,   GL_RGB565,                         GL_RGB,   GL_UNSIGNED_SHORT_5_6_5,       {R, G, B, I}},
    {D3DFMT_X1R5G5B5, GL_RGB5_A1,                        GL_BGRA,  GL_UNSIGNED_SHORT_1_5_5_5_REV, {R, G, B, I}},
    {D3DFMT_A1R5G5B5, GL_RGB5_A1,                        GL_BGRA,  GL_UNSIGNED_SHORT_1_5_5_5_REV, {R, G, B, A}},
    {D3DFMT_A4R4G4B4, GL_RGBA4,                          GL_BGRA,  GL_UNSIGNED_SHORT_4_4_4_4_REV, {R, G, B, A}},
    {D3DFMT_A8,       GL_R8,                             GL_RED,   GL_UNSIGNED_BYTE,              {O, O, O, R}},
    {D3DFMT_L8,       GL_R8,                             GL_RED,   GL_UNSIGNED_BYTE,              {R, R, R, I}},
    {D3DFMT_A8L8,     GL_RG8,                            GL_RG,    GL_UNSIGNED_BYTE,              {R, R, R, G}},
    {D3DFMT_V8U8,     GL_RG8_SNORM,                      GL_RG,    GL_BYTE,                       {R, G, I, I}},
    {D3DFMT_DXT1,     GL_COMPRESSED_RGBA_S3TC_DXT1_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_DXT2,     GL_COMPRESSED_RGBA_S3TC_DXT3_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_DXT3,     GL_COMPRESSED_RGBA_S3TC_DXT3_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_DXT4,     GL_COMPRESSED_RGBA_S3TC_DXT5_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_DXT5,     GL_COMPRESSED_RGBA_S3TC_DXT5_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_D16,      GL_DEPTH_COMPONENT16,              0,        0,                             {}},
    {D3DFMT_D24X8,    GL_DEPTH24_STENCIL8,               0,        0,                             {}},
    {D3DFMT_D24S8,    GL_DEPTH24_STENCIL8,               0,        0,                             {}},
    {D3DFMT_D32,      GL_DEPTH_COMPONENT32F,             0,        0,                             {}},
    {D3DFMT_UNKNOWN,  0,                                 0,        0,                             {}},
};
// clang-format on

}   // namespace

const GlFormat& FindGlFormat(D3DFORMAT format) {
    const auto* row = std::ranges::find(kFormats, format, &GlFormat::format);
    return row == std::end(kFormats) ? *std::prev(row) : *row;
}

}   // namespace sparkrig
