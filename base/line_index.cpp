#include "base/line_index.h"

#include <algorithm>

namespace sparkrig {
namespace {

bool IsBreak(char c) { return c == '\r' || c == '\n'; }

/// Blanks, tabs and everything printable; bytes above 127 too.
bool MayStartLine(char c) { return static_cast<unsigned char>(c) >= 32 || c == '\t'; }

std::size_t CountBreaks(std::string_view text) {
    std::size_t breaks = 0;
    char previous = 0;
    for (const char c : text) {
        breaks += c == '\r' || (c == '\n' && previous != '\r');
        previous = c;
    }
    return breaks;
}

}   // namespace

LineIndex::Fault LineIndex::Build(std::string_view text) {
    Clear();
    const std::size_t count = CountBreaks(text) + 1;
    if (count > kMaxLines) return Fault::TooManyLines;
    starts.reserve(count);
    lengths.reserve(count);

    std::size_t start = 0, i = 0;
    for (;;) {
        while (i < text.size() && !IsBreak(text[i])) ++i;
        if (!Add(start, i)) return Fault::LineTooLong;
        if (i == text.size()) return Fault::None;
        i += text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n' ? 2 : 1;
        while (i < text.size() && !MayStartLine(text[i]) && !IsBreak(text[i])) ++i;
        start = i;
    }
}

bool LineIndex::Add(std::size_t start, std::size_t end) {
    if (end - start > kMaxLineLength) {
        Clear();
        return false;
    }
    starts.push_back(static_cast<std::int32_t>(start));
    lengths.push_back(static_cast<std::int32_t>(end - start));
    return true;
}

void LineIndex::Clear() {
    starts.clear();
    lengths.clear();
}

int LineIndex::LineOfOffset(int offset) const {
    const auto behind = std::upper_bound(starts.begin(), starts.end(), offset);
    return std::max(static_cast<int>(behind - starts.begin()) - 1, 0);
}

}   // namespace sparkrig
