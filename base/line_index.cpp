#include "base/line_index.h"

#include <algorithm>

namespace sparkrig {
namespace {

bool IsBreak(char c) { return c == '\r' || c == '\n'; }

/// Blanks, tabs and everything printable; bytes above 127 too.
bool MayStartLine(char c) { return static_cast<unsigned char>(c) >= 32 || c == '\t'; }

}   // namespace

LineIndex::Fault LineIndex::Build(std::string_view text) {
    Clear();
    const auto count = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;   // or more
    if (count > kMaxLines) return Fault::TooManyLines;
    starts.reserve(count);
    lengths.reserve(count);

    std::size_t start = 0, i = 0;
    for (;;) {
        while (i < text.size() && !IsBreak(text[i])) ++i;
        const Fault fault = Add(start, i);
        if (fault != Fault::None || i == text.size()) return fault;
        i += text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n' ? 2 : 1;
        while (i < text.size() && !MayStartLine(text[i]) && !IsBreak(text[i])) ++i;
        start = i;
    }
}

LineIndex::Fault LineIndex::Add(std::size_t start, std::size_t end) {
    const bool too_long = end - start > kMaxLineLength;
    if (too_long || Count() == kMaxLines) {
        Clear();
        return too_long ? Fault::LineTooLong : Fault::TooManyLines;
    }
    starts.push_back(static_cast<std::int32_t>(start));
    lengths.push_back(static_cast<std::int32_t>(end - start));
    return Fault::None;
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
