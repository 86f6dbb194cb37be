// Bytes of an effect file, written and read by the same walk over the records, so that the two cannot differ.
#pragma once
#include <bit>
#include <concepts>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/system/win_types.h"

namespace sparkrig {

class EffectWriter {
  public:
    template <std::unsigned_integral T>
    void Number(T& value) {
        for (std::size_t i = 0; i < sizeof(T); ++i) bytes_.push_back(static_cast<BYTE>(value >> (8 * i)));
    }
    void Text(std::string& text) {
        DWORD length = static_cast<DWORD>(text.size());
        Number(length);
        bytes_.insert(bytes_.end(), text.begin(), text.end());
    }
    template <class T, class Walk>
    void List(std::vector<T>& list, std::size_t, const Walk& walk) {
        DWORD count = static_cast<DWORD>(list.size());
        Number(count);
        for (T& element : list) walk(*this, element);
    }
    std::vector<BYTE> Take() { return std::move(bytes_); }

  private:
    std::vector<BYTE> bytes_;
};

/// After the first thing that does not fit, everything reads as zero and Failed() is true.
class EffectReader {
  public:
    explicit EffectReader(std::span<const BYTE> bytes) : left_(bytes) {}

    template <std::unsigned_integral T>
    void Number(T& value) {
        value = 0;
        const std::span<const BYTE> source = Take(sizeof(T));
        for (std::size_t i = 0; i < source.size(); ++i)
            value = static_cast<T>(value | static_cast<T>(static_cast<T>(source[i]) << (8 * i)));
    }
    void Text(std::string& text) {
        DWORD length = 0;
        Number(length);
        const std::span<const BYTE> source = Take(length);
        text.assign(source.begin(), source.end());
    }
    /// An element takes at least `element_bytes` in the file: a count that the rest cannot hold is refused before
    /// anything is allocated for it.
    template <class T, class Walk>
    void List(std::vector<T>& list, std::size_t element_bytes, const Walk& walk) {
        DWORD count = 0;
        Number(count);
        if (count > left_.size() / element_bytes) return Fail();
        list.resize(count);
        for (T& element : list) {
            walk(*this, element);
            if (failed_) return;
        }
    }
    bool Failed() const { return failed_; }
    bool AtEnd() const { return left_.empty(); }

  private:
    void Fail() {
        failed_ = true;
        left_ = {};
    }
    std::span<const BYTE> Take(std::size_t count) {
        if (count > left_.size()) {
            Fail();
            return {};
        }
        const std::span<const BYTE> taken = left_.first(count);
        left_ = left_.subspan(count);
        return taken;
    }

    std::span<const BYTE> left_;
    bool failed_ = false;
};

/// Numbers of other types, as the unsigned ones of their size.
template <class Archive, class T>
requires std::is_enum_v<T>
void Field(Archive& archive, T& value) {
    auto number = static_cast<std::make_unsigned_t<std::underlying_type_t<T>>>(value);
    archive.Number(number);
    value = static_cast<T>(number);
}
template <class Archive>
void Field(Archive& archive, std::unsigned_integral auto& value) {
    archive.Number(value);
}
template <class Archive>
void Field(Archive& archive, std::int32_t& value) {
    DWORD number = std::bit_cast<DWORD>(value);
    archive.Number(number);
    value = std::bit_cast<std::int32_t>(number);
}
template <class Archive>
void Field(Archive& archive, float& value) {
    DWORD number = std::bit_cast<DWORD>(value);
    archive.Number(number);
    value = std::bit_cast<float>(number);
}
template <class Archive>
void Field(Archive& archive, bool& value) {
    BYTE number = value ? 1 : 0;
    archive.Number(number);
    value = number != 0;
}
template <class Archive>
void Field(Archive& archive, std::string& value) {
    archive.Text(value);
}
template <class Archive, class T, std::size_t N>
void Field(Archive& archive, std::array<T, N>& values) {
    for (T& value : values) Field(archive, value);
}
template <class Archive, class... Fields>
void AllFields(Archive& archive, Fields&... fields) {
    (Field(archive, fields), ...);
}

}   // namespace sparkrig
