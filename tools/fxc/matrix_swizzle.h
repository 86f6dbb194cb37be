// Matrix elements by name.
#pragma once
#include <string_view>
#include <vector>

namespace sparkrig::fxc {

/// Of a matrix, from 0.
struct Element {
    int row, column;
};

/// The elements that _m30_m31 or _41_42 name; none for any other word.
std::vector<Element> ParseMatrixSwizzle(std::string_view word);

}   // namespace sparkrig::fxc
