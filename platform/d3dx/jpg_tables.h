// Whether the tables of a jpg file are whole before they are used. The decoder does not look: it would write behind a
// table that is too long, and read one that was never given from memory that is not its own.
#pragma once
#include "platform/d3dx/jpg_segments.h"

namespace sparkrig {

class JpgTables {
  public:
    explicit JpgTables(const Bytes& file) : file_(file) {}
    /// False when the segment, in its turn, holds a table too long or a scan that names one not given yet.
    bool Take(const JpgSegment& segment);

  private:
    static constexpr std::size_t kTables = 4, kCoders = 2;   // coders: of the first coefficient, of the others

    bool TakeHuffman(std::size_t at, int left);
    bool TakeQuantisation(std::size_t at, int left);
    bool TakeScan(std::size_t at) const;
    bool MayScan(UINT component, UINT tables, bool first, bool others) const;

    const Bytes& file_;
    std::size_t frame_ = 0;   // its components, 0 before there is one
    bool progressive_ = false;
    bool huffman_[kCoders][kTables] = {}, quantisation_[kTables] = {};
};

}   // namespace sparkrig
