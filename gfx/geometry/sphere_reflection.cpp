#include "gfx/geometry/sphere_reflection.h"

namespace sparkrig {

SphereCoordinates ReflectedCoordinates(const PlacedVertex& vertex, const D3DXVECTOR3& camera) {
    constexpr float kSize = 2.8284f;
    D3DXVECTOR3 e = vertex.position - camera, n = vertex.normal;
    D3DXVec3Normalize(&e, &e);
    D3DXVec3Normalize(&n, &n);
    const D3DXVECTOR3 r = n * (2 * D3DXVec3Dot(n, e)) - e;
    const D3DXVECTOR3 half_way = r + D3DXVECTOR3(0, 0, 1);
    const float length = kSize * D3DXVec3Length(half_way);
    if (!(length > 0)) return {};
    return {r.x / length + 0.5f, r.y / length + 0.5f};
}

}   // namespace sparkrig
