#include "platform/d3dx/dds_file.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "platform/d3dx/dxt_blocks.h"
#include "platform/d3dx/pixel_formats.h"

namespace sparkrig {
namespace {

constexpr std::size_t kDataOffset = 128;
constexpr UINT kAlphaPixels = 1, kAlpha = 2, kFourCC = 4, kRgb = 0x40, kLuminance = 0x20000;
constexpr UINT kCubeMap = 0x200, kVolume = 0x200000;

struct DdsPixelFormat {
    UINT flags, four_cc, bits, r, g, b, a;
};

/// The head of a file, from offset 4 on.
struct DdsHeader {
    UINT size, flags, height, width, pitch, depth, mip_count, reserved[11];
    UINT format_size;
    DdsPixelFormat format;
    UINT caps, caps2, caps3, caps4, reserved2;
};
static_assert(sizeof(DdsHeader) == 124);

struct MaskRow {
    D3DFORMAT format;
    UINT flags, bits, r, g, b, a;
};
// clang-format off
constexpr MaskRow kMaskRows[] = {
    {D3DFMT_A8R8G8B8, kRgb | kAlphaPixels,       32, 0xFF0000, 0xFF00,   0xFF,     0xFF000000},
    {D3DFMT_X8R8G8B8, kRgb,                      32, 0xFF0000, 0xFF00,   0xFF,     0         },
    {D3DFMT_A8B8G8R8, kRgb | kAlphaPixels,       32, 0xFF,     0xFF00,   0xFF0000, 0xFF000000},
    {D3DFMT_R8G8B8,   kRgb,                      24, 0xFF0000, 0xFF00,   0xFF,     0         },
    {D3DFMT_R5G6B5,   kRgb,                      16, 0xF800,   0x7E0,    0x1F,     0         },
    {D3DFMT_X1R5G5B5, kRgb,                      16, 0x7C00,   0x3E0,    0x1F,     0         },
    {D3DFMT_A1R5G5B5, kRgb | kAlphaPixels,       16, 0x7C00,   0x3E0,    0x1F,     0x8000    },
    {D3DFMT_A4R4G4B4, kRgb | kAlphaPixels,       16, 0xF00,    0xF0,     0xF,      0xF000    },
    {D3DFMT_A8,       kAlpha,                     8, 0,        0,        0,        0xFF      },
    {D3DFMT_L8,       kLuminance,                 8, 0xFF,     0,        0,        0         },
    {D3DFMT_A8L8,     kLuminance | kAlphaPixels, 16, 0xFF,     0,        0,        0xFF00    }};
// clang-format on

/// Writers fill in masks that the flags do not ask for; only those that they ask for are compared.
bool Matches(const MaskRow& row, const DdsPixelFormat& format) {
    constexpr UINT kKinds = kAlphaPixels | kAlpha | kRgb | kLuminance;
    if ((format.flags & kKinds) != row.flags || format.bits != row.bits) return false;
    if (row.flags & (kAlpha | kAlphaPixels) && format.a != row.a) return false;
    if (row.flags & (kRgb | kLuminance) && format.r != row.r) return false;
    return !(row.flags & kRgb) || (format.g == row.g && format.b == row.b);
}

D3DFORMAT FindFormat(const DdsPixelFormat& format) {
    if (format.flags & kFourCC) {
        const auto coded = static_cast<D3DFORMAT>(format.four_cc);
        return IsDxt(coded) ? coded : D3DFMT_UNKNOWN;
    }
    for (const MaskRow& row : kMaskRows)
        if (Matches(row, format)) return row.format;
    return D3DFMT_UNKNOWN;
}

}   // namespace

DdsLevel FindDdsLevel(const D3DXIMAGE_INFO& info, UINT level) {
    DdsLevel found = {info.Width, info.Height, kDataOffset, 0, 0};
    for (UINT i = 0;; ++i) {
        if (IsDxt(info.Format)) {
            found.row_bytes = std::size_t{DxtBlocks(found.width)} * DxtBlockBytes(info.Format);
            found.rows = DxtBlocks(found.height);
        } else {
            found.row_bytes = std::size_t{found.width} * PixelBytes(info.Format);
            found.rows = found.height;
        }
        if (i == level) return found;
        found.offset += found.row_bytes * found.rows;
        found.width = std::max(1u, found.width / 2);
        found.height = std::max(1u, found.height / 2);
    }
}

bool ReadDdsInfo(FileBytes file, D3DXIMAGE_INFO& info) {
    DdsHeader header;
    if (file.size() < kDataOffset) return false;
    std::memcpy(&header, file.data() + 4, sizeof header);
    if (header.size != sizeof header || header.format_size != 32) return false;
    if (header.caps2 & (kCubeMap | kVolume)) return false;
    if (!IsAllowedImageSize(header.width, header.height)) return false;
    const D3DFORMAT format = FindFormat(header.format);
    const UINT levels = std::max(1u, header.mip_count);
    const UINT full_chain = static_cast<UINT>(std::bit_width(std::max(header.width, header.height)));
    if (format == D3DFMT_UNKNOWN || levels > full_chain) return false;
    info = {header.width, header.height, 1, levels, format, D3DRTYPE_TEXTURE, D3DXIFF_DDS};
    const DdsLevel last = FindDdsLevel(info, levels - 1);
    return last.offset + last.row_bytes * last.rows <= file.size();
}

HRESULT DecodeDds(FileBytes file, const D3DXIMAGE_INFO& info, UINT level, Image& image) {
    const DdsLevel stored = FindDdsLevel(info, level);
    image = Image(stored.width, stored.height);
    if (!image.pixels) return E_OUTOFMEMORY;
    const BYTE* data = file.data() + stored.offset;
    if (IsDxt(info.Format))
        DecodeDxt(info.Format, data, stored.row_bytes, image);
    else
        UnpackPixels(info.Format, data, image.Count(), image.pixels.get());
    return D3D_OK;
}

}   // namespace sparkrig
