// What the device says that it can do.
#pragma once
#include "platform/d3d9/d3d9_types.h"
#include "platform/d3d9_gl/gl_context.h"

namespace sparkrig {

D3DCAPS9 DeviceCaps(const GlLimits& limits);

/// Whether a texture or surface of this format can be made for a usage (0, RENDERTARGET, DEPTHSTENCIL).
bool SupportsFormat(const GlLimits& limits, DWORD usage, D3DFORMAT format);

}   // namespace sparkrig
