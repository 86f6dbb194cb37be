// Image files: what their heads say, and their pixels. The kind of a file is found from its contents.
#pragma once
#include <vector>

#include "platform/d3dx/d3dx_texture.h"
#include "platform/d3dx/image.h"

namespace sparkrig {

/// The whole file; false when it cannot be read or is larger than 1 GiB.
bool ReadWholeFile(const char* name, std::vector<BYTE>& bytes);

/// Size, format and levels from the file's head. D3DXERR_INVALIDDATA for a file of no known kind, for one beyond the
/// limits of image.h, and for one too short to hold the picture that its head announces.
HRESULT ReadImageInfo(FileBytes file, D3DXIMAGE_INFO& info);

/// The pixels of a file whose info was read, the largest level of a dds.
HRESULT DecodeImage(FileBytes file, const D3DXIMAGE_INFO& info, Image& image);

}   // namespace sparkrig
