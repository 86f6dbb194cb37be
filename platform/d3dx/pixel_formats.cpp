#include "platform/d3dx/pixel_formats.h"

#include <cstring>

#include "platform/d3d9/pixel_format.h"

namespace sparkrig {
namespace {

constexpr UINT A(D3DCOLOR c) { return c >> 24; }
constexpr UINT R(D3DCOLOR c) { return c >> 16 & 0xFF; }
constexpr UINT G(D3DCOLOR c) { return c >> 8 & 0xFF; }
constexpr UINT B(D3DCOLOR c) { return c & 0xFF; }
constexpr UINT Grey(D3DCOLOR c) { return (R(c) + G(c) + B(c)) / 3; }
constexpr D3DCOLOR Argb(UINT a, UINT r, UINT g, UINT b) { return a << 24 | r << 16 | g << 8 | b; }

/// An 8-bit channel as the nearest of `bits` bits, and back to the full range.
template <UINT bits>
constexpr UINT Narrow(UINT v) {
    return (v * ((1u << bits) - 1) + 127) / 255;
}
template <UINT bits>
constexpr UINT Widen(UINT v) {
    constexpr UINT kMax = (1u << bits) - 1;
    return ((v & kMax) * 255 + kMax / 2) / kMax;
}

// clang-format off
constexpr UINT Same(D3DCOLOR c)       { return c; }
constexpr UINT Opaque(UINT p)         { return p | 0xFF000000; }
constexpr UINT SwapRb(UINT p)         { return (p & 0xFF00FF00) | (p >> 16 & 0xFF) | (p & 0xFF) << 16; }
constexpr UINT Pack565(D3DCOLOR c)    { return Narrow<5>(R(c)) << 11 | Narrow<6>(G(c)) << 5 | Narrow<5>(B(c)); }
constexpr UINT Unpack565(UINT p)      { return Argb(255, Widen<5>(p >> 11), Widen<6>(p >> 5), Widen<5>(p)); }
constexpr UINT Pack555(D3DCOLOR c)    { return Narrow<5>(R(c)) << 10 | Narrow<5>(G(c)) << 5 | Narrow<5>(B(c)); }
constexpr UINT PackX555(D3DCOLOR c)   { return 0x8000 | Pack555(c); }
constexpr UINT Unpack555(UINT p)      { return Argb(255, Widen<5>(p >> 10), Widen<5>(p >> 5), Widen<5>(p)); }
constexpr UINT Pack1555(D3DCOLOR c)   { return Narrow<1>(A(c)) << 15 | Pack555(c); }
constexpr UINT Unpack1555(UINT p)     { return (Unpack555(p) & 0xFFFFFF) | Widen<1>(p >> 15) << 24; }
constexpr UINT Pack4444(D3DCOLOR c)   { return Narrow<4>(A(c)) << 12 | Narrow<4>(R(c)) << 8 | Narrow<4>(G(c)) << 4 | Narrow<4>(B(c)); }
constexpr UINT Unpack4444(UINT p)     { return Argb(Widen<4>(p >> 12), Widen<4>(p >> 8), Widen<4>(p >> 4), Widen<4>(p)); }
constexpr UINT UnpackAlpha(UINT p)    { return p << 24; }
constexpr UINT UnpackGrey(UINT p)     { return Argb(255, p, p, p); }
constexpr UINT PackGreyA(D3DCOLOR c)  { return Grey(c) | A(c) << 8; }
constexpr UINT UnpackGreyA(UINT p)    { return Argb(p >> 8, p & 0xFF, p & 0xFF, p & 0xFF); }
// clang-format on

using PackLoop = void (*)(const D3DCOLOR*, std::size_t, BYTE*);
using UnpackLoop = void (*)(const BYTE*, std::size_t, D3DCOLOR*);

template <UINT bytes, UINT (*pack)(D3DCOLOR)>
void PackAll(const D3DCOLOR* pixels, std::size_t count, BYTE* stored) {
    for (std::size_t i = 0; i < count; ++i, stored += bytes) {
        const UINT value = pack(pixels[i]);   // little-endian, as the machine is
        std::memcpy(stored, &value, bytes);
    }
}

template <UINT bytes, UINT (*unpack)(UINT)>
void UnpackAll(const BYTE* stored, std::size_t count, D3DCOLOR* pixels) {
    for (std::size_t i = 0; i < count; ++i, stored += bytes) {
        UINT value = 0;   // byte by byte: copying three of them into it waits for the store
        for (UINT b = 0; b < bytes; ++b) value |= UINT{stored[b]} << 8 * b;
        pixels[i] = unpack(value);
    }
}

struct FormatRow {
    D3DFORMAT format;
    UINT bytes;
    PackLoop pack;
    UnpackLoop unpack;
};

// clang-format off
constexpr FormatRow kRows[] = {
    {D3DFMT_R8G8B8,   3, PackAll<3, Same>,      UnpackAll<3, Opaque>     },
    {D3DFMT_A8R8G8B8, 4, PackAll<4, Same>,      UnpackAll<4, Same>       },
    {D3DFMT_X8R8G8B8, 4, PackAll<4, Opaque>,    UnpackAll<4, Opaque>     },
    {D3DFMT_R5G6B5,   2, PackAll<2, Pack565>,   UnpackAll<2, Unpack565>  },
    {D3DFMT_X1R5G5B5, 2, PackAll<2, PackX555>,  UnpackAll<2, Unpack555>  },
    {D3DFMT_A1R5G5B5, 2, PackAll<2, Pack1555>,  UnpackAll<2, Unpack1555> },
    {D3DFMT_A4R4G4B4, 2, PackAll<2, Pack4444>,  UnpackAll<2, Unpack4444> },
    {D3DFMT_A8,       1, PackAll<1, A>,         UnpackAll<1, UnpackAlpha>},
    {D3DFMT_A8B8G8R8, 4, PackAll<4, SwapRb>,    UnpackAll<4, SwapRb>     },
    {D3DFMT_L8,       1, PackAll<1, Grey>,      UnpackAll<1, UnpackGrey> },
    {D3DFMT_A8L8,     2, PackAll<2, PackGreyA>, UnpackAll<2, UnpackGreyA>}};
// clang-format on

const FormatRow* FindRow(D3DFORMAT format) {
    for (const FormatRow& row : kRows)
        if (row.format == format) return &row;
    return nullptr;
}

}   // namespace

UINT PixelBytes(D3DFORMAT format) {
    const FormatRow* row = FindRow(format);
    return row ? row->bytes : 0;
}

bool IsDxt(D3DFORMAT format) {
    const PixelFormat* found = FindPixelFormat(format);
    return found && found->blocks;
}

bool HasAlpha(D3DFORMAT format) {
    const PixelFormat* found = FindPixelFormat(format);
    return found && found->alpha;
}

void PackPixels(D3DFORMAT format, const D3DCOLOR* pixels, std::size_t count, BYTE* stored) {
    FindRow(format)->pack(pixels, count, stored);
}

void UnpackPixels(D3DFORMAT format, const BYTE* stored, std::size_t count, D3DCOLOR* pixels) {
    FindRow(format)->unpack(stored, count, pixels);
}

}   // namespace sparkrig
