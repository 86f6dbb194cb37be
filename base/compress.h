// Packed streams: stored, run-length coded records, LZMA at three settings, each optionally scrambled.
#pragma once
#include <cstdint>

#include "base/byte_buffer.h"
#include "base/error.h"

namespace sparkrig {

class InputBytes;

/// Algorithms: 0 stored, 1 run-length coded records, 2 to 4 LZMA (normal, fast, strongest), 5 to 7 the same scrambled,
/// 8 scrambled only. Scrambling with 5 to 7 seeds the process-wide random generator, both ways. Every fault of a
/// stream is an error; memory grows with what a stream really holds, not with the length that it claims.
class CCompress : public ErrorClass {
  public:
    CCompress();

    /// record_size: bytes for run-length coding, 1 to 255.
    void SetMode(int algorithm, int record_size);
    /// Length of the stream, -1 for an unknown algorithm.
    int Compress(const std::uint8_t* data, int n, ByteBuffer& out);
    /// Length of the data. The stream, not the mode, says how it is decoded. Bytes are ignored behind the end marker of
    /// LZMA data and behind the kinds that say how many they copy (0 and 8); any other stream must end with its data.
    int Decompress(const std::uint8_t* stream, int length, ByteBuffer& out);

  protected:
    void CheckCodedBytes(std::size_t coded, std::size_t n) const;

  private:
    void CheckRecordSize(int record_size) const;
    void CompressRuns(const std::uint8_t* data, std::size_t n, ByteBuffer& out) const;
    void CompressLzma(const std::uint8_t* data, std::size_t n, ByteBuffer& out) const;

    void DecodeStored(InputBytes& in, std::size_t n, ByteBuffer& out) const;
    void DecodeRecords(InputBytes& in, std::size_t n, ByteBuffer& out) const;
    void DecodeLzmaStream(InputBytes& in, bool scrambled, std::size_t n, ByteBuffer& out) const;
    void DecodeScrambled(InputBytes& in, std::size_t n, ByteBuffer& out) const;

    std::int32_t record_size_ = 4;
    std::int32_t algorithm_ = 1;
};

}   // namespace sparkrig
