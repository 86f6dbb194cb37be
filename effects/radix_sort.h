// Sorting by 32-bit keys, for as many elements as a frame has particles.
#pragma once
#include <cstdint>
#include <span>
#include <vector>

namespace sparkrig {

/// A key in the upper half, what it belongs to in the lower.
using KeyedPlace = std::uint64_t;
inline KeyedPlace MakeKeyed(std::uint32_t key, std::uint32_t place) { return std::uint64_t{key} << 32 | place; }
inline std::uint32_t KeyOf(KeyedPlace element) { return static_cast<std::uint32_t>(element >> 32); }
inline std::uint32_t PlaceOf(KeyedPlace element) { return static_cast<std::uint32_t>(element); }

/// Sorts by the keys, ascending. Where places ascend among equal keys they still do afterwards. `scratch` is memory
/// that is kept from call to call.
void SortByKey(std::span<KeyedPlace> elements, std::vector<KeyedPlace>& scratch);

/// An unsigned number that is the greater, the greater the float is; -0 comes before 0, what is not a number at an end.
inline std::uint32_t OrderedBits(float value) {
    const auto bits = __builtin_bit_cast(std::uint32_t, value);
    return bits & 0x80000000u ? ~bits : bits | 0x80000000u;
}

}   // namespace sparkrig
