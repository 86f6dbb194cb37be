// TGA files: true colour, grey and mapped pictures, plain and run-length coded, from any corner.
#pragma once
#include "platform/d3dx/d3dx_texture.h"
#include "platform/d3dx/image.h"

namespace sparkrig {

/// False for what cannot be a picture: there is no signature, so every field of the head must make sense. One that is
/// not run-length coded is whole in the file; for others DecodeTga tells.
bool ReadTgaInfo(FileBytes file, D3DXIMAGE_INFO& info);

/// The pixels of a file whose info was read. An index that the colour map lacks is black.
HRESULT DecodeTga(FileBytes file, Image& image);

}   // namespace sparkrig
