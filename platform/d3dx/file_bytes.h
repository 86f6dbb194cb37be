// Reading numbers out of picture files of any byte order.
#pragma once
#include <cstring>

#include "platform/d3dx/image.h"

namespace sparkrig {

/// Numbers out of a file; what lies behind its end reads as 0.
class Bytes {
  public:
    explicit Bytes(FileBytes file) : file_(file) {}
    std::size_t Size() const { return file_.size(); }
    UINT At(std::size_t i) const { return i < file_.size() ? file_[i] : 0; }
    UINT Little16(std::size_t i) const { return At(i) | At(i + 1) << 8; }
    UINT Little32(std::size_t i) const { return Little16(i) | Little16(i + 2) << 16; }
    UINT Big16(std::size_t i) const { return At(i) << 8 | At(i + 1); }
    UINT Big32(std::size_t i) const { return Big16(i) << 16 | Big16(i + 2); }
    bool StartsWith(const char* text, std::size_t n) const {
        return file_.size() >= n && std::memcmp(file_.data(), text, n) == 0;
    }
    /// The position of the next byte of this value from `i` on; the size for none.
    std::size_t Find(BYTE value, std::size_t i) const {
        if (i >= file_.size()) return file_.size();
        const void* found = std::memchr(file_.data() + i, value, file_.size() - i);
        return found ? static_cast<std::size_t>(static_cast<const BYTE*>(found) - file_.data()) : file_.size();
    }

  private:
    FileBytes file_;
};

}   // namespace sparkrig
