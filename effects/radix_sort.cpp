#include "effects/radix_sort.h"

#include <algorithm>
#include <array>
#include <bit>
#include <utility>

namespace sparkrig {
namespace {

constexpr int kDigits = 3;
constexpr int kDigitBits = 11;
constexpr std::size_t kBuckets = 1 << kDigitBits;
constexpr std::size_t kWorthCounting = 256;   // below, comparing is quicker than clearing the buckets

using Histogram = std::array<std::uint32_t, kBuckets>;

std::size_t Digit(std::uint64_t key, int digit) {
    return static_cast<std::size_t>(key >> (32 + digit * kDigitBits)) & (kBuckets - 1);
}

}   // namespace

void SortByKey(std::vector<std::uint64_t>& keys, std::vector<std::uint64_t>& scratch) {
    if (keys.size() < kWorthCounting) return std::sort(keys.begin(), keys.end());
    std::array<Histogram, kDigits> histograms = {};
    for (const std::uint64_t key : keys)
        for (int digit = 0; digit < kDigits; ++digit) ++histograms[static_cast<std::size_t>(digit)][Digit(key, digit)];

    scratch.resize(keys.size());
    for (int digit = 0; digit < kDigits; ++digit) {
        Histogram& next = histograms[static_cast<std::size_t>(digit)];
        if (next[Digit(keys[0], digit)] == keys.size()) continue;   // all equal here
        std::uint32_t start = 0;
        for (std::uint32_t& bucket : next) start += std::exchange(bucket, start);
        for (const std::uint64_t key : keys) scratch[next[Digit(key, digit)]++] = key;
        keys.swap(scratch);
    }
}

std::uint32_t OrderedBits(float value) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    return bits & 0x80000000u ? ~bits : bits | 0x80000000u;
}

}   // namespace sparkrig
