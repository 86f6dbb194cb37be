// Bytes from files as text that can be shown.
#pragma once
#include <string>
#include <string_view>

namespace sparkrig {

/// A copy in UTF-8. Bytes that are no UTF-8 are taken for Latin-1, since older files are written in it; control
/// characters other than line ends become blanks.
std::string DisplayText(std::string_view bytes);

/// How many bytes a character has that begins with this one.
std::size_t CharacterLength(char first);

/// The next character of a text made by DisplayText, taken off its front.
char32_t TakeCharacter(std::string_view& text);

}   // namespace sparkrig
