// Where the lines of a text begin, and how long they are.
#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

namespace sparkrig {

/// A carriage return, a line feed, or the first followed by the second ends a line; a text that ends so has an empty
/// last line. Control characters but the tab at the start of a line belong to none.
struct LineIndex {
    static constexpr int kMaxLines = 8388480;
    static constexpr int kMaxLineLength = 65535;   // characters, without the line's end

    enum class Fault { None, TooManyLines, LineTooLong };

    std::vector<std::int32_t> starts;    // offset of each line's first character
    std::vector<std::int32_t> lengths;   // without the line's end

    /// Without a fault there is at least one line; with one the index is empty.
    Fault Build(std::string_view text);
    void Clear();
    int Count() const { return static_cast<int>(starts.size()); }
    /// The line that holds an offset; 0 while there are no lines.
    int LineOfOffset(int offset) const;

  private:
    Fault Add(std::size_t start, std::size_t end);
};

}   // namespace sparkrig
