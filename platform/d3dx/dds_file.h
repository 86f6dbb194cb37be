// DDS files: uncompressed and DXT pictures with stored mip levels.
#pragma once
#include "platform/d3dx/d3dx_texture.h"
#include "platform/d3dx/image.h"

namespace sparkrig {

/// False for what is not a plain two-dimensional picture of a known format within the limits, whole in the file.
bool ReadDdsInfo(FileBytes file, D3DXIMAGE_INFO& info);

/// Where a stored level lies. Level 0 is the largest.
struct DdsLevel {
    UINT width, height;
    std::size_t offset, row_bytes;   // of a row of pixels, or of blocks
    UINT rows;
};
/// For a file whose info was read and level < info.MipLevels.
DdsLevel FindDdsLevel(const D3DXIMAGE_INFO& info, UINT level);

/// The pixels of a stored level.
HRESULT DecodeDds(FileBytes file, const D3DXIMAGE_INFO& info, UINT level, Image& image);

}   // namespace sparkrig
