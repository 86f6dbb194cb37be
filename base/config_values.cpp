#include "base/config_values.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <system_error>

#include "base/numeric.h"

namespace sparkrig {
namespace {

constexpr std::size_t kNumberLength = 31;   // characters of a number that count
constexpr int kMostComponents = 3;          // of a vector

bool IsNumeric(char c) { return (c >= '0' && c <= '9') || c == '.' || c == 'e' || c == '+' || c == '-'; }

/// As strtod reads them, which the short way cannot for a leading "+" and beyond the range of a double.
double ToNumber(std::string_view digits) {
    double number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error == std::errc()) return number;
    char text[kNumberLength + 1] = {};
    std::copy(digits.begin(), digits.end(), text);
    return std::strtod(text, nullptr);
}

/// Takes a number from the front of the text; without one the value is 0 and the result false.
bool TakeNumber(std::string_view& text, double& value) {
    std::size_t length = 0;
    while (length < kNumberLength && length < text.size() && IsNumeric(text[length])) ++length;
    value = length > 0 ? ToNumber(text.substr(0, length)) : 0;
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

/// Moves behind the first "=" and the blanks that follow it.
bool TakeEquals(std::string_view& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) return false;
    text = SkipBlanks(text.substr(equals + 1));
    return true;
}

}   // namespace

int ReadQuotedValue(std::string_view rest, std::string_view& text) {
    const std::size_t open = rest.find('"');
    if (open == std::string_view::npos) return 9;
    const std::size_t close = rest.find('"', open + 1);
    if (close == std::string_view::npos) return 9;
    text = rest.substr(open + 1, close - open - 1);
    return 0;
}

int ReadQuotedValue(std::string_view rest, char* buffer, int size) {
    std::string_view text;
    const int code = ReadQuotedValue(rest, text);
    if (code != 0 || size < 1) return code;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
    return 0;
}

int ReadNumberValue(std::string_view rest, double& number) {
    while (!rest.empty() && (rest.front() == ' ' || rest.front() == '\t' || rest.front() == '=')) rest.remove_prefix(1);
    if (rest.empty()) return 1;
    TakeNumber(rest, number);
    return 0;
}

int ReadVectorValue(std::string_view rest, float* vector, int count) {
    if (!TakeEquals(rest)) return 1;
    double numbers[kMostComponents];
    for (int n = 0; n < count; ++n) {
        if (n > 0 && !TakeComma(rest)) return 1;
        if (!TakeNumber(rest, numbers[n])) return 1;
    }
    std::transform(numbers, numbers + count, vector, [](double number) { return static_cast<float>(number); });
    return 0;
}

void ReadListValue(std::string_view rest, std::vector<float>& numbers) {
    if (!TakeEquals(rest)) return;
    double number;
    while (TakeNumber(rest, number)) {
        numbers.push_back(static_cast<float>(number));
        if (!TakeComma(rest)) return;
    }
}

std::int16_t ToShort(double number) {
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<int>(TruncateToInt(number), Limits::min(), Limits::max()));
}

bool ToBool(double number) { return RoundToInt(number) != 0; }

}   // namespace sparkrig
