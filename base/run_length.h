// Run-length coding of records: a marker record, a count and a record stand for a run.
#pragma once
#include <cstddef>
#include <cstdint>

#include "base/compress_buffers.h"

namespace sparkrig {

inline constexpr int kMaxRecordSize = 255;

/// Bytes that the coding of `data_bytes` may take, header included.
std::size_t RunLengthCapacity(std::size_t data_bytes, std::size_t record_size);

/// Codes the whole records and the bytes left at the end; the number of bytes that it coded.
std::size_t EncodeRuns(const std::uint8_t* data, std::size_t size, std::size_t record_size, OutputBytes& out);

/// Decodes all of the input; where records would pass the limit of the output, they and what follows are left in it.
void DecodeRuns(InputBytes& in, std::size_t record_size, OutputBytes& out);

}   // namespace sparkrig
