// TGA files: grey, true colour and colour maps, plain or run-length coded, stored from any of the four corners.
#pragma once
#include "platform/d3dx/d3dx_texture.h"
#include "platform/d3dx/image.h"

namespace sparkrig {

/// The file has no signature: false for every head that makes no sense, for a picture beyond the limits, and for a file
/// too short to hold it. Packets of run-length coding are looked at when they are decoded.
bool ReadTgaInfo(FileBytes file, D3DXIMAGE_INFO& info);

/// The pixels of a file whose info was read. An index that the colour map lacks is black. D3DXERR_INVALIDDATA when the
/// packets end before the picture does.
HRESULT DecodeTga(FileBytes file, Image& image);

}   // namespace sparkrig
