#pragma once
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

/// Spherical interpolation along the shorter arc. t is not clamped: outside 0 to 1 it goes on turning.
inline D3DXQUATERNION Slerp(const D3DXQUATERNION& a, const D3DXQUATERNION& b, float t) {
    D3DXQUATERNION between;
    D3DXQuaternionSlerp(&between, &a, &b, t);
    return between;
}

}   // namespace sparkrig
