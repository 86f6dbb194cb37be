#include "base/random.h"

namespace sparkrig {
namespace {

constexpr int kWords = 624;
constexpr int kNeverSeeded = kWords + 1;
constexpr int kShift = 397;
constexpr std::uint32_t kDefaultSeed = 4357;
constexpr double kPerUnit = 2.3283064370807974e-10;   // 1 / (2^32 - 1): both ends of [0, 1] are reached

std::uint32_t words[kWords];
int next_word = kNeverSeeded;

/// The word from the high bit of `high`, the low bits of `low` and the word `distant` places on (the recurrence).
std::uint32_t Recur(std::uint32_t high, std::uint32_t low, std::uint32_t distant) {
    const std::uint32_t mixed = (high & 0x80000000u) | (low & 0x7FFFFFFFu);
    return distant ^ (mixed >> 1) ^ (mixed & 1 ? 0x9908B0DFu : 0u);
}

void Regenerate() {
    for (int i = 0; i < kWords; ++i) words[i] = Recur(words[i], words[(i + 1) % kWords], words[(i + kShift) % kWords]);
    next_word = 0;
}

std::uint32_t Temper(std::uint32_t y) {
    y ^= y >> 11;
    y ^= (y << 7) & 0x9D2C5680u;
    y ^= (y << 15) & 0xEFC60000u;
    return y ^ (y >> 18);
}

}   // namespace

void SeedRandom(std::uint32_t seed) {
    const auto next_half = [&seed] {   // a linear congruential generator's high half
        const std::uint32_t half = seed >> 16;
        seed = 69069u * seed + 1u;
        return half;
    };
    for (std::uint32_t& word : words) {
        const std::uint32_t high = next_half();
        word = (high << 16) | next_half();
    }
    next_word = kWords;
}

std::uint32_t RandomUInt32() {
    if (next_word == kNeverSeeded) SeedRandom(kDefaultSeed);
    if (next_word >= kWords) Regenerate();
    return Temper(words[next_word++]);
}

double Random01() { return RandomUInt32() * kPerUnit; }

double RandomRange(double a, double b) { return a + (b - a) * Random01(); }

}   // namespace sparkrig
