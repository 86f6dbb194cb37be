#include "platform/d3dx/jpg_tables.h"

namespace sparkrig {
namespace {

constexpr UINT kProgressive = 0xC2, kHuffman = 0xC4, kStartOfScan = 0xDA, kQuantisation = 0xDB;
constexpr int kHuffmanHead = 17;   // the table's number, then how many codes there are of each length
constexpr int kMostCodes = 256;    // as many as there are bytes

bool IsFrame(UINT marker) { return marker >= 0xC0 && marker <= kProgressive; }

}   // namespace

bool JpgTables::Take(const JpgSegment& segment) {
    const std::size_t inside = segment.data + 2;   // behind the length
    const int length = static_cast<int>(file_.Big16(segment.data)) - 2;
    if (IsFrame(segment.marker)) {
        frame_ = inside + 5;   // behind precision, height and width
        progressive_ = segment.marker == kProgressive;
    }
    if (segment.marker == kHuffman) return TakeHuffman(inside, length);
    if (segment.marker == kQuantisation) return TakeQuantisation(inside, length);
    return segment.marker != kStartOfScan || TakeScan(inside);
}

bool JpgTables::TakeHuffman(std::size_t at, int left) {
    while (left > 0) {
        const UINT coder = file_.At(at) >> 4, number = file_.At(at) & 15;
        int codes = 0;
        for (std::size_t i = 1; i < kHuffmanHead; ++i) codes += static_cast<int>(file_.At(at + i));
        if (coder >= kCoders || number >= kTables || codes > kMostCodes) return false;
        huffman_[coder][number] = true;
        left -= kHuffmanHead + codes;
        at += static_cast<std::size_t>(kHuffmanHead + codes);
    }
    return true;
}

bool JpgTables::TakeQuantisation(std::size_t at, int left) {
    while (left > 0) {
        const UINT bytes_each = file_.At(at) >> 4 == 0 ? 1 : 2, number = file_.At(at) & 15;
        if (number >= kTables) return false;
        quantisation_[number] = true;
        left -= static_cast<int>(1 + 64 * bytes_each);
        at += 1 + 64 * std::size_t{bytes_each};
    }
    return true;
}

bool JpgTables::TakeScan(std::size_t at) const {
    const UINT components = file_.At(at);
    const UINT first_coefficient = file_.At(at + 1 + 2 * components), refines = file_.At(at + 3 + 2 * components) >> 4;
    // A progressive scan holds either first coefficients, coded once and refined bit by bit, or others.
    const bool first = !progressive_ || (first_coefficient == 0 && refines == 0);
    const bool others = !progressive_ || first_coefficient != 0;
    for (std::size_t i = 0; i < components; ++i)
        if (!MayScan(file_.At(at + 1 + 2 * i), file_.At(at + 2 + 2 * i), first, others)) return false;
    return frame_ != 0;
}

/// tables: the numbers of the two coders' tables, four bits each.
bool JpgTables::MayScan(UINT component, UINT tables, bool first, bool others) const {
    const UINT first_table = tables >> 4, other_table = tables & 15;
    if (first_table >= kTables || other_table >= kTables) return false;
    if ((first && !huffman_[0][first_table]) || (others && !huffman_[1][other_table])) return false;
    for (std::size_t i = 0; i < file_.At(frame_); ++i) {
        const std::size_t place = frame_ + 1 + 3 * i;
        if (file_.At(place) == component) return file_.At(place + 2) < kTables && quantisation_[file_.At(place + 2)];
    }
    return false;
}

}   // namespace sparkrig
