// ConfigFileReader: finding a key's line and reading what stands behind the key.
#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "base/config_file_reader.h"
#include "base/numeric.h"
#include "platform/system/ascii.h"

namespace sparkrig {
namespace {

constexpr int kNumberLength = 31;         // characters of a number that count
constexpr std::size_t kKeyLength = 255;   // characters of a key without its numbers; longer ones are cut
constexpr std::size_t kNumberRoom = 12;   // of a number that is appended to it
constexpr int kLongScope = 1024;          // lines from which an index is worth its making
constexpr int kStringReadBytes = 8129;    // of a value read into a String

constexpr auto EndsKey = [](char c) { return c == ' ' || c == '='; };   // no function: algorithms call it in place
bool IsNumeric(char c) { return (c >= '0' && c <= '9') || c == '.' || c == 'e' || c == '+' || c == '-'; }

std::string_view SkipBlanks(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && (text[length] == ' ' || text[length] == '\t')) ++length;
    return text.substr(length);
}

/// Of a whole key ignoring case; never 0.
std::uint32_t HashKey(std::string_view key) {
    std::uint32_t hash = 2166136261u;
    for (const char c : key) hash = (hash ^ static_cast<unsigned char>(AsciiLower(c))) * 16777619u;
    return hash | 1u;
}

/// One bit of 64.
std::uint64_t MarkOf(std::uint32_t hash) { return std::uint64_t{1} << (hash >> 26); }

/// Takes a number from the front of the text; without one the value is 0 and the result false.
bool TakeNumber(std::string_view& text, double& value) {
    char digits[kNumberLength + 1];
    std::size_t length = 0;
    while (length < kNumberLength && length < text.size() && IsNumeric(text[length])) {
        digits[length] = text[length];
        ++length;
    }
    digits[length] = '\0';
    value = std::strtod(digits, nullptr);
    text.remove_prefix(length);
    return length > 0;
}

/// Moves behind the next comma and the blanks that follow it.
bool TakeComma(std::string_view& text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) return false;
    text = SkipBlanks(text.substr(comma + 1));
    return true;
}

/// The length behind the number; the buffer has room for it. printf would take longer than the lookup.
std::size_t AppendNumber(char* text, std::size_t length, std::string_view separator, int number) {
    std::copy(separator.begin(), separator.end(), text + length);
    length += separator.size();
    return static_cast<std::size_t>(std::to_chars(text + length, text + length + kNumberRoom, number).ptr - text);
}

}   // namespace

ConfigFileReader::Key::Key(const char* key, int i, int j) {
    std::size_t length = std::min(std::strlen(key), kKeyLength);
    if (i >= 0) {
        std::memcpy(text, key, length);
        length = AppendNumber(text, length, "", i);
        if (j >= 0) length = AppendNumber(text, length, "_", j);
    }
    name = {i >= 0 ? text : key, length};
    needs_separator = !name.empty() && static_cast<unsigned char>(name.front()) >= 65;
    hash = needs_separator && std::none_of(name.begin(), name.end(), EndsKey) ? HashKey(name) : 0;
}

// ---- Finding keys

void ConfigFileReader::HashLines() {
    if (!key_hashes_.empty()) return;
    key_hashes_.reserve(static_cast<std::size_t>(GetLineCount()));
    for (int line = 0; line < GetLineCount(); ++line) {
        const std::string_view text = SkipBlanks(Line(line));
        const auto end = std::find_if(text.begin(), text.end(), EndsKey);
        const bool has_key = end != text.end() && text.front() != ';';
        key_hashes_.push_back(has_key ? HashKey(text.substr(0, static_cast<std::size_t>(end - text.begin()))) : 0);
    }
}

/// The text behind the key, when the line begins with it.
std::optional<std::string_view> ConfigFileReader::Match(const Key& key, int line) const {
    if (key.hash != 0 && key.hash != key_hashes_[static_cast<std::size_t>(line)]) return std::nullopt;
    const std::string_view text = SkipBlanks(Line(line));
    if (text.size() < key.name.size() || (!text.empty() && text.front() == ';')) return std::nullopt;
    const auto same = [](char a, char b) { return AsciiLower(a) == AsciiLower(b); };
    if (!std::equal(key.name.begin(), key.name.end(), text.begin(), same)) return std::nullopt;
    const std::string_view rest = text.substr(key.name.size());
    if (key.needs_separator && (rest.empty() || !EndsKey(rest.front()))) return std::nullopt;
    return rest;
}

std::optional<std::string_view> ConfigFileReader::MatchFirst(const Key& key, Range lines) {
    for (int line = lines.begin; line < lines.end; ++line) {
        const std::optional<std::string_view> rest = Match(key, line);
        if (!rest) continue;
        SetReportLine(line + 1);
        return rest;
    }
    return std::nullopt;
}

/// The line, or the first one behind the sub-block that it lies in.
int ConfigFileReader::SkipDeeper(int line) const {
    return DepthOf(line) > cursor_level_ ? scope_ends_[static_cast<std::size_t>(line)] : line;
}

/// Whether the key may be among the lines at the cursor's level. Most keys that are asked for are not in the file: one
/// walk marks those that are.
bool ConfigFileReader::MayHold(const Key& key, Range lines) {
    if (key.hash == 0) return true;
    if (marked_lines_ != lines || marked_level_ != cursor_level_) {
        marks_ = 0;
        for (int line = SkipDeeper(lines.begin); line < lines.end; line = SkipDeeper(line + 1))
            marks_ |= MarkOf(key_hashes_[static_cast<std::size_t>(line)]);
        marked_lines_ = lines;
        marked_level_ = cursor_level_;
    }
    return (marks_ & MarkOf(key.hash)) != 0;
}

std::optional<std::string_view> ConfigFileReader::MatchAtLevel(const Key& key, Range lines) {
    if (key.hash != 0 && lines.end - lines.begin > kLongScope) return MatchInLongScope(key, lines);
    if (!MayHold(key, lines)) return std::nullopt;
    for (int line = SkipDeeper(lines.begin); line < lines.end; line = SkipDeeper(line + 1))
        if (const auto rest = MatchFirst(key, {line, line + 1})) return rest;
    return std::nullopt;
}

void ConfigFileReader::SortKeyLines() {
    if (!sorted_keys_.empty()) return;
    for (int line = 0; line < GetLineCount(); ++line) {
        const std::uint32_t hash = key_hashes_[static_cast<std::size_t>(line)];
        if (hash != 0) sorted_keys_.push_back({hash, DepthOf(line), line});
    }
    std::sort(sorted_keys_.begin(), sorted_keys_.end());
}

/// Ten thousand keys in one block would be ten thousand walks through the block: here each is a binary search.
std::optional<std::string_view> ConfigFileReader::MatchInLongScope(const Key& key, Range lines) {
    SortKeyLines();
    const KeyLine first{key.hash, cursor_level_, lines.begin}, behind{key.hash, cursor_level_, lines.end};
    for (auto at = std::lower_bound(sorted_keys_.begin(), sorted_keys_.end(), first);
         at != sorted_keys_.end() && *at < behind; ++at)
        if (const auto rest = MatchFirst(key, {at->line, at->line + 1})) return rest;
    return std::nullopt;
}

int ConfigFileReader::FindKey(const Key& key, int b, std::string_view& rest) {
    if (b >= GetBlockCount()) return 2;
    HashLines();
    std::optional<std::string_view> found;
    if (cursor_level_ >= 0) {
        const int end = b < 0 ? GetLineCount() : blocks_[static_cast<std::size_t>(b)].End();
        SetReportLine(CursorLineNumber());
        found = MatchAtLevel(key, {cursor_line_, std::min(end, ScopeEnd())});
    } else if (b < 0) {
        found = MatchFirst(key, {0, GetLineCount()});
    } else {
        const Block& block = blocks_[static_cast<std::size_t>(b)];
        SetReportLine(block.first_line + 1);
        found = MatchFirst(key, {block.first_line, block.End()});
        if (!found && block.parent >= 0) {
            const Block& parent = blocks_[static_cast<std::size_t>(block.parent)];
            found = MatchFirst(key, {parent.first_line, parent.End()});
        }
    }
    if (!found) return 1;
    rest = *found;
    return 0;
}

// ---- Reading values

/// The text between the first two quotes, cut to `size` bytes with its terminator; 9 when a quote is missing.
int ConfigFileReader::CopyQuoted(std::string_view rest, char* buffer, int size) {
    const std::size_t open = rest.find('"');
    if (open == std::string_view::npos) return 9;
    const std::size_t close = rest.find('"', open + 1);
    if (close == std::string_view::npos) return 9;
    if (size < 1) return 0;
    const std::size_t length = std::min(close - open - 1, static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, rest.data() + open + 1, length);
    buffer[length] = '\0';
    return 0;
}

int ConfigFileReader::ReadString(const char* key, char* buffer, int size, int b, int i, int j) {
    std::string_view rest;
    const int code = FindKey(Key(key, i, j), b, rest);
    return code != 0 ? code : CopyQuoted(rest, buffer, size);
}

int ConfigFileReader::ReadString(const char* key, String& text, int b, int i, int j) {
    char buffer[kStringReadBytes];
    const int code = ReadString(key, buffer, sizeof buffer, b, i, j);
    if (code == 0) text = buffer;
    return code;
}

int ConfigFileReader::ReadNumber(const char* key, double& value, int b, int i, int j) {
    std::string_view rest;
    const int code = FindKey(Key(key, i, j), b, rest);
    if (code != 0) return code;
    rest = rest.substr(std::min(rest.find_first_not_of(" \t="), rest.size()));
    if (rest.empty()) return 1;
    TakeNumber(rest, value);
    return 0;
}

int ConfigFileReader::ReadFloat(const char* key, float& value, int b, int i, int j) {
    double number;
    const int code = ReadNumber(key, number, b, i, j);
    if (code == 0) value = static_cast<float>(number);
    return code;
}

int ConfigFileReader::ReadInt(const char* key, int& value, int b, int i, int j) {
    double number;
    const int code = ReadNumber(key, number, b, i, j);
    if (code == 0) value = TruncateToInt(number);
    return code;
}

int ConfigFileReader::ReadShort(const char* key, std::int16_t& value, int b, int i, int j) {
    using Limits = std::numeric_limits<std::int16_t>;
    int number;
    const int code = ReadInt(key, number, b, i, j);
    if (code == 0) value = static_cast<std::int16_t>(std::clamp<int>(number, Limits::min(), Limits::max()));
    return code;
}

int ConfigFileReader::ReadBool(const char* key, bool& value, int b, int i, int j) {
    double number;
    const int code = ReadNumber(key, number, b, i, j);
    if (code == 0) value = RoundToInt(number) != 0;
    return code;
}

/// The values of a vector or list: behind the first "=" of the line. 2 when the key is not there, 1 without "=".
int ConfigFileReader::FindValues(const Key& key, int b, std::string_view& values) {
    std::string_view rest;
    if (FindKey(key, b, rest) != 0) return 2;
    const std::size_t equals = rest.find('=');
    if (equals == std::string_view::npos) return 1;
    values = SkipBlanks(rest.substr(equals + 1));
    return 0;
}

int ConfigFileReader::ReadVector(const Key& key, float* vector, int count, int b) {
    std::string_view values;
    const int code = FindValues(key, b, values);
    if (code != 0) return code;
    double numbers[3];
    for (int n = 0; n < count; ++n) {
        if (n > 0 && !TakeComma(values)) return 1;
        if (!TakeNumber(values, numbers[n])) return 1;
    }
    std::transform(numbers, numbers + count, vector, [](double number) { return static_cast<float>(number); });
    return 0;
}

int ConfigFileReader::ReadVector3(const char* key, float (&vector)[3], int b, int i, int j) {
    return ReadVector(Key(key, i, j), vector, 3, b);
}

int ConfigFileReader::ReadVector2(const char* key, float (&vector)[2], int b, int i, int j) {
    return ReadVector(Key(key, i, j), vector, 2, b);
}

int ConfigFileReader::ReadFloatList(const char* key, float* values, int capacity, int* total, int b, int i, int j) {
    std::string_view text;
    int count = 0, stored = 0;
    if (FindValues(Key(key, i, j), b, text) == 0) {
        double number;
        while (TakeNumber(text, number)) {
            if (count < capacity) values[stored++] = static_cast<float>(number);
            ++count;
            if (!TakeComma(text)) break;
        }
    }
    if (total) *total = count;
    return stored;
}

}   // namespace sparkrig
