// The heads of bmp, jpg, tga and png files.
#include "platform/d3dx/dds_file.h"
#include "platform/d3dx/file_bytes.h"
#include "platform/d3dx/image_file.h"
#include "platform/d3dx/jpg_tables.h"

namespace sparkrig {
namespace {

D3DXIMAGE_INFO MakeInfo(UINT width, UINT height, D3DFORMAT format, D3DXIMAGE_FILEFORMAT kind) {
    return {width, height, 1, 1, format, D3DRTYPE_TEXTURE, kind};
}

// ---- BMP

constexpr std::size_t kBmpFileHeader = 14, kBmpMasks = 54;

struct ChannelMasks {
    UINT r, g, b;
    bool operator==(const ChannelMasks&) const = default;
};

D3DFORMAT BmpFormat(const Bytes& file, UINT bits, UINT compression, bool has_alpha_mask) {
    const ChannelMasks masks = {file.Little32(kBmpMasks), file.Little32(kBmpMasks + 4), file.Little32(kBmpMasks + 8)};
    const UINT alpha = has_alpha_mask ? file.Little32(kBmpMasks + 12) : 0;
    if (bits <= 8) return D3DFMT_P8;
    if (bits == 24) return D3DFMT_R8G8B8;
    if (bits == 16 && compression == 0) return D3DFMT_X1R5G5B5;
    if (bits == 16 && masks == ChannelMasks{0x7C00, 0x3E0, 0x1F})
        return alpha == 0x8000 ? D3DFMT_A1R5G5B5 : D3DFMT_X1R5G5B5;
    if (bits == 16 && masks == ChannelMasks{0xF800, 0x7E0, 0x1F}) return D3DFMT_R5G6B5;
    return compression == 3 && alpha != 0 ? D3DFMT_A8R8G8B8 : D3DFMT_X8R8G8B8;
}

bool ReadBmp(const Bytes& file, D3DXIMAGE_INFO& info) {
    const std::uint64_t data = file.Little32(10);
    const UINT header = file.Little32(kBmpFileHeader);
    const bool old = header == 12;
    const bool with_masks = header == 108 || header == 124;
    if (!old && header != 40 && header != 56 && !with_masks) return false;
    const UINT width = old ? file.Little16(18) : file.Little32(18);
    const UINT stored_height = old ? file.Little16(20) : file.Little32(22);
    // Rows from the top down are told by a negative height.
    const UINT height = !old && stored_height >> 31 ? 0u - stored_height : stored_height;
    const UINT bits = file.Little16(old ? 24 : 28);
    const UINT compression = old ? 0 : file.Little32(30);
    if (bits != 1 && bits != 4 && bits != 8 && bits != 16 && bits != 24 && bits != 32) return false;
    if (compression != 0 && (compression != 3 || header == 56 || (bits != 16 && bits != 32))) return false;
    if (!IsAllowedImageSize(width, height)) return false;
    const std::uint64_t last_row = (std::uint64_t{width} * bits + 7) / 8;
    const std::uint64_t row = (last_row + 3) / 4 * 4;
    if (data + row * (height - 1) + last_row > file.Size()) return false;
    info = MakeInfo(width, height, BmpFormat(file, bits, compression, with_masks), D3DXIFF_BMP);
    return true;
}

// ---- JPG

/// A picture takes at least one bit for each block of 8 x 8 pixels.
constexpr std::uint64_t kJpgPixelsPerByte = 8 * 64;

bool ReadJpgFrame(const Bytes& file, std::size_t data, D3DXIMAGE_INFO& info) {
    const UINT height = file.Big16(data + 3), width = file.Big16(data + 5), channels = file.At(data + 7);
    if (!IsAllowedImageSize(width, height)) return false;
    if (std::uint64_t{width} * height > kJpgPixelsPerByte * file.Size()) return false;
    info = MakeInfo(width, height, channels == 1 ? D3DFMT_L8 : D3DFMT_X8R8G8B8, D3DXIFF_JPG);
    return true;
}

bool ReadJpg(const Bytes& file, D3DXIMAGE_INFO& info) {
    bool found = false;
    JpgSegments segments(file);
    JpgTables tables(file);
    for (JpgSegment segment; segments.Next(segment);) {
        const bool is_frame = segment.marker >= 0xC0 && segment.marker <= 0xC2;   // baseline, extended, progressive
        if (is_frame && (found || !ReadJpgFrame(file, segment.data, info))) return false;
        if (!tables.Take(segment)) return false;
        found = found || is_frame;
    }
    return found;
}

// ---- PNG

constexpr char kPngSignature[] = "\x89PNG\r\n\x1a\n";
/// The best that deflate can do.
constexpr std::uint64_t kMaxDeflateRatio = 1032;

bool PngHasTransparency(const Bytes& file) {
    for (std::uint64_t at = 8; at + 12 <= file.Size(); at += 12 + std::uint64_t{file.Big32(at)}) {
        const UINT type = file.Big32(at + 4);
        if (type == 0x74524E53) return true;    // "tRNS"
        if (type == 0x49444154) return false;   // "IDAT"
    }
    return false;
}

bool ReadPng(const Bytes& file, D3DXIMAGE_INFO& info) {
    struct ColourType {
        UINT number, channels;
        D3DFORMAT opaque, transparent;
    };
    // clang-format off
    static constexpr ColourType kTypes[] = {
        {0, 1, D3DFMT_L8,       D3DFMT_A8L8    },
        {2, 3, D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8},
        {3, 1, D3DFMT_P8,       D3DFMT_P8      },
        {4, 2, D3DFMT_A8L8,     D3DFMT_A8L8    },
        {6, 4, D3DFMT_A8R8G8B8, D3DFMT_A8R8G8B8}};
    // clang-format on
    if (file.Size() < 33 || file.Big32(12) != 0x49484452) return false;   // "IHDR"
    const UINT width = file.Big32(16), height = file.Big32(20);
    const UINT bits = file.At(24), number = file.At(25);
    if (!IsAllowedImageSize(width, height) || bits == 0 || bits > 16) return false;
    for (const ColourType& type : kTypes) {
        if (type.number != number) continue;
        const std::uint64_t row = (std::uint64_t{width} * type.channels * bits + 7) / 8;
        if (row * height > kMaxDeflateRatio * file.Size()) return false;
        info = MakeInfo(width, height, PngHasTransparency(file) ? type.transparent : type.opaque, D3DXIFF_PNG);
        return true;
    }
    return false;
}

// ---- TGA: no signature, so every field of its head must make sense.

constexpr std::size_t kTgaHeader = 18;

struct TgaHead {
    UINT image_type, map_length, map_bits, width, height, bits, alpha_bits;
    std::uint64_t data;
    bool mapped, packed;
};

bool ReadTgaHead(const Bytes& file, TgaHead& head) {
    const UINT map_type = file.At(1);
    head.image_type = file.At(2) & ~8u;
    head.packed = (file.At(2) & 8) != 0;
    head.map_length = file.Little16(5);
    head.map_bits = file.At(7);
    head.width = file.Little16(12);
    head.height = file.Little16(14);
    head.bits = file.At(16);
    head.alpha_bits = file.At(17) & 15;
    head.mapped = head.image_type == 1;
    if (file.Size() < kTgaHeader || map_type > 1 || (head.mapped && map_type == 0)) return false;
    head.data = kTgaHeader + file.At(0);
    if (map_type == 1) head.data += std::uint64_t{head.map_length} * ((head.map_bits + 7) / 8);
    return true;
}

D3DFORMAT TgaFormat(const TgaHead& head) {
    const UINT map_bits = head.map_bits, bits = head.bits;
    switch (head.image_type) {
        case 1:
            if (bits != 8 && bits != 16) return D3DFMT_UNKNOWN;
            return map_bits == 15 || map_bits == 16 || map_bits == 24 || map_bits == 32 ? D3DFMT_P8 : D3DFMT_UNKNOWN;
        case 2:
            if (bits == 15) return D3DFMT_X1R5G5B5;
            if (bits == 16) return head.alpha_bits > 0 ? D3DFMT_A1R5G5B5 : D3DFMT_X1R5G5B5;
            return bits == 24 ? D3DFMT_R8G8B8 : bits == 32 ? D3DFMT_A8R8G8B8 : D3DFMT_UNKNOWN;
        case 3: return bits == 8 ? D3DFMT_L8 : bits == 16 ? D3DFMT_A8L8 : D3DFMT_UNKNOWN;
        default: return D3DFMT_UNKNOWN;
    }
}

bool ReadTga(const Bytes& file, D3DXIMAGE_INFO& info) {
    TgaHead head;
    if (!ReadTgaHead(file, head) || !IsAllowedImageSize(head.width, head.height)) return false;
    const D3DFORMAT format = TgaFormat(head);
    if (format == D3DFMT_UNKNOWN) return false;
    const std::uint64_t pixels = std::uint64_t{head.width} * head.height, pixel_bytes = (head.bits + 7) / 8;
    // A packet of run-length coding is a count of up to 128 and one pixel.
    const std::uint64_t least = head.packed ? (pixels + 127) / 128 * (1 + pixel_bytes) : pixels * pixel_bytes;
    if (head.data + least > file.Size()) return false;
    info = MakeInfo(head.width, head.height, format, D3DXIFF_TGA);
    return true;
}

bool ReadAnyKind(FileBytes bytes, D3DXIMAGE_INFO& info) {
    const Bytes file(bytes);
    if (file.StartsWith("DDS ", 4)) return ReadDdsInfo(bytes, info);
    if (file.StartsWith("BM", 2)) return ReadBmp(file, info);
    if (file.StartsWith("\xFF\xD8\xFF", 3)) return ReadJpg(file, info);
    if (file.StartsWith(kPngSignature, 8)) return ReadPng(file, info);
    return ReadTga(file, info);
}

}   // namespace

HRESULT ReadImageInfo(FileBytes file, D3DXIMAGE_INFO& info) {
    return ReadAnyKind(file, info) ? D3D_OK : D3DXERR_INVALIDDATA;
}

}   // namespace sparkrig
