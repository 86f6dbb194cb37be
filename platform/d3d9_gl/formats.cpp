#include "platform/d3d9_gl/formats.h"

#include <algorithm>
#include <iterator>

namespace sparkrig {

namespace {

constexpr GLint R = GL_RED, G = GL_GREEN, B = GL_BLUE, A = GL_ALPHA, I = GL_ONE, O = GL_ZERO;
constexpr unsigned kTex = kRoleTexture, kBoth = kRoleTexture | kRoleTarget, kDepth = kRoleDepth;

// clang-format off
constexpr FormatInfo kFormats[] = {
    // format            bytes  blocks  alpha  roles  internal                           external  type                            sampled as
    {D3DFMT_A8R8G8B8,      4,   false,  true,  kBoth, GL_RGBA8,                          GL_BGRA,  GL_UNSIGNED_INT_8_8_8_8_REV,   {R, G, B, A}},
    {D3DFMT_X8R8G8B8,      4,   false,  false, kBoth, GL_RGBA8,                          GL_BGRA,  GL_UNSIGNED_INT_8_8_8_8_REV,   {R, G, B, I}},
    {D3DFMT_R5G6B5,        2,   false,  false, kBoth, GL_RGB565,                         GL_RGB,   GL_UNSIGNED_SHORT_5_6_5,       {R, G, B, I}},
    {D3DFMT_X1R5G5B5,      2,   false,  false, kTex,  GL_RGB5_A1,                        GL_BGRA,  GL_UNSIGNED_SHORT_1_5_5_5_REV, {R, G, B, I}},
    {D3DFMT_A1R5G5B5,      2,   false,  true,  kTex,  GL_RGB5_A1,                        GL_BGRA,  GL_UNSIGNED_SHORT_1_5_5_5_REV, {R, G, B, A}},
    {D3DFMT_A4R4G4B4,      2,   false,  true,  kTex,  GL_RGBA4,                          GL_BGRA,  GL_UNSIGNED_SHORT_4_4_4_4_REV, {R, G, B, A}},
    {D3DFMT_A8,            1,   false,  true,  kTex,  GL_R8,                             GL_RED,   GL_UNSIGNED_BYTE,              {O, O, O, R}},
    {D3DFMT_L8,            1,   false,  false, kTex,  GL_R8,                             GL_RED,   GL_UNSIGNED_BYTE,              {R, R, R, I}},
    {D3DFMT_A8L8,          2,   false,  true,  kTex,  GL_RG8,                            GL_RG,    GL_UNSIGNED_BYTE,              {R, R, R, G}},
    {D3DFMT_V8U8,          2,   false,  false, kTex,  GL_RG8_SNORM,                      GL_RG,    GL_BYTE,                       {R, G, I, I}},
    {D3DFMT_DXT1,          8,   true,   true,  kTex,  GL_COMPRESSED_RGBA_S3TC_DXT1_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_DXT2,         16,   true,   true,  kTex,  GL_COMPRESSED_RGBA_S3TC_DXT3_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_DXT3,         16,   true,   true,  kTex,  GL_COMPRESSED_RGBA_S3TC_DXT3_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_DXT4,         16,   true,   true,  kTex,  GL_COMPRESSED_RGBA_S3TC_DXT5_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_DXT5,         16,   true,   true,  kTex,  GL_COMPRESSED_RGBA_S3TC_DXT5_EXT,  0,        0,                             {R, G, B, A}},
    {D3DFMT_D16,           2,   false,  false, kDepth, GL_DEPTH_COMPONENT16,             0,        0,                             {}},
    {D3DFMT_D24X8,         4,   false,  false, kDepth, GL_DEPTH24_STENCIL8,              0,        0,                             {}},
    {D3DFMT_D24S8,         4,   false,  false, kDepth, GL_DEPTH24_STENCIL8,              0,        0,                             {}},
    {D3DFMT_D32,           4,   false,  false, kDepth, GL_DEPTH_COMPONENT32F,            0,        0,                             {}},
    {D3DFMT_R8G8B8,        3,   false,  false, 0,     0,                                 0,        0,                             {}},
    {D3DFMT_A8B8G8R8,      4,   false,  true,  0,     0,                                 0,        0,                             {}},
    {D3DFMT_P8,            1,   false,  false, 0,     0,                                 0,        0,                             {}},
    {D3DFMT_L16,           2,   false,  false, 0,     0,                                 0,        0,                             {}},
};
// clang-format on

}   // namespace

const FormatInfo* FindFormat(D3DFORMAT format) {
    const auto* row = std::find_if(std::begin(kFormats), std::end(kFormats),
                                   [format](const FormatInfo& info) { return info.format == format; });
    return row == std::end(kFormats) ? nullptr : row;
}

bool IsDepthFormat(D3DFORMAT format) {
    const FormatInfo* info = FindFormat(format);
    return info != nullptr && (info->roles & kRoleDepth) != 0;
}

}   // namespace sparkrig
