// The segments of a jpg file, found as the decoder finds them.
#pragma once
#include "platform/d3dx/file_bytes.h"

namespace sparkrig {

struct JpgSegment {
    UINT marker;        // its second byte
    std::size_t data;   // behind the marker: the length of two bytes, then the rest
};

class JpgSegments {
  public:
    explicit JpgSegments(const Bytes& file) : file_(file) {}
    /// The next segment, those between and behind the scans included; false at the end of the picture or the file.
    bool Next(JpgSegment& segment);

  private:
    const Bytes& file_;
    std::size_t at_ = 2;   // behind the start-of-image marker
    bool in_scan_ = false;
};

}   // namespace sparkrig
