// Numbers in the byte order of our files.
#pragma once
#include <cstddef>
#include <cstdint>

namespace sparkrig {

template <class Integer>
Integer LoadLittleEndian(const std::uint8_t* bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < sizeof(Integer); ++i) value |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
    return static_cast<Integer>(value);
}

template <class Integer>
void StoreLittleEndian(Integer value, std::uint8_t* bytes) {
    const auto bits = static_cast<std::uint32_t>(value);
    for (std::size_t i = 0; i < sizeof(Integer); ++i) bytes[i] = static_cast<std::uint8_t>(bits >> (8 * i));
}

}   // namespace sparkrig
