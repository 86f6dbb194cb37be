#pragma once
#include <cstdint>

#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

/// A bounding volume: clip_mode bit 0 tests the sphere, bit 1 the box; 0 is never culled.
class KRN_ClipObject {
  public:
    std::uint32_t clip_mode = 0;
    float sphere_radius = 0;
    D3DXVECTOR3 sphere_centre;
    D3DXVECTOR3 box_minimum, box_maximum;
};

/// Of each component the smaller or the larger one.
D3DXVECTOR3 Smaller(const D3DXVECTOR3& a, const D3DXVECTOR3& b);
D3DXVECTOR3 Larger(const D3DXVECTOR3& a, const D3DXVECTOR3& b);

/// The box around the eight corners moved by the matrix; the sphere's centre moved, its radius times the largest scale.
KRN_ClipObject TransformedBounds(const KRN_ClipObject& bounds, const D3DXMATRIX& matrix);

/// A plane of the view frustum; a point x lies outside when normal . (x - point) > 0.
struct ViewPlane {
    D3DXVECTOR3 point, normal;
};

/// The six planes of a view and projection.
void ComputeViewPlanes(const D3DXMATRIX& view, const D3DXMATRIX& projection, ViewPlane (&planes)[6]);
bool SphereVisible(const ViewPlane (&planes)[6], const D3DXVECTOR3& centre, float radius);
bool BoundsVisible(const ViewPlane (&planes)[6], const KRN_ClipObject& bounds, const D3DXMATRIX& world);

}   // namespace sparkrig
