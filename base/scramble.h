// Two ways to make bytes unreadable, each with a check word.
#pragma once
#include <cstddef>
#include <cstdint>

namespace sparkrig {

/// The key stream of packed LZMA data, drawn from the process-wide generator, which is seeded with `seed` first. Its
/// own inverse; the check word comes out the same both ways.
std::uint32_t ScrambleWithGenerator(std::uint8_t* data, std::size_t size, std::uint32_t seed);

/// The eight key words of data that is scrambled and not compressed.
struct ScrambleKey {
    static constexpr int kWords = 8;
    std::uint32_t words[kWords];
};
/// Version 1 is a fixed key, version 2 depends on the length.
ScrambleKey MakeScrambleKey(int version, std::uint32_t data_bytes);
/// Its own inverse.
void ScrambleWithKey(std::uint8_t* data, std::size_t size, const ScrambleKey& key);
/// Exclusive-or of the words and of the bytes left behind them; of unscrambled data.
std::uint32_t ScrambleCheck(const std::uint8_t* data, std::size_t size);

}   // namespace sparkrig
