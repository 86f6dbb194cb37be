#include "base/string.h"

#include <algorithm>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/system/ascii.h"

namespace sparkrig {
namespace {

constexpr int kFormatBytes = 4095;   // with the terminator; what is longer is cut

int LengthOf(const char* text) {
    return text ? static_cast<int>(std::min<std::size_t>(std::strlen(text), INT_MAX - 1)) : 0;
}

int CompareAtMost(const char* a, const char* b, int n, char (*fold)(char)) {
    for (int i = 0; i < n; ++i) {
        const int difference = static_cast<unsigned char>(fold(a[i])) - static_cast<unsigned char>(fold(b[i]));
        if (difference != 0) return difference < 0 ? -1 : 1;
        if (a[i] == '\0') return 0;
    }
    return 0;
}

char Exact(char c) { return c; }

/// A zero-terminated copy of the first n characters in a buffer of n + 1 bytes.
char* NewBuffer(const char* text, int n) {
    char* buffer = new char[static_cast<std::size_t>(n) + 1];
    std::memcpy(buffer, text, static_cast<std::size_t>(n));
    buffer[n] = '\0';
    return buffer;
}

}   // namespace

String::String(const char* text) {
    if (!text) return;
    length_ = LengthOf(text);
    text_ = NewBuffer(text, length_);
}

String::String(const String& other) : length_(other.length_) {
    if (other.text_) text_ = NewBuffer(other.text_, length_);
}

String::String(String&& other) noexcept
    : text_(std::exchange(other.text_, nullptr)), length_(std::exchange(other.length_, 0)) {}

String::~String() { delete[] text_; }

String& String::operator=(const String& other) {   // NOLINT(bugprone-unhandled-self-assignment): Assign looks
    Assign(other);
    return *this;
}

String& String::operator=(String&& other) noexcept {
    std::swap(text_, other.text_);
    std::swap(length_, other.length_);
    return *this;
}

String& String::operator=(const char* text) {
    Assign(text);
    return *this;
}

void String::Assign(const char* text) {
    if (text && text == text_) return;
    const int length = LengthOf(text);
    char* fresh = length > 0 ? NewBuffer(text, length) : nullptr;   // before the release: text may lie in the buffer
    delete[] std::exchange(text_, fresh);
    length_ = length;
}

void String::Assign(const String& other) {
    if (other.text_ == text_) return;
    char* fresh = other.text_ ? NewBuffer(other.text_, other.length_) : nullptr;
    delete[] std::exchange(text_, fresh);
    length_ = other.length_;
}

void String::Alloc(int n) {
    delete[] std::exchange(text_, nullptr);
    length_ = std::max(n, 0);
    if (n >= 0) text_ = new char[static_cast<std::size_t>(n) + 1]();
}

void String::SetLength(int n) {
    if (n == length_) return;
    if (n < 1) {
        Alloc(-1);
        return;
    }
    char* fresh = new char[static_cast<std::size_t>(n) + 1]();
    if (text_) std::memcpy(fresh, text_, static_cast<std::size_t>(std::min(n, length_)));
    delete[] std::exchange(text_, fresh);
    length_ = n;
}

char* String::GetBuffer(int n) {
    if (!text_)
        Alloc(std::max(n, 0));
    else if (length_ < n)
        SetLength(n);
    return text_;
}

void String::Format(const char* format, ...) {
    char buffer[kFormatBytes];   // of its own: the arguments may point into the old text
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    Assign(buffer);
}

void String::Append(const char* text) {
    const int extra = LengthOf(text);
    if (extra == 0) return;
    char* fresh = new char[static_cast<std::size_t>(length_) + static_cast<std::size_t>(extra) + 1];
    if (text_) std::memcpy(fresh, text_, static_cast<std::size_t>(length_));
    std::memcpy(fresh + length_, text, static_cast<std::size_t>(extra) + 1);
    delete[] std::exchange(text_, fresh);
    length_ += extra;
}

void String::Append(const String& other) { Append(other.c_str()); }

int String::IndexOf(const char* part) const {
    if (!part || !text_) return -1;
    const int part_length = LengthOf(part);
    for (int start = 0; start + part_length <= length_; ++start)
        if (CompareNNoCase(text_ + start, part, part_length) == 0) return start;
    return -1;
}

bool String::StartsWith(const char* prefix) const {
    if (!prefix) return length_ == 0;
    const int prefix_length = LengthOf(prefix);
    return prefix_length <= length_ && CompareNNoCase(c_str(), prefix, prefix_length) == 0;
}

bool String::Replace(const char* part, const char* replacement, bool case_sensitive) {
    if (!part || !text_) return false;
    const int start = case_sensitive ? Find(text_, part) : IndexOf(part);
    if (start < 0) return false;
    const int part_length = LengthOf(part), fresh_length = LengthOf(replacement), tail = start + part_length;
    String result;
    result.Alloc(length_ - part_length + fresh_length);
    std::memcpy(result.text_, text_, static_cast<std::size_t>(start));
    if (replacement) std::memcpy(result.text_ + start, replacement, static_cast<std::size_t>(fresh_length));
    std::memcpy(result.text_ + start + fresh_length, text_ + tail, static_cast<std::size_t>(length_ - tail) + 1);
    *this = std::move(result);
    return true;
}

int String::Length(const char* text) const { return LengthOf(text); }
int String::Compare(const char* a, const char* b) const { return CompareAtMost(a, b, INT_MAX, Exact); }
int String::CompareNoCase(const char* a, const char* b) const { return CompareAtMost(a, b, INT_MAX, AsciiLower); }
int String::CompareN(const char* a, const char* b, int n) const { return CompareAtMost(a, b, n, Exact); }
int String::CompareNNoCase(const char* a, const char* b, int n) const { return CompareAtMost(a, b, n, AsciiLower); }

void String::Copy(char* destination, int size, const char* source) const {
    if (size < 1) return;
    const int length = std::min(LengthOf(source), size - 1);
    std::memcpy(destination, source, static_cast<std::size_t>(length));
    destination[length] = '\0';
}

int String::Find(const char* text, const char* part) const {
    const char* found = std::strstr(text, part);
    return found ? static_cast<int>(found - text) : -1;
}

void String::MakeUpper() { std::transform(text_, text_ + length_, text_, AsciiUpper); }
void String::MakeLower() { std::transform(text_, text_ + length_, text_, AsciiLower); }

bool String::operator==(const String& other) const { return *this == other.c_str(); }
bool String::operator==(const char* text) const { return std::strcmp(c_str(), text ? text : "") == 0; }

int CompareNoCase(const char* a, const char* b) { return CompareAtMost(a, b, INT_MAX, AsciiLower); }
bool EqualNoCase(const char* a, const char* b) { return CompareNoCase(a, b) == 0; }

bool ToFloats(const String& list, float* values, int count) {
    const char* piece = list.c_str();
    for (int i = 0; i < count; ++i) {
        const std::size_t length = std::strcspn(piece, ",");
        if (length == 0) return false;
        values[i] = static_cast<float>(std::strtod(piece, nullptr));   // a comma ends the number too
        piece += piece[length] == ',' ? length + 1 : length;
    }
    return true;
}

}   // namespace sparkrig
