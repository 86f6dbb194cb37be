// The stream being read and the one being written: every access is checked, a fault is reported.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "base/byte_buffer.h"
#include "base/error.h"
#include "base/little_endian.h"

namespace sparkrig {

class InputBytes {
  public:
    InputBytes(const ErrorClass& reporter, const std::uint8_t* data, std::size_t size)
        : reporter_(reporter), next_(data), end_(data + size) {}

    std::size_t Left() const { return static_cast<std::size_t>(end_ - next_); }
    const std::uint8_t* Peek() const { return next_; }
    const std::uint8_t* Take(std::size_t n) {
        if (n > Left()) reporter_.Error("End of read buffer");
        const std::uint8_t* taken = next_;
        next_ += n;
        return taken;
    }
    std::uint8_t TakeByte() { return *Take(1); }
    std::int32_t TakeInt32() { return LoadLittleEndian<std::int32_t>(Take(4)); }

  private:
    const ErrorClass& reporter_;
    const std::uint8_t* next_;
    const std::uint8_t* end_;
};

/// Never holds more than `limit` bytes; memory grows with what is written, not with the limit.
class OutputBytes {
  public:
    OutputBytes(const ErrorClass& reporter, ByteBuffer& bytes, std::size_t limit, std::size_t expected)
        : reporter_(reporter), bytes_(bytes), limit_(limit) {
        bytes_.clear();
        bytes_.resize(std::min(limit, expected));
        next_ = bytes_.data();
        end_ = next_ + bytes_.size();
    }

    std::size_t Size() const { return static_cast<std::size_t>(next_ - bytes_.data()); }
    std::size_t Left() const { return limit_ - Size(); }
    /// Where the next n bytes are to be written.
    std::uint8_t* Grow(std::size_t n) {
        if (n > static_cast<std::size_t>(end_ - next_)) Reallocate(n);
        std::uint8_t* place = next_;
        next_ += n;
        return place;
    }
    void Write(const void* data, std::size_t n) {
        if (n > 0) std::memcpy(Grow(n), data, n);
    }
    void WriteByte(std::uint8_t value) { *Grow(1) = value; }
    void WriteInt32(std::int32_t value) { StoreLittleEndian(value, Grow(4)); }
    /// The buffer holds what was written and no more.
    void Finish() { bytes_.resize(Size()); }

  private:
    void Reallocate(std::size_t n) {
        const std::size_t size = Size();
        if (n > limit_ - size) reporter_.Error("Write buffer full");
        bytes_.resize(std::min(limit_, std::max(size + n, 2 * bytes_.size())));
        next_ = bytes_.data() + size;
        end_ = bytes_.data() + bytes_.size();
    }

    const ErrorClass& reporter_;
    ByteBuffer& bytes_;
    std::size_t limit_;
    std::uint8_t* next_;
    std::uint8_t* end_;
};

}   // namespace sparkrig
