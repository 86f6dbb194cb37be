// Text functions on zero-terminated arrays: the parts of a path, the words of a command line.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "base/string.h"
#include "platform/system/ascii.h"

namespace sparkrig {
namespace {

constexpr std::int64_t kPowersOfTen[] = {1,       10,        100,        1'000,       10'000,
                                         100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000};

/// The last separator of a path, or null.
const char* LastSeparator(const char* path) {
    const char* last = nullptr;
    for (const char* c = path; *c; ++c)
        if (*c == '\\' || *c == '/') last = c;
    return last;
}

void CopyCut(const char* begin, std::size_t length, char* out, std::size_t size) {
    if (size == 0) return;
    length = std::min(length, size - 1);
    std::memmove(out, begin, length);   // out may be the path itself
    out[length] = '\0';
}

const char* FileNamePart(const char* path) {
    const char* separator = LastSeparator(path);
    return separator ? separator + 1 : path;
}

const char* SkipBlanks(const char* text) { return text + std::strspn(text, " "); }

bool BeginsWith(const char* word, const char* prefix) {
    for (; *prefix; ++word, ++prefix)
        if (AsciiLower(*word) != AsciiLower(*prefix)) return false;
    return true;
}

/// Each character counts as a digit at its place; places beyond the table count nothing.
std::int64_t DigitsValue(const char* digits, int count) {
    std::int64_t value = 0;
    for (int i = 0; i < count; ++i) {
        const int exponent = count - 1 - i;
        if (exponent < static_cast<int>(std::size(kPowersOfTen))) value += (digits[i] - '0') * kPowersOfTen[exponent];
    }
    return value;
}

}   // namespace

void GetDirectory(const char* path, char* out, std::size_t size) {
    const char* separator = LastSeparator(path);
    CopyCut(path, separator ? static_cast<std::size_t>(separator - path) : 0, out, size);
}

void GetFileName(const char* path, char* out, std::size_t size) {
    const char* name = FileNamePart(path);
    CopyCut(name, std::strlen(name), out, size);
}

void ReplaceDirectory(char (&path)[256], const char* directory) {
    char result[sizeof path];
    std::snprintf(result, sizeof result, "%s\\%s", directory, FileNamePart(path));
    std::memcpy(path, result, sizeof path);
}

const char* GetWord(const char* text, int i) {
    const char* word = SkipBlanks(text);
    for (; i > 0 && *word; --i) word = SkipBlanks(word + WordLength(word));
    return i == 0 && *word ? word : nullptr;
}

int WordLength(const char* word) { return static_cast<int>(std::strcspn(word, " ")); }

int CountWords(const char* text) {
    int count = 0;
    for (const char* word = SkipBlanks(text); *word; word = SkipBlanks(word + WordLength(word))) ++count;
    return count;
}

bool HasOption(const char* command_line, const char* option) {
    const std::size_t length = std::strlen(option);
    for (const char* word = SkipBlanks(command_line); *word; word = SkipBlanks(word + WordLength(word)))
        if (static_cast<std::size_t>(WordLength(word)) == length && BeginsWith(word, option)) return true;
    return false;
}

bool GetOptionValue(const char* command_line, const char* name, int* value) {
    const char* word = SkipBlanks(command_line);
    while (*word && !BeginsWith(word, name)) word = SkipBlanks(word + WordLength(word));
    if (!*word) return false;
    const char* end = word + WordLength(word);
    const char* digits = word + std::strlen(name);
    if (*digits != ':' && *digits != '=') return false;
    ++digits;
    const bool negative = *digits == '-';
    if (negative) ++digits;
    const std::int64_t magnitude = DigitsValue(digits, static_cast<int>(end - digits));
    *value = static_cast<int>(std::clamp<std::int64_t>(negative ? -magnitude : magnitude, INT_MIN, INT_MAX));
    return true;
}

}   // namespace sparkrig
