#pragma once
#include "gfx/geometry/skinning.h"

namespace sparkrig {

struct SphereCoordinates {
    float u = 0.5f, v = 0.5f;
};

/// Where a sphere map shows what a mirror at the vertex reflects to the camera: with e the unit direction from the
/// camera to the vertex and n its unit normal, both in the world, r = 2 (n . e) n - e, taken to half the map's size.
/// The middle of the map where r is (0, 0, -1).
SphereCoordinates ReflectedCoordinates(const PlacedVertex& vertex, const D3DXVECTOR3& camera);

}   // namespace sparkrig
