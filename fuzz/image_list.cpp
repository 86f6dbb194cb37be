// Any bytes as an image-file list: names without blanks around them, or a report.
#include "fuzz/target.h"
#include "gfx/textures/frame_list.h"

void sparkrig::Try(Input input) {
    struct Reporter : KRN_Base {};
    const std::vector<std::string> frames = ReadFrameList(Reporter(), Put(input).c_str());
    Require(!frames.empty() && frames.size() <= kMaxSequenceFrames);
    for (const std::string& frame : frames) {
        Require(!frame.empty() && !IsFrameListName(frame.c_str()));
        Require(static_cast<unsigned char>(frame.front()) > ' ' && static_cast<unsigned char>(frame.back()) > ' ');
    }
}
