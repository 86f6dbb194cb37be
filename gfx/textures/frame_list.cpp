#include "gfx/textures/frame_list.h"

#include <cstring>

#include "base/report_listener.h"
#include "base/string.h"
#include "base/text_file_reader.h"

namespace sparkrig {
namespace {

constexpr char kEnding[] = ".ifl";

bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

std::string WithoutBlanks(const char* text) {
    while (*text && IsBlank(*text)) ++text;
    std::string result = text;
    while (!result.empty() && IsBlank(result.back())) result.pop_back();
    return result;
}

}   // namespace

bool IsFrameListName(const char* name) {
    const std::size_t length = std::strlen(name), ending = sizeof kEnding - 1;
    return length >= ending && EqualNoCase(name + length - ending, kEnding);
}

std::vector<std::string> ReadFrameList(const KRN_Base& reporter, const char* file) {
    TextFileReader reader;
    if (reader.Load(file) != 0 || reader.BuildLineIndex() != 0) reporter.Error("%s", reader.GetErrorText());
    SourceFileScope place(file);
    std::vector<std::string> frames;
    for (int i = 0; i < reader.GetLineCount(); ++i) {
        place.SetPlace({i + 1});
        const char* line = reader.GetLine(i);
        if (!line) reporter.Error("%s", reader.GetErrorText());
        const std::string name = WithoutBlanks(line);
        if (name.empty()) continue;
        // A list in a list would be a sequence in a sequence, and could name itself.
        if (IsFrameListName(name.c_str()))
            reporter.Error("Texture file list in texture file list '%s': %s", file, name.c_str());
        if (frames.size() == kMaxSequenceFrames)
            reporter.Error("More than %i frames in texture file list '%s'", kMaxSequenceFrames, file);
        frames.push_back(name);
    }
    place.SetPlace({});
    if (frames.empty()) reporter.Error("Empty texture file list");
    return frames;
}

}   // namespace sparkrig
