#include "tools/texture/picture_facts.h"

#include <algorithm>

#include "base/string.h"
#include "gfx/textures/frame_list.h"
#include "gfx/textures/texture_paths.h"
#include "gfx/textures/video_sources.h"
#include "platform/d3dx/image_file.h"
#include "platform/system/system.h"

namespace sparkrig {
namespace {

struct FormatName {
    D3DFORMAT format;
    const char* name;
};
// clang-format off
constexpr FormatName kFormatNames[] = {
    {D3DFMT_R8G8B8, "R8G8B8"},     {D3DFMT_A8R8G8B8, "A8R8G8B8"}, {D3DFMT_X8R8G8B8, "X8R8G8B8"}, {D3DFMT_R5G6B5, "R5G6B5"},
    {D3DFMT_X1R5G5B5, "X1R5G5B5"}, {D3DFMT_A1R5G5B5, "A1R5G5B5"}, {D3DFMT_A4R4G4B4, "A4R4G4B4"}, {D3DFMT_A8, "A8"},
    {D3DFMT_A8B8G8R8, "A8B8G8R8"}, {D3DFMT_P8, "P8"},             {D3DFMT_L8, "L8"},             {D3DFMT_A8L8, "A8L8"},
    {D3DFMT_DXT1, "DXT1"},         {D3DFMT_DXT2, "DXT2"},         {D3DFMT_DXT3, "DXT3"},         {D3DFMT_DXT4, "DXT4"},
    {D3DFMT_DXT5, "DXT5"}};
// clang-format on
constexpr const char* kKindNames[] = {"bmp", "jpg", "tga", "png", "dds"};   // by D3DXIMAGE_FILEFORMAT

const char* NameOf(D3DFORMAT format) {
    return std::ranges::find(kFormatNames, format, &FormatName::format)->name;   // every format of a file has one
}

const char* AlphaKind(const Image& image) {
    bool some = false, partial = false;
    for (const D3DCOLOR p : image.Pixels()) {
        const UINT alpha = p >> 24;
        some = some || alpha < 255;
        partial = partial || (alpha > 0 && alpha < 255);
    }
    return partial ? "partial alpha" : some ? "on-off alpha" : "no alpha";
}

bool DescribeImage(const std::string& file, std::string& line) {
    std::vector<BYTE> bytes;
    D3DXIMAGE_INFO info;
    Image image;
    if (!ReadWholeFile(file.c_str(), bytes)) {
        line = "can not open file";
        return false;
    }
    if (FAILED(ReadImageInfo(bytes, info)) || FAILED(DecodeImage(bytes, info, image))) {
        line = "no picture that can be loaded";
        return false;
    }
    line = std::to_string(info.Width) + " x " + std::to_string(info.Height) + ", " + kKindNames[info.ImageFileFormat] +
           ", " + NameOf(info.Format) + ", " + std::to_string(info.MipLevels) +
           (info.MipLevels == 1 ? " level, " : " levels, ") + AlphaKind(image);
    return true;
}

/// Reports what is wrong with a list.
class ListReporter : public KRN_Base {
  public:
    ListReporter() { SetName("texture"); }
};

/// Frames are looked for like when they are loaded: as written, then beside the list.
bool DescribeList(const std::string& file, std::string& line) try {
    const std::vector<std::string> frames = ReadFrameList(ListReporter(), file.c_str());
    char directory[1024];
    GetDirectory(file.c_str(), directory, sizeof directory);
    std::string first;
    for (const std::string& frame : frames) {
        if (IsVideoName(frame.c_str())) continue;   // no file
        const bool as_written = *directory == '\0' || FileExists(frame.c_str());
        std::string facts;
        if (!DescribeImage(as_written ? frame : JoinPath(directory, frame.c_str()), facts)) {
            line.assign("frame ").append(frame).append(": ").append(facts);
            return false;
        }
        if (first.empty()) first = facts;
    }
    line =
        std::to_string(frames.size()) + (frames.size() == 1 ? " frame; the first: " : " frames; the first: ") + first;
    return true;
} catch (const KRN_Error& error) {
    line = error.message;
    return false;
}

}   // namespace

bool DescribePicture(const std::string& file, std::string& line) {
    return IsFrameListName(file.c_str()) ? DescribeList(file, line) : DescribeImage(file, line);
}

}   // namespace sparkrig
