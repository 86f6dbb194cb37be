#include "platform/d3dx/tga_file.h"

#include <algorithm>
#include <vector>

#include "platform/d3dx/file_bytes.h"
#include "platform/d3dx/pixel_formats.h"

namespace sparkrig {
namespace {

constexpr std::size_t kHeader = 18;
constexpr UINT kMapped = 1, kTrueColour = 2, kGrey = 3, kPacked = 8;        // image types, and a bit beside them
constexpr UINT kAlphaBits = 15, kFromTheRight = 0x10, kFromTheTop = 0x20;   // of the descriptor
constexpr D3DCOLOR kBlack = 0xFF000000;

struct TgaHead {
    UINT type, width, height, bits, descriptor;
    UINT map_first, map_length, map_bits;
    std::size_t map, data;   // offsets
    bool packed;
    UINT PixelBytes() const { return (bits + 7) / 8; }
    UINT EntryBytes() const { return (map_bits + 7) / 8; }
};

// ---- The head

/// How a pixel, or an entry of the map, is stored; UNKNOWN for a width that there is not.
D3DFORMAT ColourFormat(UINT bits, bool alpha_bit) {
    switch (bits) {
        case 15: return D3DFMT_X1R5G5B5;
        case 16: return alpha_bit ? D3DFMT_A1R5G5B5 : D3DFMT_X1R5G5B5;
        case 24: return D3DFMT_R8G8B8;
        case 32: return D3DFMT_A8R8G8B8;
        default: return D3DFMT_UNKNOWN;
    }
}

D3DFORMAT FormatOf(const TgaHead& head) {
    if (head.type == kTrueColour) return ColourFormat(head.bits, (head.descriptor & kAlphaBits) != 0);
    if (head.type == kGrey) return head.bits == 8 ? D3DFMT_L8 : head.bits == 16 ? D3DFMT_A8L8 : D3DFMT_UNKNOWN;
    const bool indices = head.type == kMapped && (head.bits == 8 || head.bits == 16);
    return indices && ColourFormat(head.map_bits, false) != D3DFMT_UNKNOWN ? D3DFMT_P8 : D3DFMT_UNKNOWN;
}

bool ReadHead(const Bytes& file, TgaHead& head) {
    const UINT map_type = file.At(1);
    head.type = file.At(2) & ~kPacked;
    head.packed = (file.At(2) & kPacked) != 0;
    head.map_first = file.Little16(3);
    head.map_length = map_type == 1 ? file.Little16(5) : 0;
    head.map_bits = file.At(7);
    head.width = file.Little16(12);
    head.height = file.Little16(14);
    head.bits = file.At(16);
    head.descriptor = file.At(17);
    head.map = kHeader + file.At(0);
    head.data = head.map + std::size_t{head.map_length} * head.EntryBytes();
    if (file.Size() < kHeader || map_type > 1 || (head.type == kMapped && map_type == 0)) return false;
    if (!IsAllowedImageSize(head.width, head.height) || FormatOf(head) == D3DFMT_UNKNOWN) return false;
    const std::uint64_t pixels = std::uint64_t{head.width} * head.height;
    // A packet of run-length coding is a count of up to 128 and one pixel.
    const std::uint64_t least =
        head.packed ? (pixels + 127) / 128 * (1 + head.PixelBytes()) : pixels * head.PixelBytes();
    return head.data + least <= file.Size();
}

// ---- Pixels

/// The stored pixels one after the other, packets of run-length coding opened.
class StoredPixels {
  public:
    StoredPixels(FileBytes file, const TgaHead& head)
        : file_(file), at_(head.data), bytes_(head.PixelBytes()), packed_(head.packed) {}

    /// The next row, without padding; false at the end of the file. Packets go on from row to row.
    bool Read(std::vector<BYTE>& row) {
        for (std::size_t done = 0; done < row.size(); done += bytes_) {
            if (packed_ && left_ == 0 && !StartPacket()) return false;
            if (at_ + bytes_ > file_.size()) return false;
            std::memcpy(row.data() + done, file_.data() + at_, bytes_);
            --left_;
            if (!run_ || left_ == 0) at_ += bytes_;
        }
        return true;
    }

  private:
    bool StartPacket() {
        constexpr UINT kRun = 0x80;
        if (at_ >= file_.size()) return false;
        const UINT head = file_[at_++];
        run_ = (head & kRun) != 0;
        left_ = (head & ~kRun) + 1;
        return true;
    }

    FileBytes file_;
    std::size_t at_;
    UINT bytes_;
    bool packed_, run_ = false;
    std::uint64_t left_ = 0;   // pixels of the packet
};

/// Colours by index, from the map's first one on.
std::vector<D3DCOLOR> ReadMap(FileBytes file, const TgaHead& head) {
    std::vector<D3DCOLOR> colours(head.type == kMapped ? head.map_length : 0);
    if (!colours.empty())
        UnpackPixels(ColourFormat(head.map_bits, false), file.data() + head.map, colours.size(), colours.data());
    return colours;
}

void DecodeIndices(const std::vector<D3DCOLOR>& map, const TgaHead& head, const BYTE* stored, D3DCOLOR* pixels) {
    for (UINT x = 0; x < head.width; ++x, stored += head.PixelBytes()) {
        const std::size_t index = stored[0] | (head.bits == 16 ? UINT{stored[1]} << 8 : 0);
        const bool known = index >= head.map_first && index - head.map_first < map.size();
        pixels[x] = known ? map[index - head.map_first] : kBlack;
    }
}

}   // namespace

bool ReadTgaInfo(FileBytes file, D3DXIMAGE_INFO& info) {
    TgaHead head;
    if (!ReadHead(Bytes(file), head)) return false;
    info = {head.width, head.height, 1, 1, FormatOf(head), D3DRTYPE_TEXTURE, D3DXIFF_TGA};
    return true;
}

HRESULT DecodeTga(FileBytes file, Image& image) {
    TgaHead head;
    if (!ReadHead(Bytes(file), head)) return D3DXERR_INVALIDDATA;
    image = Image(head.width, head.height);
    if (!image.pixels) return E_OUTOFMEMORY;
    const std::vector<D3DCOLOR> map = ReadMap(file, head);
    const D3DFORMAT format = FormatOf(head);
    StoredPixels pixels(file, head);
    std::vector<BYTE> stored(std::size_t{head.width} * head.PixelBytes());
    for (UINT y = 0; y < head.height; ++y) {
        if (!pixels.Read(stored)) return D3DXERR_INVALIDDATA;
        D3DCOLOR* const row = image.Row(head.descriptor & kFromTheTop ? y : head.height - 1 - y);
        if (head.type == kMapped)
            DecodeIndices(map, head, stored.data(), row);
        else
            UnpackPixels(format, stored.data(), head.width, row);
        if (head.descriptor & kFromTheRight) std::reverse(row, row + head.width);
    }
    return D3D_OK;
}

}   // namespace sparkrig
