#include "scene/kva_text.h"

#include <charconv>
#include <cstdlib>
#include <cstring>

#include "base/numeric.h"
#include "platform/system/ascii.h"

namespace sparkrig {

namespace {

bool IsBlank(char c) { return static_cast<unsigned char>(c) < 33; }
bool EndsWord(char c) { return IsBlank(c) || c == '{' || c == '}' || c == '"' || c == ','; }
bool IsNumeric(char c) { return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.'; }

/// What the library's conversion gives: the number that the word begins with, or 0.
double ToNumber(std::string_view word) {
    if (!word.empty() && word.front() == '+') word.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc::result_out_of_range) return value;
    return std::strtod(std::string(word).c_str(), nullptr);   // infinite or nearly 0
}

}   // namespace

// ---- Keywords and blocks

KvaText::Scan KvaText::NextKeyword(char (&word)[kMostBytes + 1], int& length) {
    const std::string_view content = Content();
    std::size_t at = static_cast<std::size_t>(Tell());
    for (int nested = 0; at < content.size(); ++at) {
        const char c = content[at];
        if (c == '{') ++nested;
        if (c == '}' && nested-- == 0) return Seek(static_cast<int>(at + 1)), Scan::BlockEnd;
        if (c == '*' && nested == 0) break;
    }
    if (at == content.size()) return Seek(static_cast<int>(at)), Scan::FileEnd;
    Seek(static_cast<int>(at + 1));
    const std::string_view found = Word();
    length = static_cast<int>(found.size());
    for (std::size_t i = 0; i < found.size(); ++i) word[i] = AsciiUpper(found[i]);
    return Scan::Keyword;
}

void KvaText::Act(std::initializer_list<KeywordRow> rows, std::string_view word) const {
    for (const KeywordRow& row : rows)
        if (row.word == word) return row.action();
}

bool KvaText::Block(std::initializer_list<KeywordRow> rows) {
    ExpectChar('{');
    char word[kMostBytes + 1];
    int length = 0;
    for (;;) {
        const Scan scan = NextKeyword(word, length);
        if (scan != Scan::Keyword) return scan == Scan::BlockEnd;
        Act(rows, {word, static_cast<std::size_t>(length)});
    }
}

void KvaText::TopLevel(std::initializer_list<KeywordRow> rows, int& open_blocks) {
    char word[kMostBytes + 1];
    int length = 0;
    for (;;) {
        const Scan scan = NextKeyword(word, length);
        if (scan == Scan::FileEnd) return;
        if (scan == Scan::Keyword) {
            Act(rows, {word, static_cast<std::size_t>(length)});
        } else if (open_blocks-- == 0) {
            return;   // a brace too many ends the level
        }
    }
}

// ---- Values

char KvaText::PeekVisible() {
    const std::string_view content = Content();
    std::size_t at = static_cast<std::size_t>(Tell());
    while (at < content.size() && IsBlank(content[at])) ++at;
    Seek(static_cast<int>(at));
    return at < content.size() ? content[at] : '\0';
}

std::string_view KvaText::Word() {
    const std::string_view content = Content();
    const auto begin = static_cast<std::size_t>(Tell());
    std::size_t end = begin;
    while (end < content.size() && !EndsWord(content[end])) ++end;
    if (end - begin > kMostBytes) Error("String too long (>127)");
    Seek(static_cast<int>(end));
    return content.substr(begin, end - begin);
}

bool KvaText::Integer(int& value) {
    PeekVisible();
    const std::string_view content = Content();
    const auto begin = static_cast<std::size_t>(Tell());
    std::size_t end = begin;
    while (end < content.size() && IsNumeric(content[end])) ++end;
    if (end - begin > kMostBytes) Error("String too long (>127)");
    Seek(static_cast<int>(end));
    if (end == begin) return false;
    value = TruncateToInt(ToNumber(content.substr(begin, end - begin)));
    return true;
}

bool KvaText::Number(float& value) {
    PeekVisible();
    const std::string_view word = Word();
    if (word.empty()) return false;
    value = static_cast<float>(ToNumber(word));
    return true;
}

bool KvaText::Triple(float (&values)[3]) {
    float read[3];
    for (int i = 0; i < 3; ++i) {
        if (!Number(read[i])) return false;
        if (i < 2 && PeekVisible() == ',') Skip(1);
    }
    std::memcpy(values, read, sizeof read);
    return true;
}

bool KvaText::Triple(D3DXVECTOR3& vector) {
    float values[3];
    if (!Triple(values)) return false;
    vector = {values[0], values[1], values[2]};
    return true;
}

bool KvaText::Text(String& text) { return ReadQuotedString(text) == 0; }

bool KvaText::LimitedText(String& text) {
    String whole;
    if (!Text(whole)) return false;
    if (whole.GetLength() > kMostBytes) Error("String too long (>127)");
    text = whole;
    return true;
}

bool KvaText::SetWord(String& word) {
    if (PeekVisible() == '"') return LimitedText(word);
    const std::string_view bare = Word();
    if (bare.empty()) return false;
    word = std::string(bare).c_str();
    return true;
}

}   // namespace sparkrig
