#include "tools/scene/json_writer.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace sparkrig {

void JsonWriter::Separate() {
    if (!first_) text_ += ',';
    first_ = false;
}

JsonWriter& JsonWriter::Raw(std::string_view value) {
    Separate();
    text_ += value;
    return *this;
}

JsonWriter& JsonWriter::Open(char bracket) {
    Separate();
    text_ += bracket;
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::Close(char bracket) {
    text_ += bracket;
    first_ = false;
    return *this;
}

JsonWriter& JsonWriter::Key(std::string_view name) {
    Value(name);
    text_ += ':';
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::Null() { return Raw("null"); }

JsonWriter& JsonWriter::Value(bool value) { return Raw(value ? "true" : "false"); }

JsonWriter& JsonWriter::Value(float value) {
    if (!std::isfinite(value)) return Null();
    char digits[32];
    const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
    return Raw({digits, static_cast<std::size_t>(end - digits)});
}

JsonWriter& JsonWriter::Value(std::string_view text) {
    Separate();
    text_ += '"';
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            text_ += '\\';
            text_ += c;
        } else if (byte >= 32 && byte < 127) {
            text_ += c;
        } else {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", byte);
            text_ += escape;
        }
    }
    text_ += '"';
    return *this;
}

JsonWriter& JsonWriter::Value(std::span<const float> numbers) {
    BeginArray();
    for (const float number : numbers) Value(number);
    return EndArray();
}

JsonWriter& JsonWriter::Value(const D3DXMATRIX& matrix) {
    BeginArray();
    for (const auto& row : matrix.m) Value(std::span<const float>(row));
    return EndArray();
}

}   // namespace sparkrig
