// The basic types of the interfaces that the layer stands for.
#pragma once
#include <cstdint>

namespace sparkrig {

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using ULONG = std::uint32_t;
using INT = std::int32_t;
using LONG = std::int32_t;
using BOOL = std::int32_t;
using HRESULT = std::int32_t;

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

struct Window;   // platform/window
using HWND = Window*;

struct RECT {
    LONG left, top, right, bottom;
    bool operator==(const RECT&) const = default;
};

struct POINT {
    LONG x, y;
};

}   // namespace sparkrig
