#pragma once
#include <vector>

#include "platform/d3d9/d3d9_constants.h"

namespace sparkrig {

struct FogSettings {
    D3DCOLOR colour = 0;
    DWORD mode = D3DFOG_EXP;
    bool vertex_fog = true;
    float start = 0.0f, end = 1.0f;
    float density = 0.5f;
    bool operator==(const FogSettings&) const = default;
};

}   // namespace sparkrig
