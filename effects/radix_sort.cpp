#include "effects/radix_sort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace sparkrig {
namespace {

constexpr int kMostDigits = 3;
constexpr int kMostDigitBits = 12;   // whose counters stay in the first-level cache
constexpr std::size_t kBuckets = 1 << kMostDigitBits;
constexpr std::size_t kWorthCounting = 256;   // below, comparing is quicker than clearing the buckets

/// The digits of keys from `lowest` on.
struct Digits {
    std::uint32_t lowest;
    int count, bits;

    std::size_t Of(KeyedPlace element, int digit) const {
        return (KeyOf(element) - lowest) >> digit * bits & ((1u << bits) - 1);
    }
};

/// As few as the range of the keys needs, all of the same width.
Digits ChooseDigits(std::span<const KeyedPlace> elements) {
    std::uint32_t lowest = ~0u, highest = 0;
    for (const KeyedPlace element : elements) {
        lowest = std::min(lowest, KeyOf(element));
        highest = std::max(highest, KeyOf(element));
    }
    const int bits = std::bit_width(highest - lowest);
    const int count = (bits + kMostDigitBits - 1) / kMostDigitBits;
    return {lowest, count, count > 0 ? (bits + count - 1) / count : 0};
}

}   // namespace

void SortByKey(std::span<KeyedPlace> elements, std::vector<KeyedPlace>& scratch) {
    if (elements.size() < kWorthCounting) return std::sort(elements.begin(), elements.end());
    const Digits digits = ChooseDigits(elements);
    std::array<std::array<std::uint32_t, kBuckets>, kMostDigits> histograms;
    for (int digit = 0; digit < digits.count; ++digit)
        std::fill_n(histograms[static_cast<std::size_t>(digit)].begin(), std::size_t{1} << digits.bits, 0u);
    for (const KeyedPlace element : elements)
        for (int digit = 0; digit < digits.count; ++digit)
            ++histograms[static_cast<std::size_t>(digit)][digits.Of(element, digit)];

    if (scratch.size() < elements.size()) scratch.resize(elements.size());
    std::span<KeyedPlace> from = elements, to(scratch.data(), elements.size());
    for (int digit = 0; digit < digits.count; ++digit) {
        auto& next = histograms[static_cast<std::size_t>(digit)];
        std::uint32_t start = 0;
        for (std::size_t bucket = 0; bucket < std::size_t{1} << digits.bits; ++bucket)
            start += std::exchange(next[bucket], start);
        for (const KeyedPlace element : from) to[next[digits.Of(element, digit)]++] = element;
        std::swap(from, to);
    }
    if (from.data() != elements.data()) std::copy(from.begin(), from.end(), elements.begin());
}

}   // namespace sparkrig
