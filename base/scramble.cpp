#include "base/scramble.h"

#include <algorithm>
#include <bit>

#include "base/little_endian.h"
#include "base/random.h"

namespace sparkrig {
namespace {

constexpr std::uint32_t kStreamConstant = 0x5E17C3A9u;
constexpr std::size_t kWordsPerDraw = 32;

// clang-format off
constexpr ScrambleKey kVersion1Key = {{
    0x3C6EF372u, 0xA54FF53Au, 0x510E527Fu, 0x9B05688Cu, 0x1F83D9ABu, 0x5BE0CD19u, 0x6A09E667u, 0xBB67AE85u}};
constexpr std::uint32_t kVersion2Factors[ScrambleKey::kWords] = {
    0x9E3779B1u, 0x85EBCA77u, 0xC2B2AE3Du, 0x27D4EB2Fu, 0x165667B1u, 0xD3A2646Du, 0xFD7046C5u, 0xB55A4F09u};
constexpr std::uint32_t kVersion2Masks[ScrambleKey::kWords] = {
    0x428A2F98u, 0x71374491u, 0xB5C0FBCFu, 0xE9B5DBA5u, 0x3956C25Bu, 0x59F111F1u, 0x923F82A4u, 0xAB1C5ED5u};
// clang-format on

std::uint32_t LoadWord(const std::uint8_t* place) { return LoadLittleEndian<std::uint32_t>(place); }

/// Fewer than four bytes take the lowest bytes of the key.
void ScrambleTail(std::uint8_t* data, std::size_t size, std::uint32_t key) {
    for (std::size_t i = 0; i < size; ++i) data[i] ^= static_cast<std::uint8_t>(key >> (8 * i));
}

}   // namespace

std::uint32_t ScrambleWithGenerator(std::uint8_t* data, std::size_t size, std::uint32_t seed) {
    SeedRandom(seed);
    const std::size_t words = size / 4;
    std::uint32_t sum_before = 0, sum_after = 0;
    for (std::size_t begin = 0; begin < words; begin += kWordsPerDraw) {
        std::uint32_t key = RandomUInt32();
        const std::size_t end = std::min(words, begin + kWordsPerDraw);
        for (std::size_t i = begin; i < end; ++i, key = std::rotl(key, 1)) {
            const std::uint32_t before = LoadWord(data + 4 * i), after = before ^ key ^ kStreamConstant;
            sum_before ^= before;
            sum_after ^= after;
            StoreLittleEndian(after, data + 4 * i);
        }
    }
    if (size % 4 != 0) ScrambleTail(data + 4 * words, size % 4, RandomUInt32());
    return sum_before ^ sum_after;
}

ScrambleKey MakeScrambleKey(int version, std::uint32_t data_bytes) {
    if (version == 1) return kVersion1Key;
    ScrambleKey key{};
    for (int k = 0; k < ScrambleKey::kWords; ++k)
        key.words[k] = ((data_bytes + 1) * kVersion2Factors[k]) ^ kVersion2Masks[k];
    return key;
}

void ScrambleWithKey(std::uint8_t* data, std::size_t size, const ScrambleKey& shared_key) {
    const ScrambleKey key = shared_key;   // a copy that writing the data cannot change
    const std::size_t words = size / 4;
    for (std::size_t i = 0; i < words; ++i) {
        const auto square = static_cast<std::uint32_t>(i * i);
        StoreLittleEndian(LoadWord(data + 4 * i) ^ (key.words[i % ScrambleKey::kWords] + square), data + 4 * i);
    }
    ScrambleTail(data + 4 * words, size % 4, key.words[4 * words % ScrambleKey::kWords]);
}

std::uint32_t ScrambleCheck(const std::uint8_t* data, std::size_t size) {
    std::uint32_t sum = 0;
    const std::size_t words = size / 4;
    for (std::size_t i = 0; i < words; ++i) sum ^= LoadWord(data + 4 * i);
    for (std::size_t i = 4 * words; i < size; ++i) sum ^= data[i];
    return sum;
}

}   // namespace sparkrig
