#include "platform/d3dx/jpg_segments.h"

namespace sparkrig {
namespace {

constexpr UINT kEndOfImage = 0xD9, kStartOfScan = 0xDA;

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

}   // namespace sparkrig
