// Pictures of another size.
#pragma once
#include "platform/d3dx/d3dx_texture.h"
#include "platform/d3dx/image.h"

namespace sparkrig {

/// `source` at the size width x height, by a D3DX filter with its mirror flags:
///   NONE      not scaled: cut off, or surrounded by transparent black
///   POINT     the nearest pixel
///   LINEAR    between the four nearest pixels
///   TRIANGLE  every pixel weighted by its distance
///   BOX       averages of 2 x 2; only for half the size (an axis of 1 stays)
/// Destination i lies at (i + 0.5) * source size / size - 0.5; beyond the edges the picture wraps or is mirrored.
/// D3DERR_INVALIDCALL for another filter, and for BOX at another size.
HRESULT ScaleImage(const Image& source, UINT width, UINT height, DWORD filter, Image& scaled);

/// Each size halved, at least 1: the rounded average of 2 x 2 pixels, of 2 pixels where an axis is 1. The last row or
/// column of an odd size is dropped.
HRESULT HalveImage(const Image& source, Image& half);

}   // namespace sparkrig
