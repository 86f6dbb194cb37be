// Packed streams: stored, run-length coded records, LZMA at three settings, each optionally scrambled.
#pragma once
#include <cstdint>
#include <vector>

#include "base/error.h"

namespace sparkrig {

class CCompress : public ErrorClass {
  public:
    CCompress();

    /// Algorithm 0 to 8; record_size bytes for run-length coding.
    void SetMode(int algorithm, int record_size);
    /// Length of the stream, -1 for an unknown algorithm.
    int Compress(const std::uint8_t* data, int n, std::vector<std::uint8_t>& out);
    /// Length of the data. The stream, not the mode, says how it is decoded.
    int Decompress(const std::uint8_t* stream, int length, std::vector<std::uint8_t>& out);

  private:
    std::int32_t record_size_ = 4;
    std::int32_t algorithm_ = 1;
};

}   // namespace sparkrig
