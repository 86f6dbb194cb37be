// What stands behind a key on its line of a block configuration file: a text in quotes, a number, numbers in a row.
//
// `rest` is the line's text behind the key. The results are those of ConfigFileReader's key readers: 0 for a value that
// was read; the output is untouched otherwise.
#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

namespace sparkrig {

/// Without its leading blanks and tabs.
inline std::string_view SkipBlanks(std::string_view text) {
    std::size_t length = 0;   // find_first_not_of would call a function for each character
    while (length < text.size() && (text[length] == ' ' || text[length] == '\t')) ++length;
    return text.substr(length);
}

/// The text between the first two quotes; 9 when one is missing.
int ReadQuotedValue(std::string_view rest, std::string_view& text);
/// The same, cut to `size` bytes with its terminator.
int ReadQuotedValue(std::string_view rest, char* buffer, int size);
/// 1 when nothing stands there. What is no number reads as 0.
int ReadNumberValue(std::string_view rest, double& number);
/// `count` numbers, at most 3, behind the first "="; 1 when that, a comma or a number is missing.
int ReadVectorValue(std::string_view rest, float* vector, int count);
/// Appends the numbers behind the first "=", up to one that no comma follows.
void ReadListValue(std::string_view rest, std::vector<float>& numbers);

/// Truncated towards zero, at most the limits.
std::int16_t ToShort(double number);
/// Rounded to the nearest integer, halves away from zero, and compared with 0.
bool ToBool(double number);

}   // namespace sparkrig
