#include "platform/d3dx/tga_file.h"

#include <algorithm>
#include <vector>

#include "platform/d3dx/file_bytes.h"
#include "platform/d3dx/pixel_formats.h"

namespace sparkrig {
namespace {

constexpr std::size_t kHeaderBytes = 18;
constexpr UINT kMapped = 1, kPacked = 8;                                                     // of the image type
constexpr UINT kAlphaBits = 15, kRightToLeft = 0x10, kTopDown = 0x20, kInterleaved = 0xC0;   // of the descriptor
constexpr UINT kRun = 0x80, kMostOfAPacket = 128;
constexpr D3DCOLOR kBlack = 0xFF000000;

struct KindRow {
    UINT type, bits;
    D3DFORMAT format;
};
// clang-format off
constexpr KindRow kKindRows[] = {
    {kMapped,  8, D3DFMT_P8      },
    {kMapped, 16, D3DFMT_P8      },
    {2,       15, D3DFMT_X1R5G5B5},
    {2,       16, D3DFMT_A1R5G5B5},   // X1R5G5B5 when the descriptor names no alpha bits
    {2,       24, D3DFMT_R8G8B8  },
    {2,       32, D3DFMT_A8R8G8B8},
    {3,        8, D3DFMT_L8      },
    {3,       16, D3DFMT_A8L8    }};

struct EntryRow {
    UINT bits;
    D3DFORMAT format;
};
/// The entries of a colour map.
constexpr EntryRow kEntryRows[] = {
    {15, D3DFMT_X1R5G5B5},
    {16, D3DFMT_X1R5G5B5},
    {24, D3DFMT_R8G8B8  },
    {32, D3DFMT_A8R8G8B8}};
// clang-format on

D3DFORMAT FindEntryFormat(UINT bits) {
    const auto* row = std::ranges::find(kEntryRows, bits, &EntryRow::bits);
    return row != std::end(kEntryRows) ? row->format : D3DFMT_UNKNOWN;
}

struct TgaHead {
    UINT type, width, height, descriptor;
    bool packed;
    D3DFORMAT format;   // of the pixels, P8 for indices
    UINT pixel_bytes;
    D3DFORMAT entry_format;      // of the colour map, as those below
    UINT first_index, entries;   // entry 0 has the index `first_index`
    std::size_t map, data;
};

D3DFORMAT FindFormat(UINT type, UINT bits, UINT alpha_bits) {
    for (const KindRow& row : kKindRows) {
        if (row.type != type || row.bits != bits) continue;
        return row.format == D3DFMT_A1R5G5B5 && alpha_bits == 0 ? D3DFMT_X1R5G5B5 : row.format;
    }
    return D3DFMT_UNKNOWN;
}

bool ReadHead(const Bytes& file, TgaHead& head) {
    const UINT has_map = file.At(1), entry_bits = file.At(7), bits = file.At(16);
    head.type = file.At(2) & ~kPacked;
    head.packed = (file.At(2) & kPacked) != 0;
    head.first_index = file.Little16(3);
    head.entries = has_map == 1 ? file.Little16(5) : 0;
    head.entry_format = FindEntryFormat(entry_bits);
    head.width = file.Little16(12);
    head.height = file.Little16(14);
    head.pixel_bytes = (bits + 7) / 8;
    head.descriptor = file.At(17);
    head.format = FindFormat(head.type, bits, head.descriptor & kAlphaBits);
    head.map = kHeaderBytes + file.At(0);   // behind the words of the picture's name
    // True colour may come with a map that it does not use.
    head.data = head.map + std::size_t{head.entries} * ((entry_bits + 7) / 8);
    if (has_map > 1 || head.format == D3DFMT_UNKNOWN || (head.descriptor & kInterleaved) != 0) return false;
    if (head.type == kMapped && (head.entries == 0 || head.entry_format == D3DFMT_UNKNOWN)) return false;
    return IsAllowedImageSize(head.width, head.height);
}

/// The fewest bytes that the pixels take. A packet is a byte with the count and one pixel or more.
std::uint64_t LeastBytes(const TgaHead& head) {
    const std::uint64_t pixels = std::uint64_t{head.width} * head.height;
    if (!head.packed) return pixels * head.pixel_bytes;
    return (pixels + kMostOfAPacket - 1) / kMostOfAPacket * (1 + head.pixel_bytes);
}

/// Turns stored pixels into colours.
class TgaColours {
  public:
    TgaColours(FileBytes file, const TgaHead& head)
        : format_(head.format), pixel_bytes_(head.pixel_bytes), first_index_(head.first_index), map_(head.entries) {
        if (head.type == kMapped) UnpackPixels(head.entry_format, file.data() + head.map, map_.size(), map_.data());
    }

    void Unpack(const BYTE* stored, std::size_t count, D3DCOLOR* pixels) const {
        if (format_ != D3DFMT_P8) return UnpackPixels(format_, stored, count, pixels);
        for (std::size_t i = 0; i < count; ++i, stored += pixel_bytes_)
            pixels[i] = Find(pixel_bytes_ == 1 ? stored[0] : stored[0] | UINT{stored[1]} << 8);
    }

  private:
    D3DCOLOR Find(UINT index) const {
        const UINT entry = index - first_index_;   // far too large for an index below the first
        return entry < map_.size() ? map_[entry] : kBlack;
    }

    D3DFORMAT format_;
    UINT pixel_bytes_, first_index_;
    std::vector<D3DCOLOR> map_;
};

/// Opens packets, which may run on from row to row; false when the file ends first.
bool UnpackPackets(FileBytes data, std::size_t pixel_bytes, const TgaColours& colours, std::span<D3DCOLOR> pixels) {
    while (!pixels.empty()) {
        if (data.empty()) return false;
        const bool run = (data[0] & kRun) != 0;
        const std::size_t count = std::min<std::size_t>((data[0] & ~kRun) + 1, pixels.size()), stored = run ? 1 : count;
        data = data.subspan(1);
        if (stored > data.size() / pixel_bytes) return false;
        colours.Unpack(data.data(), stored, pixels.data());
        if (run) std::fill_n(pixels.data() + 1, count - 1, pixels[0]);
        data = data.subspan(stored * pixel_bytes);
        pixels = pixels.subspan(count);
    }
    return true;
}

/// From the order in the file to rows from the top, each from the left.
void Turn(UINT descriptor, Image& image) {
    if (!(descriptor & kTopDown))
        for (UINT y = 0; y < image.height / 2; ++y)
            std::swap_ranges(image.Row(y), image.Row(y) + image.width, image.Row(image.height - 1 - y));
    if (descriptor & kRightToLeft)
        for (UINT y = 0; y < image.height; ++y) std::reverse(image.Row(y), image.Row(y) + image.width);
}

}   // namespace

bool ReadTgaInfo(FileBytes file, D3DXIMAGE_INFO& info) {
    TgaHead head;
    if (!ReadHead(Bytes(file), head) || head.data + LeastBytes(head) > file.size()) return false;
    info = {head.width, head.height, 1, 1, head.format, D3DRTYPE_TEXTURE, D3DXIFF_TGA};
    return true;
}

HRESULT DecodeTga(FileBytes file, Image& image) {
    TgaHead head;
    if (!ReadHead(Bytes(file), head) || head.data > file.size()) return D3DXERR_INVALIDDATA;
    image = Image(head.width, head.height);
    if (!image.pixels) return E_OUTOFMEMORY;
    const TgaColours colours(file, head);
    const FileBytes data = file.subspan(head.data);
    if (!head.packed)
        colours.Unpack(data.data(), image.Count(), image.pixels.get());
    else if (!UnpackPackets(data, head.pixel_bytes, colours, image.Pixels()))
        return D3DXERR_INVALIDDATA;
    Turn(head.descriptor, image);
    return D3D_OK;
}

}   // namespace sparkrig
