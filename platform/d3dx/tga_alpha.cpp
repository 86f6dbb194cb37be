#include "platform/d3dx/tga_alpha.h"

namespace sparkrig {
namespace {

constexpr std::size_t kHeaderBytes = 18;
constexpr BYTE kPacked = 8, kFromTheTop = 0x20, kRun = 0x80;

/// The stored pixels one after the other, packets of run-length coding opened.
class StoredPixels {
  public:
    StoredPixels(FileBytes file, std::size_t at, bool packed) : file_(file), at_(at), packed_(packed) {}

    /// The next pixel's upper byte; false at the end of the file.
    bool Next(BYTE& upper) {
        if (packed_ && left_ == 0 && !StartPacket()) return false;
        if (at_ + 2 > file_.size()) return false;
        upper = file_[at_ + 1];
        --left_;
        if (!run_ || left_ == 0) at_ += 2;
        return true;
    }

  private:
    bool StartPacket() {
        if (at_ >= file_.size()) return false;
        const BYTE head = file_[at_++];
        run_ = (head & kRun) != 0;
        left_ = (head & ~kRun) + 1;
        return true;
    }

    FileBytes file_;
    std::size_t at_;
    bool packed_, run_ = false;
    int left_ = 0;   // pixels of the packet
};

}   // namespace

void ReadTgaAlphaBits(FileBytes file, Image& image) {
    const std::size_t map_bytes = file[1] ? std::size_t{file[5]} + file[6] * 256u : 0;
    StoredPixels pixels(file, kHeaderBytes + file[0] + map_bytes * ((file[7] + 7) / 8), (file[2] & kPacked) != 0);
    for (UINT i = 0; i < image.height; ++i) {
        D3DCOLOR* row = image.Row(file[17] & kFromTheTop ? i : image.height - 1 - i);
        for (UINT x = 0; x < image.width; ++x) {
            BYTE upper;
            if (!pixels.Next(upper)) return;
            if ((upper & 0x80) == 0) row[x] &= 0x00FFFFFF;
        }
    }
}

}   // namespace sparkrig
