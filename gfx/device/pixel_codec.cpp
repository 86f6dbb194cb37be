#include "gfx/device/pixel_codec.h"

namespace sparkrig {
namespace {

constexpr DWORD A(D3DCOLOR c) { return c >> 24; }
constexpr DWORD R(D3DCOLOR c) { return c >> 16 & 0xFF; }
constexpr DWORD G(D3DCOLOR c) { return c >> 8 & 0xFF; }
constexpr DWORD B(D3DCOLOR c) { return c & 0xFF; }
constexpr DWORD Grey(D3DCOLOR c) { return (R(c) + G(c) + B(c)) / 3; }
constexpr D3DCOLOR Argb(DWORD a, DWORD r, DWORD g, DWORD b) { return a << 24 | r << 16 | g << 8 | b; }

// clang-format off
DWORD    Copy(DWORD value)        { return value; }
DWORD    Pack565(D3DCOLOR c)      { return R(c) >> 3 << 11 | G(c) >> 2 << 5 | B(c) >> 3; }
D3DCOLOR Unpack565(DWORD p)       { return Argb(255, p >> 8 & 0xF8, p >> 3 & 0xFC, (p & 0x1F) << 3); }
DWORD    Pack1555(D3DCOLOR c)     { return (A(c) & 1) << 15 | R(c) >> 3 << 10 | G(c) >> 3 << 5 | B(c) >> 3; }
D3DCOLOR Unpack1555(DWORD p)      { return Argb(p & 0x8000 ? 255 : 0, p >> 7 & 0xF8, p >> 2 & 0xF8, (p & 0x1F) << 3); }
DWORD    Pack4444(D3DCOLOR c)     { return A(c) >> 4 << 12 | R(c) >> 4 << 8 | G(c) >> 4 << 4 | B(c) >> 4; }
D3DCOLOR Unpack4444(DWORD p)      { return Argb(p >> 8 & 0xF0, p >> 4 & 0xF0, p & 0xF0, (p & 0xF) << 4); }
DWORD    PackAlpha(D3DCOLOR c)    { return A(c); }
D3DCOLOR UnpackAlpha(DWORD p)     { return Argb(p & 0xFF, 0, 0, 0); }
DWORD    PackGrey(D3DCOLOR c)     { return Grey(c); }
D3DCOLOR UnpackGrey(DWORD p)      { return Argb(255, p & 0xFF, p & 0xFF, p & 0xFF); }
DWORD    PackGreyAlpha(D3DCOLOR c){ return Grey(c) + (A(c) << 8); }
D3DCOLOR UnpackGreyAlpha(DWORD p) { return Argb(p >> 8 & 0xFF, p & 0xFF, p & 0xFF, p & 0xFF); }

constexpr PixelCodec kCodecs[] = {
    {D3DFMT_R8G8B8,   3, Copy,          Copy           },
    {D3DFMT_A8R8G8B8, 4, Copy,          Copy           },
    {D3DFMT_X8R8G8B8, 4, Copy,          Copy           },
    {D3DFMT_R5G6B5,   2, Pack565,       Unpack565      },
    {D3DFMT_A1R5G5B5, 2, Pack1555,      Unpack1555     },
    {D3DFMT_A4R4G4B4, 2, Pack4444,      Unpack4444     },
    {D3DFMT_A8,       1, PackAlpha,     UnpackAlpha    },
    {D3DFMT_L8,       1, PackGrey,      UnpackGrey     },
    {D3DFMT_A8L8,     2, PackGreyAlpha, UnpackGreyAlpha},
    {D3DFMT_D16,      2, Copy,          Copy           },
    {D3DFMT_DXT1,     0, Copy,          Copy           },
    {D3DFMT_DXT2,     0, Copy,          Copy           },
    {D3DFMT_DXT3,     0, Copy,          Copy           },
    {D3DFMT_DXT4,     0, Copy,          Copy           },
    {D3DFMT_DXT5,     0, Copy,          Copy           },
};
// clang-format on

}   // namespace

const PixelCodec* FindPixelCodec(D3DFORMAT format) {
    for (const PixelCodec& codec : kCodecs)
        if (codec.format == format) return &codec;
    return nullptr;
}

}   // namespace sparkrig
