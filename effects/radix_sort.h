#pragma once
#include <cstdint>
#include <vector>

namespace sparkrig {

/// Sorts by the upper 32 bits, ascending and stable, where the lower 32 bits already ascend: the numbers of the places
/// that the keys were taken from. `scratch` is memory that is kept from call to call.
void SortByKey(std::vector<std::uint64_t>& keys, std::vector<std::uint64_t>& scratch);

/// An unsigned number that is the greater, the greater the float is; -0 comes before 0, what is not a number at an end.
std::uint32_t OrderedBits(float value);

}   // namespace sparkrig
