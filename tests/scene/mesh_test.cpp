#include <cmath>
#include <cstring>

#include "scene/clip_object.h"
#include "scene/mesh.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

TEST(Mesh, GetsOneGreyMaterialForEachGroup) {
    KRN_Mesh mesh;
    mesh.CreateGeometry({.faces = 4, .vertices = 6, .groups = 3, .format = 0x112});
    ASSERT_EQ(mesh.MaterialCount(), 3);
    EXPECT_EQ(mesh.Material(2).colours.Diffuse, (D3DCOLORVALUE{0.9f, 0.9f, 0.9f, 1}));
    EXPECT_EQ(mesh.Material(2).colours.Specular, (D3DCOLORVALUE{0, 0, 0, 1}));
    mesh.Material(1).two_sided = true;
    mesh.CreateGeometry({.faces = 1, .vertices = 3, .groups = 3, .format = 0x112, .make_records = false});
    EXPECT_TRUE(mesh.Material(1).two_sided) << "kept";
    EXPECT_EQ(ErrorOf([&] {
                  mesh.CreateGeometry({.faces = 1, .vertices = 3, .groups = 2, .format = 0x112, .make_records = false});
              }),
              "KRN_Mesh: *undefined*: nrMat does not match!");
    mesh.CreateGeometry({.faces = 1, .vertices = 3, .groups = 2, .format = 0x112});
    EXPECT_FALSE(mesh.Material(1).two_sided) << "cleared first";
}

TEST(Mesh, FailuresAreErrors) {
    KRN_Mesh mesh;
    mesh.SetNodeName("Roof");
    EXPECT_EQ(ErrorOf([&] { mesh.CreateGeometry({.faces = 1, .vertices = 65536, .format = 0x112}); }),
              "KRN_Mesh: Roof: Number of vertices too high: 65536 - only 65535 allowed");
    EXPECT_EQ(ErrorOf([&] { mesh.SortByGroup(); }), "KRN_Mesh: Roof: OptimizeInplace failed: D3DERR_INVALIDCALL");
    mesh.CreateGeometry({.faces = 1, .vertices = 3, .format = 0x112}).indices[2] = 3;
    EXPECT_EQ(ErrorOf([&] { mesh.SortByGroup(); }), "KRN_Mesh: Roof: OptimizeInplace failed: D3DERR_INVALIDCALL");
}

TEST(Mesh, BoundsHoldItsVertices) {
    KRN_Mesh mesh;
    MeshGeometry& geometry = mesh.CreateGeometry({.faces = 1, .vertices = 3, .format = 0x112});
    constexpr float kPoints[3][3] = {{-3, 5, 2}, {7, -1, 4}, {1, 2, 10}};
    for (std::uint32_t i = 0; i < 3; ++i) std::memcpy(geometry.Vertex(i), kPoints[i], sizeof kPoints[i]);
    mesh.ComputeBounds();
    EXPECT_EQ(mesh.clip_mode, 3u);
    EXPECT_EQ(mesh.box_minimum, D3DXVECTOR3(-3, -1, 2));
    EXPECT_EQ(mesh.box_maximum, D3DXVECTOR3(7, 5, 10));
    EXPECT_EQ(mesh.sphere_centre, D3DXVECTOR3(2, 2, 6));
    EXPECT_NEAR(mesh.sphere_radius, std::sqrt(25.0f + 9 + 16), 1e-5f);
}

/// Half a right angle to every side, from 1 to 100, along +z.
struct View {
    View() {
        D3DXMATRIX projection;
        D3DXMatrixPerspectiveFovLH(&projection, 1.5707963f, 1, 1, 100);
        ComputeViewPlanes(kIdentityMatrix, projection, planes);
    }
    ViewPlane planes[6];
};

TEST(ViewPlanes, PointOutwardsAndFollowTheView) {
    View view;
    constexpr std::tuple<D3DXVECTOR3, int> kRows[] = {{{0, 0, 50}, -1},  {{-60, 0, 50}, 0},  {{60, 0, 50}, 1},
                                                      {{0, -60, 50}, 2}, {{0, 60, 50}, 3},   {{0, 0, 0.5f}, 4},
                                                      {{0, 0, 101}, 5},  {{49, -49, 50}, -1}};
    for (const auto& [point, outside] : kRows) {
        for (int p = 0; p < 6; ++p) {
            const float distance = D3DXVec3Dot(view.planes[p].normal, point - view.planes[p].point);
            EXPECT_EQ(distance > 0, p == outside) << p << " " << point.x << " " << point.y;
        }
    }
    D3DXMATRIX look, projection;
    const D3DXVECTOR3 eye(10, 20, 30), at(10, 10, 30), up(0, 0, 1);
    D3DXMatrixLookAtLH(&look, &eye, &at, &up);
    D3DXMatrixPerspectiveFovLH(&projection, 1, 1, 1, 100);
    ComputeViewPlanes(look, projection, view.planes);
    EXPECT_TRUE(SphereVisible(view.planes, {10, -20, 30}, 0));
    EXPECT_FALSE(SphereVisible(view.planes, {10, 60, 30}, 0));
    EXPECT_FALSE(SphereVisible(view.planes, {60, -20, 30}, 10));
}

TEST(Bounds, AreTestedByTheirMode) {
    const View view;
    // clang-format off
    constexpr std::tuple<const char*, std::uint32_t, float, float, float, bool> kRows[] = {
        {"never culled",                          0, 500,   50,  1,    true},
        {"inside",                                3, 0,     50,  1,    true},
        {"sphere out",                            1, 60,    50,  1,    false},
        {"box out",                               2, 60,    50,  1,    false},
        {"behind",                                3, 0,     -10, 1,    false},
        {"sphere touches the side, box does not", 3, 51.5f, 50,  1,    false},
        {"sphere alone touches",                  1, 51.5f, 50,  1,    true},
        {"box over the side",                     2, 49,    50,  1,    true},
        {"beyond",                                2, 0,     200, 1,    false},
        {"sphere grows with the largest scale",   1, 100,   50,  30,   true},
        {"sphere of its own size",                1, 100,   50,  1,    false},
    };
    // clang-format on
    for (const auto& [name, mode, x, z, scale_y, visible] : kRows) {
        KRN_ClipObject bounds;
        bounds.clip_mode = mode;
        bounds.sphere_centre = {1, 0, 0};
        bounds.sphere_radius = 2;
        bounds.box_minimum = {0, -1, -1};
        bounds.box_maximum = {2, 1, 1};
        const D3DXMATRIX world = {{{1, 0, 0, 0}, {0, scale_y, 0, 0}, {0, 0, 1, 0}, {x, 0, z, 1}}};
        EXPECT_EQ(BoundsVisible(view.planes, bounds, world), visible) << name;
    }
    KRN_ClipObject around;
    around.clip_mode = 2;
    around.box_minimum = {-500, -500, -500};
    around.box_maximum = {500, 500, 500};
    EXPECT_TRUE(BoundsVisible(view.planes, around, kIdentityMatrix)) << "no corner inside, no plane that parts them";
}

}   // namespace
}   // namespace sparkrig
