#pragma once
#include <concepts>
#include <span>
#include <string>
#include <string_view>

#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

/// Writes one JSON value after the other, with what belongs between them.
class JsonWriter {
  public:
    JsonWriter& BeginObject() { return Open('{'); }
    JsonWriter& EndObject() { return Close('}'); }
    JsonWriter& BeginArray() { return Open('['); }
    JsonWriter& EndArray() { return Close(']'); }
    JsonWriter& Key(std::string_view name);

    // Values: the next of an array, or that of the last key.
    JsonWriter& Null();
    JsonWriter& Value(bool value);
    /// The shortest decimal that reads back as the same number; null when there is none.
    JsonWriter& Value(float value);
    template <std::integral Integer>
    JsonWriter& Value(Integer value) {
        return Raw(std::to_string(value));
    }
    /// Bytes, 128 to 255 as the characters of these numbers.
    JsonWriter& Value(std::string_view text);
    JsonWriter& Value(const char* text) { return Value(std::string_view(text)); }
    JsonWriter& Value(const D3DXVECTOR3& v) { return Value(std::span<const float>({v.x, v.y, v.z})); }
    JsonWriter& Value(const D3DXQUATERNION& q) { return Value(std::span<const float>({q.x, q.y, q.z, q.w})); }
    JsonWriter& Value(const D3DCOLORVALUE& c) { return Value(std::span<const float>({c.r, c.g, c.b, c.a})); }
    /// Four rows.
    JsonWriter& Value(const D3DXMATRIX& matrix);
    JsonWriter& Value(std::span<const float> numbers);

    template <class T>
    JsonWriter& Member(std::string_view name, const T& value) {
        return Key(name).Value(value);
    }

    const std::string& Text() const { return text_; }

  private:
    JsonWriter& Open(char bracket);
    JsonWriter& Close(char bracket);
    JsonWriter& Raw(std::string_view value);
    void Separate();

    std::string text_;
    bool first_ = true;   // of its object or array
};

}   // namespace sparkrig
