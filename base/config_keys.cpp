// ConfigFileReader: finding a key's line and reading what stands behind the key.
#include <algorithm>
#include <charconv>
#include <cstring>

#include "base/config_file_reader.h"
#include "base/config_values.h"
#include "base/numeric.h"
#include "platform/system/ascii.h"

namespace sparkrig {
namespace {

constexpr std::size_t kKeyLength = 255;   // characters of a key without its numbers; longer ones are cut
constexpr std::size_t kNumberRoom = 12;   // of a number that is appended to it
constexpr int kStringReadBytes = 8129;    // of a value read into a String

constexpr auto EndsKey = [](char c) { return c == ' ' || c == '='; };   // no function: algorithms call it in place

/// The length behind the number; the buffer has room for it.
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
}

// ---- Finding keys

/// Empty for a comment.
ConfigLine ConfigFileReader::Split(int line) const {
    const std::string_view text = Line(line), trimmed = SkipBlanks(text);
    if (trimmed.empty() || trimmed.front() == ';') return {};
    const auto end = std::find_if(trimmed.begin(), trimmed.end(), EndsKey);
    const auto length = static_cast<std::size_t>(end - trimmed.begin());
    const int column = static_cast<int>(text.size() - trimmed.size()) + 1;
    return {trimmed.substr(0, length), trimmed.substr(length), {line + 1, column}, Opens(line, cursor_level_ + 1)};
}

/// The text behind the key, when the line begins with it.
std::optional<std::string_view> ConfigFileReader::Match(const Key& key, int line) const {
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
        PlaceReports({line + 1});
        return rest;
    }
    return std::nullopt;
}

/// The line, or the first one behind the sub-block that it lies in.
int ConfigFileReader::SkipDeeper(int line) const {
    return DepthOf(line) > cursor_level_ ? scope_ends_[static_cast<std::size_t>(line)] : line;
}

std::optional<std::string_view> ConfigFileReader::MatchAtLevel(const Key& key, Range lines) {
    for (int line = SkipDeeper(lines.begin); line < lines.end; line = SkipDeeper(line + 1))
        if (const auto rest = MatchFirst(key, {line, line + 1})) return rest;
    return std::nullopt;
}

int ConfigFileReader::FindKey(const Key& key, int b, std::string_view& rest) {
    if (b >= GetBlockCount()) return 2;
    std::optional<std::string_view> found;
    if (cursor_level_ >= 0) {
        const int end = b < 0 ? GetLineCount() : blocks_[static_cast<std::size_t>(b)].End();
        PlaceReports({CursorLineNumber()});
        found = MatchAtLevel(key, {cursor_line_, std::min(end, ScopeEnd())});
    } else if (b < 0) {
        found = MatchFirst(key, {0, GetLineCount()});
    } else {
        const Block& block = blocks_[static_cast<std::size_t>(b)];
        PlaceReports({block.first_line + 1});
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

int ConfigFileReader::ReadString(const char* key, char* buffer, int size, int b, int i, int j) {
    std::string_view rest;
    const int code = FindKey(Key(key, i, j), b, rest);
    return code != 0 ? code : ReadQuotedValue(rest, buffer, size);
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
    return code != 0 ? code : ReadNumberValue(rest, value);
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
    double number;
    const int code = ReadNumber(key, number, b, i, j);
    if (code == 0) value = ToShort(number);
    return code;
}

int ConfigFileReader::ReadBool(const char* key, bool& value, int b, int i, int j) {
    double number;
    const int code = ReadNumber(key, number, b, i, j);
    if (code == 0) value = ToBool(number);
    return code;
}

int ConfigFileReader::ReadVector(const Key& key, float* vector, int count, int b) {
    std::string_view rest;
    return FindKey(key, b, rest) != 0 ? 2 : ReadVectorValue(rest, vector, count);
}

int ConfigFileReader::ReadVector3(const char* key, float (&vector)[3], int b, int i, int j) {
    return ReadVector(Key(key, i, j), vector, 3, b);
}

int ConfigFileReader::ReadVector2(const char* key, float (&vector)[2], int b, int i, int j) {
    return ReadVector(Key(key, i, j), vector, 2, b);
}

int ConfigFileReader::ReadFloatList(const char* key, float* values, int capacity, int* total, int b, int i, int j) {
    std::string_view rest;
    std::vector<float> numbers;
    if (FindKey(Key(key, i, j), b, rest) == 0) ReadListValue(rest, numbers);
    const std::size_t stored = std::min(numbers.size(), static_cast<std::size_t>(std::max(capacity, 0)));
    std::copy_n(numbers.begin(), stored, values);
    if (total) *total = static_cast<int>(numbers.size());
    return static_cast<int>(stored);
}

}   // namespace sparkrig
