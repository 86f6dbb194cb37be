// What a device says that it can do.
#pragma once
#include "platform/d3d9/device_rules.h"

namespace sparkrig {

inline constexpr float kMaxPointSize = 256.0f;   // pixels

D3DCAPS9 DeviceCaps(const DeviceLimits& limits);

}   // namespace sparkrig
