// Built as motion_lanes.cpp is.
#include "effects/view_volume.h"

#include <cmath>

#include "effects/vector_code.h"
#include "gfx/gfx.h"

namespace sparkrig {

ViewVolume::ViewVolume(const KRN_Gfx& gfx) : camera(gfx.CameraPosition()) {
    ComputeViewPlanes(gfx.ViewMatrix(), gfx.ProjectionMatrix(), planes);
}

SPARKRIG_VECTOR_CODE void TestSpheres(const ViewVolume& view, int count, SphereLanes& spheres) {
    const auto& [x, y, z] = spheres.centre;
    for (int i = 0; i < count; ++i) {
        const float dx = x[i] - view.camera.x, dy = y[i] - view.camera.y, dz = z[i] - view.camera.z;
        spheres.distance[i] = std::sqrt(dx * dx + dy * dy + dz * dz);
        spheres.visible[i] = 1;
    }
    for (const ViewPlane& plane : view.planes) {
        const D3DXVECTOR3 n = plane.normal, p = plane.point;
        for (int i = 0; i < count; ++i) {
            const float outside = n.x * (x[i] - p.x) + n.y * (y[i] - p.y) + n.z * (z[i] - p.z);
            spheres.visible[i] = outside > spheres.radius[i] ? 0 : spheres.visible[i];
        }
    }
}

}   // namespace sparkrig
