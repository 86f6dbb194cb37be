// What the adapter offers: full-screen modes and texture formats.
#pragma once
#include "gfx/device/graphics_device.h"

namespace sparkrig {

void GetAdapterDisplayMode(const GraphicsDevice& graphics, D3DDISPLAYMODE& mode);

/// Whether the adapter has a mode of that size, format and refresh rate. With refresh rate 0 the highest one of the
/// matching modes is written into `mode`.
bool FindDisplayMode(const GraphicsDevice& graphics, D3DDISPLAYMODE& mode);

/// usage_mode as in CreateTexture: 3 render target, 5 depth buffer, others plain. A refusal is a warning.
bool CheckTextureFormat(const GraphicsDevice& graphics, D3DFORMAT opaque_format, D3DFORMAT format, int usage_mode);

}   // namespace sparkrig
