// LZMA1 data as the packed streams hold it: five property bytes apart, an end marker behind the data.
#pragma once
#include <cstddef>
#include <cstdint>

#include "base/byte_buffer.h"

namespace sparkrig {

enum class LzmaSetting { Normal, Fast, Strongest };

inline constexpr std::size_t kLzmaPropertyBytes = 5;

/// Appends the coded data to `out`. Null, or what went wrong.
const char* EncodeLzma(LzmaSetting setting, const std::uint8_t* data, std::size_t size, ByteBuffer& out);

/// Appends the property bytes of a setting.
void AppendLzmaProperties(LzmaSetting setting, ByteBuffer& out);

/// Decodes exactly n bytes into `out`. Null, or what is wrong with the coded data: also when it would give more than n
/// bytes. The end marker may be missing; what stands behind it is left alone. The dictionary is at most as large as the
/// data, and until the data has filled it at most 16 MiB; the output grows with what is decoded.
const char* DecodeLzma(const std::uint8_t* properties, const std::uint8_t* coded, std::size_t size, std::size_t n,
                       ByteBuffer& out);

}   // namespace sparkrig
