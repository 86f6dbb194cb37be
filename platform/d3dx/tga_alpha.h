#pragma once
#include "platform/d3dx/image.h"

namespace sparkrig {

/// The alpha bits of a tga file of 16 bits a pixel, which the image library leaves out. The image was decoded from the
/// file; what the file lacks stays opaque.
void ReadTgaAlphaBits(FileBytes file, Image& image);

}   // namespace sparkrig
