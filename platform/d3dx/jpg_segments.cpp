#include "platform/d3dx/jpg_segments.h"

namespace sparkrig {
namespace {

constexpr UINT kEndOfImage = 0xD9, kStartOfScan = 0xDA;
constexpr int kTableHead = 17;   // the table's number, then how many codes there are of each length
constexpr int kMostCodes = 256;

bool IsRestart(UINT marker) { return marker >= 0xD0 && marker <= 0xD7; }

}   // namespace

bool JpgSegments::Next(JpgSegment& segment) {
    for (;;) {
        at_ = file_.Find(0xFF, at_);
        while (file_.At(at_) == 0xFF) ++at_;
        if (at_ >= file_.Size()) return false;
        const UINT marker = file_.At(at_++);
        if (in_scan_ && (marker == 0 || IsRestart(marker))) continue;
        if (marker == kEndOfImage) return false;
        in_scan_ = marker == kStartOfScan;
        segment = {marker, at_};
        at_ += file_.Big16(at_);
        return true;
    }
}

bool HuffmanTablesAreSound(const Bytes& file, const JpgSegment& segment) {
    std::size_t at = segment.data + 2;
    for (int left = static_cast<int>(file.Big16(segment.data)) - 2; left > 0;) {
        int codes = 0;
        for (std::size_t i = 1; i < kTableHead; ++i) codes += static_cast<int>(file.At(at + i));
        if (codes > kMostCodes) return false;
        left -= kTableHead + codes;
        at += static_cast<std::size_t>(kTableHead + codes);
    }
    return true;
}

}   // namespace sparkrig
