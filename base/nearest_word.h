// What somebody who mistyped a word may have meant.
#pragma once
#include <string>
#include <vector>

namespace sparkrig {

/// The candidate with the smallest edit distance, ignoring letter case; empty when none is near.
std::string NearestWord(const std::string& word, const std::vector<std::string>& candidates);

}   // namespace sparkrig
