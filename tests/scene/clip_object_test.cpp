#include "scene/clip_object.h"

#include <gtest/gtest.h>

namespace sparkrig {
namespace {

/// Half a right angle to every side, from 1 to 100, along +z.
void MakePlanes(ViewPlane (&planes)[6]) {
    D3DXMATRIX projection;
    D3DXMatrixPerspectiveFovLH(&projection, 1.5707963f, 1, 1, 100);
    ComputeViewPlanes(kIdentityMatrix, projection, planes);
}

TEST(ViewPlanes, PointOutwards) {
    ViewPlane planes[6];
    MakePlanes(planes);
    constexpr std::tuple<D3DXVECTOR3, int> kRows[] = {{{0, 0, 50}, -1},  {{-60, 0, 50}, 0},  {{60, 0, 50}, 1},
                                                      {{0, -60, 50}, 2}, {{0, 60, 50}, 3},   {{0, 0, 0.5f}, 4},
                                                      {{0, 0, 101}, 5},  {{49, -49, 50}, -1}};
    for (const auto& [point, outside] : kRows) {
        for (int p = 0; p < 6; ++p) {
            const float distance = D3DXVec3Dot(planes[p].normal, point - planes[p].point);
            EXPECT_EQ(distance > 0, p == outside) << p << " " << point.x << " " << point.y;
        }
    }
}

TEST(ViewPlanes, FollowTheView) {
    D3DXMATRIX view, projection;
    const D3DXVECTOR3 eye(10, 20, 30), at(10, 10, 30), up(0, 0, 1);
    D3DXMatrixLookAtLH(&view, &eye, &at, &up);
    D3DXMatrixPerspectiveFovLH(&projection, 1, 1, 1, 100);
    ViewPlane planes[6];
    ComputeViewPlanes(view, projection, planes);
    EXPECT_TRUE(SphereVisible(planes, {10, -20, 30}, 0));
    EXPECT_FALSE(SphereVisible(planes, {10, 60, 30}, 0));
    EXPECT_FALSE(SphereVisible(planes, {60, -20, 30}, 10));
}

KRN_ClipObject Bounds(std::uint32_t mode) {
    KRN_ClipObject bounds;
    bounds.clip_mode = mode;
    bounds.sphere_centre = {1, 0, 0};
    bounds.sphere_radius = 2;
    bounds.box_minimum = {0, -1, -1};
    bounds.box_maximum = {2, 1, 1};
    return bounds;
}

TEST(Bounds, AreTestedByTheirMode) {
    ViewPlane planes[6];
    MakePlanes(planes);
    // clang-format off
    constexpr struct { const char* name; std::uint32_t mode; float x, z; bool visible; } kRows[] = {
        {"never culled", 0, 500, 50, true},
        {"inside", 3, 0, 50, true},
        {"sphere out", 1, 60, 50, false},
        {"box out", 2, 60, 50, false},
        {"behind", 3, 0, -10, false},
        {"sphere touches the side, box does not", 3, 51.5f, 50, false},
        {"sphere alone touches", 1, 51.5f, 50, true},
        {"box over the side", 2, 49, 50, true},
        {"beyond", 2, 0, 200, false},
    };
    // clang-format on
    for (const auto& row : kRows) {
        D3DXMATRIX world;
        D3DXMatrixTranslation(&world, row.x, 0, row.z);
        EXPECT_EQ(BoundsVisible(planes, Bounds(row.mode), world), row.visible) << row.name;
    }
}

TEST(Bounds, TheSphereGrowsWithTheLargestScale) {
    ViewPlane planes[6];
    MakePlanes(planes);
    D3DXMATRIX world = {{{1, 0, 0, 0}, {0, 30, 0, 0}, {0, 0, 1, 0}, {100, 0, 50, 1}}};
    EXPECT_TRUE(BoundsVisible(planes, Bounds(1), world));
    world.m[1][1] = 1;
    EXPECT_FALSE(BoundsVisible(planes, Bounds(1), world));
}

TEST(Bounds, ABoxAroundTheWholeViewIsVisible) {
    ViewPlane planes[6];
    MakePlanes(planes);
    KRN_ClipObject bounds;
    bounds.clip_mode = 2;
    bounds.box_minimum = {-500, -500, -500};
    bounds.box_maximum = {500, 500, 500};
    EXPECT_TRUE(BoundsVisible(planes, bounds, kIdentityMatrix)) << "no corner inside, no plane that parts them";
}

}   // namespace
}   // namespace sparkrig
