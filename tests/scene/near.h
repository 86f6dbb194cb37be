// A node of a test; vectors and orientations that are the same but for rounding.
#pragma once
#include <cmath>

#include "scene/object_3d.h"
#include "tests/support/test.h"

namespace sparkrig {

struct Node : KRN_3dObject {
    ~Node() override = default;
};

inline void ExpectNear(const D3DXVECTOR3& a, const D3DXVECTOR3& b, float tolerance = 1e-5f) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

/// Unit quaternions of either sign.
inline void ExpectSameTurn(const D3DXQUATERNION& a, const D3DXQUATERNION& b, float tolerance = 1e-5f) {
    const float side = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w < 0 ? -1.0f : 1.0f;
    ExpectNear({a.x, a.y, a.z}, {b.x * side, b.y * side, b.z * side}, tolerance);
    EXPECT_NEAR(a.w, b.w * side, tolerance);
}

}   // namespace sparkrig
