// What the camera sees, for many spheres at once.
#pragma once
#include "effects/motion_lanes.h"
#include "scene/clip_object.h"

namespace sparkrig {

class KRN_Gfx;

/// The view of one frame.
struct ViewVolume {
    explicit ViewVolume(const KRN_Gfx& gfx);

    D3DXVECTOR3 camera;
    ViewPlane planes[6];
};

struct SphereLanes {
    VectorLanes centre;
    alignas(64) float radius[kLanes];
    alignas(64) float distance[kLanes];         // from the camera to the centre
    alignas(64) std::int32_t visible[kLanes];   // 0 for a sphere that lies outside one of the planes
};

/// Fills distance and visibility of the first `count` spheres. What is not a number is visible.
void TestSpheres(const ViewVolume& view, int count, SphereLanes& spheres);

}   // namespace sparkrig
