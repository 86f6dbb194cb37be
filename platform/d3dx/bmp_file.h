// BMP files: heads of every version, palettes, masks of any width, run-length coding.
#pragma once
#include "platform/d3dx/d3dx_texture.h"
#include "platform/d3dx/image.h"

namespace sparkrig {

/// False for what is not a picture of a known kind within the limits. One that is not run-length coded is whole in the
/// file; for others DecodeBmp tells.
bool ReadBmpInfo(FileBytes file, D3DXIMAGE_INFO& info);

/// The pixels of a file whose info was read. Without an alpha mask they are opaque; an index that the palette lacks is
/// black.
HRESULT DecodeBmp(FileBytes file, Image& image);

}   // namespace sparkrig
