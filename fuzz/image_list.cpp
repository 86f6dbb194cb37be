// Any bytes as an image-file list: names without blanks around them, or a report.

#include "base/log.h"
#include "fuzz/input_file.h"
#include "fuzz/require.h"
#include "gfx/textures/frame_list.h"

using namespace sparkrig;

namespace {

struct Reporter : KRN_Base {};

}   // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const InputFile input;
    SilenceLog();
    input.Put(data, size);
    try {
        const std::vector<std::string> frames = ReadFrameList(Reporter(), input.Name());
        Require(!frames.empty() && frames.size() <= kMaxSequenceFrames);
        for (const std::string& frame : frames) {
            Require(!frame.empty() && !IsFrameListName(frame.c_str()));
            Require(static_cast<unsigned char>(frame.front()) > ' ' && static_cast<unsigned char>(frame.back()) > ' ');
        }
    } catch (const ErrorMsg&) {
    } catch (const KRN_Error&) {
    }
    return 0;
}
