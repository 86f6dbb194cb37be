#include "platform/d3dx/bmp_file.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "platform/d3dx/file_bytes.h"
#include "platform/d3dx/pixel_formats.h"

namespace sparkrig {
namespace {

constexpr std::size_t kFileHeader = 14, kMasks = 54;   // offsets of what follows
constexpr UINT kOldHeader = 12, kOs2Header = 64, kFirstHeaderWithAlpha = 56;
constexpr UINT kPlain = 0, kRuns8 = 1, kRuns4 = 2, kMasked = 3, kMaskedAlpha = 6;   // compression
constexpr D3DCOLOR kBlack = 0xFF000000;

struct Masks {
    UINT r, g, b, a;
    bool operator==(const Masks&) const = default;
};

struct MaskRow {
    UINT bits;
    Masks masks;
    D3DFORMAT format;
};
// clang-format off
/// The masks under which pixels are stored as those of a texture format are.
constexpr MaskRow kMaskRows[] = {
    {16, {0x7C00,   0x3E0,  0x1F, 0         }, D3DFMT_X1R5G5B5},
    {16, {0x7C00,   0x3E0,  0x1F, 0x8000    }, D3DFMT_A1R5G5B5},
    {16, {0xF800,   0x7E0,  0x1F, 0         }, D3DFMT_R5G6B5  },
    {32, {0xFF0000, 0xFF00, 0xFF, 0         }, D3DFMT_X8R8G8B8},
    {32, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}, D3DFMT_A8R8G8B8}};
// clang-format on
constexpr Masks k555 = kMaskRows[0].masks, k888 = kMaskRows[3].masks;   // where the head names none

struct BmpHead {
    UINT header, width, height, bits, compression;
    bool from_top;
    Masks masks;                                  // of 16 and 32 bits
    std::size_t palette, palette_entries, data;   // offsets, but for the entries
    std::size_t EntryBytes() const { return header == kOldHeader ? 3 : 4; }
    std::size_t RowBytes() const { return (std::size_t{width} * bits + 7) / 8; }
    std::size_t PaddedRowBytes() const { return (RowBytes() + 3) / 4 * 4; }
    bool Runs() const { return compression == kRuns8 || compression == kRuns4; }
};

// ---- The head

bool KnownCoding(const BmpHead& head) {
    switch (head.compression) {
        case kPlain:
            return head.bits == 1 || head.bits == 4 || head.bits == 8 || head.bits == 16 || head.bits == 24 ||
                   head.bits == 32;
        case kRuns8: return head.bits == 8 && !head.from_top;
        case kRuns4: return head.bits == 4 && !head.from_top;
        case kMasked:
        case kMaskedAlpha: return head.header != kOs2Header && (head.bits == 16 || head.bits == 32);
        default: return false;
    }
}

Masks ReadMasks(const Bytes& file, const BmpHead& head) {
    if (head.compression != kMasked && head.compression != kMaskedAlpha) return head.bits == 16 ? k555 : k888;
    const bool alpha = head.compression == kMaskedAlpha || head.header >= kFirstHeaderWithAlpha;
    return {file.Little32(kMasks), file.Little32(kMasks + 4), file.Little32(kMasks + 8),
            alpha ? file.Little32(kMasks + 12) : 0};
}

/// The palette ends where the data begins, whatever the head says of it.
void FindPalette(const Bytes& file, BmpHead& head) {
    head.palette = kFileHeader + head.header;
    const UINT used = head.header == kOldHeader ? 0 : file.Little32(46);
    const std::size_t most = std::size_t{1} << head.bits, room = (head.data - head.palette) / head.EntryBytes();
    head.palette_entries = std::min({most, room, used == 0 ? most : std::size_t{used}});
}

bool FitsFile(const Bytes& file, const BmpHead& head) {
    if (head.data > file.Size()) return false;
    // A run of up to 255 pixels takes two bytes.
    if (head.Runs()) return std::uint64_t{head.width} * head.height <= std::uint64_t{128} * file.Size();
    return head.data + std::uint64_t{head.PaddedRowBytes()} * (head.height - 1) + head.RowBytes() <= file.Size();
}

bool ReadHead(const Bytes& file, BmpHead& head) {
    constexpr UINT kHeaders[] = {kOldHeader, 40, 52, kFirstHeaderWithAlpha, kOs2Header, 108, 124};
    head.header = file.Little32(kFileHeader);
    if (std::ranges::find(kHeaders, head.header) == std::end(kHeaders)) return false;
    const bool old = head.header == kOldHeader;
    head.width = old ? file.Little16(18) : file.Little32(18);
    const UINT height = old ? file.Little16(20) : file.Little32(22);
    head.from_top = !old && height >> 31 != 0;   // told by a negative height
    head.height = head.from_top ? 0u - height : height;
    head.bits = file.Little16(old ? 24 : 28);
    head.compression = old ? kPlain : file.Little32(30);
    head.data = file.Little32(10);
    if (!KnownCoding(head) || !IsAllowedImageSize(head.width, head.height)) return false;
    if (head.data < kFileHeader + head.header || !FitsFile(file, head)) return false;
    head.masks = ReadMasks(file, head);
    if (head.bits <= 8) FindPalette(file, head);
    return true;
}

/// The format that stores pixels as the file does; UNKNOWN for palettes and other masks.
D3DFORMAT StoredFormat(const BmpHead& head) {
    if (head.bits == 24) return D3DFMT_R8G8B8;
    for (const MaskRow& row : kMaskRows)
        if (row.bits == head.bits && row.masks == head.masks) return row.format;
    return D3DFMT_UNKNOWN;
}

D3DFORMAT FormatOf(const BmpHead& head) {
    if (head.bits <= 8) return D3DFMT_P8;
    const D3DFORMAT stored = StoredFormat(head);
    if (stored != D3DFMT_UNKNOWN) return stored;
    return head.masks.a != 0 ? D3DFMT_A8R8G8B8 : D3DFMT_X8R8G8B8;
}

// ---- Pixels

/// A channel of a masked pixel as the nearest of 256 values.
class Channel {
  public:
    Channel(UINT mask, UINT missing)
        : mask_(mask), shift_(mask ? std::countr_zero(mask) : 0), most_(mask >> shift_), missing_(missing) {}
    UINT Of(UINT pixel) const {
        if (mask_ == 0) return missing_;
        const std::uint64_t value = (pixel & mask_) >> shift_;
        return static_cast<UINT>((value * 255 + most_ / 2) / most_);
    }

  private:
    UINT mask_;
    int shift_;
    UINT most_, missing_;
};

struct Channels {
    explicit Channels(const Masks& masks) : r(masks.r, 0), g(masks.g, 0), b(masks.b, 0), a(masks.a, 255) {}
    D3DCOLOR Of(UINT pixel) const { return a.Of(pixel) << 24 | r.Of(pixel) << 16 | g.Of(pixel) << 8 | b.Of(pixel); }
    Channel r, g, b, a;
};

std::vector<D3DCOLOR> ReadPalette(const Bytes& file, const BmpHead& head) {
    std::vector<D3DCOLOR> palette(256, kBlack);
    for (std::size_t i = 0; i < head.palette_entries; ++i) {
        const std::size_t at = head.palette + i * head.EntryBytes();
        palette[i] = kBlack | file.At(at + 2) << 16 | file.At(at + 1) << 8 | file.At(at);
    }
    return palette;
}

D3DCOLOR* RowOf(Image& image, const BmpHead& head, UINT stored) {
    return image.Row(head.from_top ? stored : head.height - 1 - stored);
}

/// Indices of 1, 4 or 8 bits; the leftmost pixel of a byte has its highest bits.
template <UINT bits>
void DecodeIndices(const BYTE* row, const std::vector<D3DCOLOR>& palette, std::span<D3DCOLOR> pixels) {
    constexpr UINT kInByte = 8 / bits;
    for (UINT x = 0; x < pixels.size(); ++x) {
        const UINT shift = (kInByte - 1 - x % kInByte) * bits;
        pixels[x] = palette[row[x / kInByte] >> shift & ((1u << bits) - 1)];
    }
}

template <class Stored>
void DecodeMasked(const BYTE* row, const Masks& masks, std::span<D3DCOLOR> pixels) {
    const Channels channels(masks);
    for (D3DCOLOR& pixel : pixels) {
        Stored stored;
        std::memcpy(&stored, row, sizeof stored);
        pixel = channels.Of(stored);
        row += sizeof stored;
    }
}

void DecodeRow(const BmpHead& head, const BYTE* row, const std::vector<D3DCOLOR>& palette, std::span<D3DCOLOR> pixels) {
    const D3DFORMAT stored = StoredFormat(head);
    if (stored != D3DFMT_UNKNOWN) return UnpackPixels(stored, row, pixels.size(), pixels.data());
    switch (head.bits) {
        case 1: return DecodeIndices<1>(row, palette, pixels);
        case 4: return DecodeIndices<4>(row, palette, pixels);
        case 8: return DecodeIndices<8>(row, palette, pixels);
        case 16: return DecodeMasked<std::uint16_t>(row, head.masks, pixels);
        default: return DecodeMasked<std::uint32_t>(row, head.masks, pixels);
    }
}

// ---- Run-length coding: a count and a byte, or 0 and an order. Pixels that nothing is said of have index 0.

class Runs {
  public:
    Runs(FileBytes file, const BmpHead& head, const std::vector<D3DCOLOR>& palette, Image& image)
        : file_(file), at_(head.data), head_(head), palette_(palette), image_(image) {}

    /// False when the file ends before the picture does.
    bool Decode() {
        std::ranges::fill(image_.Pixels(), palette_[0]);
        while (y_ < head_.height && !ended_) {
            if (at_ + 2 > file_.size()) return false;
            const UINT count = file_[at_], value = file_[at_ + 1];
            at_ += 2;
            if (count > 0) {
                for (UINT i = 0; i < count; ++i) Put(value, i);
            } else if (!Obey(value)) {
                return false;
            }
        }
        return true;
    }

  private:
    bool Obey(UINT order) {
        constexpr UINT kEndOfRow = 0, kEnd = 1, kMove = 2;
        if (order == kEndOfRow) return NextRow();
        if (order == kEnd) return ended_ = true;
        if (order != kMove) return PutSingles(order);
        if (at_ + 2 > file_.size()) return false;
        x_ += file_[at_];
        y_ += file_[at_ + 1];
        at_ += 2;
        return true;
    }
    bool NextRow() {
        x_ = 0;
        ++y_;
        return true;
    }
    /// So many pixels one by one, filled up to a whole number of words.
    bool PutSingles(UINT count) {
        const std::size_t bytes = head_.bits == 8 ? count : (count + 1) / 2;
        if (at_ + bytes > file_.size()) return false;
        for (UINT i = 0; i < count; ++i) Put(file_[at_ + (head_.bits == 8 ? i : i / 2)], i);
        at_ += (bytes + 1) / 2 * 2;
        return true;
    }
    /// The i-th pixel of a run; of 4 bits each, a byte holds two by turns.
    void Put(UINT byte, UINT i) {
        const UINT index = head_.bits == 8 ? byte : i % 2 == 0 ? byte >> 4 : byte & 15;
        if (x_ < head_.width && y_ < head_.height) RowOf(image_, head_, static_cast<UINT>(y_))[x_] = palette_[index];
        ++x_;
    }

    FileBytes file_;
    std::size_t at_;
    const BmpHead& head_;
    const std::vector<D3DCOLOR>& palette_;
    Image& image_;
    std::size_t x_ = 0, y_ = 0;   // y in stored rows
    bool ended_ = false;
};

}   // namespace

bool ReadBmpInfo(FileBytes file, D3DXIMAGE_INFO& info) {
    BmpHead head;
    if (!ReadHead(Bytes(file), head)) return false;
    info = {head.width, head.height, 1, 1, FormatOf(head), D3DRTYPE_TEXTURE, D3DXIFF_BMP};
    return true;
}

HRESULT DecodeBmp(FileBytes file, Image& image) {
    BmpHead head;
    if (!ReadHead(Bytes(file), head)) return D3DXERR_INVALIDDATA;
    image = Image(head.width, head.height);
    if (!image.pixels) return E_OUTOFMEMORY;
    const std::vector<D3DCOLOR> palette = head.bits <= 8 ? ReadPalette(Bytes(file), head) : std::vector<D3DCOLOR>();
    if (head.Runs()) return Runs(file, head, palette, image).Decode() ? D3D_OK : D3DXERR_INVALIDDATA;
    for (UINT y = 0; y < head.height; ++y)
        DecodeRow(head, file.data() + head.data + y * head.PaddedRowBytes(), palette,
                  {RowOf(image, head, y), head.width});
    return D3D_OK;
}

}   // namespace sparkrig
