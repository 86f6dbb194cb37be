#include "platform/window/display_text.h"

#include <bit>
#include <cstdint>

namespace sparkrig {

namespace {

constexpr char32_t kLastCharacter = 0x10FFFF, kFirstSurrogate = 0xD800, kLastSurrogate = 0xDFFF;

std::uint8_t ByteAt(std::string_view text, std::size_t place) { return static_cast<std::uint8_t>(text[place]); }

std::size_t LengthBy(std::uint8_t first) {
    const int ones = std::countl_one(first);
    return ones == 0 ? 1 : static_cast<std::size_t>(ones);
}

/// How many bytes the character in front takes, 0 when it is no UTF-8.
std::size_t DecodeCharacter(std::string_view text, char32_t& character) {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};   // by length; less is an overlong form
    const std::uint8_t first = ByteAt(text, 0);
    const bool follows = (first & 0xC0) == 0x80;
    const std::size_t length = LengthBy(first);
    if (follows || length > 4 || length > text.size()) return 0;
    character = length == 1 ? first : first & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((ByteAt(text, i) & 0xC0) != 0x80) return 0;
        character = character << 6 | (ByteAt(text, i) & 0x3Fu);
    }
    const bool surrogate = character >= kFirstSurrogate && character <= kLastSurrogate;
    return character < kSmallest[length] || character > kLastCharacter || surrogate ? 0 : length;
}

void AppendLatin1(std::string& text, std::uint8_t byte) {
    text += static_cast<char>(0xC0 | byte >> 6);
    text += static_cast<char>(0x80 | (byte & 0x3F));
}

bool IsControl(char32_t character) {
    return (character < 0x20 && character != '\n') || (character >= 0x7F && character < 0xA0);
}

}   // namespace

std::string DisplayText(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        char32_t character = ByteAt(bytes, 0);
        const std::size_t length = DecodeCharacter(bytes, character);
        if (IsControl(length == 0 ? ByteAt(bytes, 0) : character)) {
            text += ' ';
        } else if (length == 0) {
            AppendLatin1(text, ByteAt(bytes, 0));
        } else {
            text += bytes.substr(0, length);
        }
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return text;
}

std::size_t CharacterLength(char first) { return LengthBy(static_cast<std::uint8_t>(first)); }

char32_t TakeCharacter(std::string_view& text) {
    char32_t character = 0;
    const std::size_t length = DecodeCharacter(text, character);
    text.remove_prefix(length == 0 ? 1 : length);
    return character;
}

}   // namespace sparkrig
