// What the camera sees, for many spheres at once.
#pragma once
#include "effects/instance_store.h"
#include "scene/clip_object.h"

namespace sparkrig {

class KRN_Gfx;

/// The view of one frame.
struct ViewVolume {
    explicit ViewVolume(const KRN_Gfx& gfx);

    D3DXVECTOR3 camera;
    ViewPlane planes[6];
};

struct SphereTest {
    alignas(64) float distance[kLanes];         // from the camera to the centre
    alignas(64) std::int32_t visible[kLanes];   // 0 for what is not born or lies outside one of the planes
};

/// Tests the first `count` of a block's records. What is not a number is visible.
void TestSpheres(const ViewVolume& view, const DrawRecord* records, int count, SphereTest& test);

}   // namespace sparkrig
