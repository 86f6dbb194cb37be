// What the device says that it can do.
#pragma once
#include "platform/d3d9/d3d9_types.h"
#include "platform/d3d9_gl/gl_context.h"

namespace sparkrig {

D3DCAPS9 DeviceCaps(const GlLimits& limits);

}   // namespace sparkrig
