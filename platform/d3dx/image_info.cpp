// The heads of jpg and png files, and which kind a file is of.
#include "platform/d3dx/bmp_file.h"
#include "platform/d3dx/dds_file.h"
#include "platform/d3dx/file_bytes.h"
#include "platform/d3dx/image_file.h"
#include "platform/d3dx/jpg_tables.h"
#include "platform/d3dx/tga_file.h"

namespace sparkrig {
namespace {

D3DXIMAGE_INFO MakeInfo(UINT width, UINT height, D3DFORMAT format, D3DXIMAGE_FILEFORMAT kind) {
    return {width, height, 1, 1, format, D3DRTYPE_TEXTURE, kind};
}

// ---- JPG

/// A picture takes at least one bit for each block of 8 x 8 pixels.
constexpr std::uint64_t kJpgPixelsPerByte = 8 * 64;
/// Each scan walks the whole picture, however little it says; a progressive file has some ten.
constexpr int kMostJpgScans = 64;

bool ReadJpgFrame(const Bytes& file, std::size_t data, D3DXIMAGE_INFO& info) {
    const UINT height = file.Big16(data + 3), width = file.Big16(data + 5), channels = file.At(data + 7);
    if (!IsAllowedImageSize(width, height)) return false;
    if (std::uint64_t{width} * height > kJpgPixelsPerByte * file.Size()) return false;
    info = MakeInfo(width, height, channels == 1 ? D3DFMT_L8 : D3DFMT_X8R8G8B8, D3DXIFF_JPG);
    return true;
}

bool ReadJpg(const Bytes& file, D3DXIMAGE_INFO& info) {
    constexpr UINT kStartOfScan = 0xDA;
    bool found = false;
    int scans = 0;
    JpgSegments segments(file);
    JpgTables tables(file);
    for (JpgSegment segment; segments.Next(segment);) {
        const bool is_frame = segment.marker >= 0xC0 && segment.marker <= 0xC2;   // baseline, extended, progressive
        if (is_frame && (found || !ReadJpgFrame(file, segment.data, info))) return false;
        if (segment.marker == kStartOfScan && ++scans > kMostJpgScans) return false;
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

bool ReadAnyKind(FileBytes bytes, D3DXIMAGE_INFO& info) {
    const Bytes file(bytes);
    if (file.StartsWith("DDS ", 4)) return ReadDdsInfo(bytes, info);
    if (file.StartsWith("BM", 2)) return ReadBmpInfo(bytes, info);
    if (file.StartsWith("\xFF\xD8\xFF", 3)) return ReadJpg(file, info);
    if (file.StartsWith(kPngSignature, 8)) return ReadPng(file, info);
    return ReadTgaInfo(bytes, info);
}

}   // namespace

HRESULT ReadImageInfo(FileBytes file, D3DXIMAGE_INFO& info) {
    return ReadAnyKind(file, info) ? D3D_OK : D3DXERR_INVALIDDATA;
}

}   // namespace sparkrig
