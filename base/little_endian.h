// Numbers in the byte order of our files.
#pragma once
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>

namespace sparkrig {

/// From and to little-endian order: nothing on a little-endian machine.
template <class Integer>
Integer SwapOnBigEndian(Integer value) {
    if constexpr (std::endian::native == std::endian::big) {
        std::uint8_t bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        std::reverse(bytes, bytes + sizeof value);
        std::memcpy(&value, bytes, sizeof value);
    }
    return value;
}

template <class Integer>
Integer LoadLittleEndian(const std::uint8_t* bytes) {
    Integer value;
    std::memcpy(&value, bytes, sizeof value);
    return SwapOnBigEndian(value);
}

template <class Integer>
void StoreLittleEndian(Integer value, std::uint8_t* bytes) {
    value = SwapOnBigEndian(value);
    std::memcpy(bytes, &value, sizeof value);
}

}   // namespace sparkrig
