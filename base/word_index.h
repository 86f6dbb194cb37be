// Finds a word among the rows of a table, ignoring letter case.
#pragma once
#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

#include "platform/system/ascii.h"

namespace sparkrig {

/// A hash table that the compiler makes from rows with a member `key`; the keys differ and stay where they are.
class WordIndex {
  public:
    static constexpr int kMostWords = 64;

    template <class Rows>
    consteval explicit WordIndex(const Rows& rows) {
        rows_.fill(-1);
        for (std::int8_t row = 0; const auto& [key, target] : rows) {
            words_[static_cast<std::size_t>(row)] = key;
            std::uint32_t place = Hash(key);
            while (rows_[place % kPlaces] >= 0) ++place;
            rows_[place % kPlaces] = row++;
            longest_ = std::max(longest_, key.size());
        }
    }

    /// The word's row, or -1.
    constexpr int Find(std::string_view word) const {
        if (word.size() > longest_) return -1;
        for (std::uint32_t place = Hash(word);; ++place) {
            const int row = rows_[place % kPlaces];
            if (row < 0 || Same(words_[static_cast<std::size_t>(row)], word)) return row;
        }
    }

    static constexpr bool Same(std::string_view a, std::string_view b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                          [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
    }

  private:
    static constexpr std::uint32_t kPlaces = 4 * kMostWords;

    static constexpr std::uint32_t Hash(std::string_view word) {
        std::uint32_t hash = 2166136261u;   // FNV-1a
        for (const char c : word) hash = (hash ^ static_cast<unsigned char>(AsciiLower(c))) * 16777619u;
        return hash ^ hash >> 16;
    }

    std::array<std::int8_t, kPlaces> rows_;
    std::array<std::string_view, kMostWords> words_;
    std::size_t longest_ = 0;
};

}   // namespace sparkrig
