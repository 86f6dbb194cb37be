// Any bytes as a dds file: its head, and the pixels of every level that it says it has.
#include <cstring>

#include "fuzz/require.h"
#include "platform/d3dx/dds_file.h"

using namespace sparkrig;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FileBytes file(data, size);
    D3DXIMAGE_INFO info = {};
    if (!ReadDdsInfo(file, info)) return 0;
    Require(IsAllowedImageSize(info.Width, info.Height) && info.MipLevels >= 1 && info.MipLevels <= 15);
    for (UINT level = 0; level < info.MipLevels; ++level) {
        const DdsLevel stored = FindDdsLevel(info, level);
        Require(stored.offset + stored.row_bytes * stored.rows <= size);
        Image image;
        Require(SUCCEEDED(DecodeDds(file, info, level, image)));
        Require(image.width == stored.width && image.height == stored.height);
    }
    return 0;
}
