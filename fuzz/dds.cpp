// Any bytes as a dds file: its head, and the pixels of every level that it says it has.
#include "fuzz/target.h"
#include "platform/d3dx/dds_file.h"

void sparkrig::Try(Input input) {
    D3DXIMAGE_INFO info = {};
    if (!ReadDdsInfo(input, info)) return;
    Require(IsAllowedImageSize(info.Width, info.Height) && info.MipLevels >= 1 && info.MipLevels <= 15);
    for (UINT level = 0; level < info.MipLevels; ++level) {
        const DdsLevel stored = FindDdsLevel(info, level);
        Require(stored.offset + stored.row_bytes * stored.rows <= input.size());
        Image image;
        Require(SUCCEEDED(DecodeDds(input, info, level, image)));
        Require(image.width == stored.width && image.height == stored.height);
    }
}
