// Built as motion_lanes.cpp is.
#include "effects/view_volume.h"

#include <cmath>

#include "effects/vector_code.h"
#include "gfx/gfx.h"

namespace sparkrig {

ViewVolume::ViewVolume(const KRN_Gfx& gfx) : camera(gfx.CameraPosition()) {
    ComputeViewPlanes(gfx.ViewMatrix(), gfx.ProjectionMatrix(), planes);
}

SPARKRIG_VECTOR_CODE void TestSpheres(const ViewVolume& view, const DrawRecord* records, int count, SphereTest& test) {
    alignas(64) float x[kLanes], y[kLanes], z[kLanes], radius[kLanes];
    for (int i = 0; i < count; ++i) {
        const DrawRecord& record = records[i];
        x[i] = record.position.x;
        y[i] = record.position.y;
        z[i] = record.position.z;
        radius[i] = std::abs(record.size);
        test.visible[i] = record.age >= 0 ? 1 : 0;
    }
    for (int i = 0; i < count; ++i) {
        const float dx = x[i] - view.camera.x, dy = y[i] - view.camera.y, dz = z[i] - view.camera.z;
        test.distance[i] = std::sqrt(dx * dx + dy * dy + dz * dz);
    }
    for (const ViewPlane& plane : view.planes) {
        const D3DXVECTOR3 n = plane.normal, p = plane.point;
        for (int i = 0; i < count; ++i) {
            const float outside = n.x * (x[i] - p.x) + n.y * (y[i] - p.y) + n.z * (z[i] - p.z);
            test.visible[i] = outside > radius[i] ? 0 : test.visible[i];
        }
    }
}

}   // namespace sparkrig
