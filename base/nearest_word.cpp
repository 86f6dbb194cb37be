#include "base/nearest_word.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace sparkrig {

namespace {

constexpr std::size_t kLongestWord = 64;   // longer ones are no typing mistakes

bool SameLetter(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

/// Levenshtein's distance, ignoring letter case.
std::size_t EditDistance(const std::string& a, const std::string& b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (SameLetter(a[i], b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

}   // namespace

std::string NearestWord(const std::string& word, const std::vector<std::string>& candidates) {
    std::string nearest;
    std::size_t best = word.size() / 2 + 1;   // more than half of it wrong is another word
    if (word.size() > kLongestWord) return nearest;
    for (const std::string& candidate : candidates) {
        if (candidate.size() > kLongestWord) continue;
        const std::size_t distance = EditDistance(word, candidate);
        if (distance >= best) continue;
        best = distance;
        nearest = candidate;
    }
    return nearest;
}

}   // namespace sparkrig
