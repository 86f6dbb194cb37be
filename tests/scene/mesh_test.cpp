#include "scene/mesh.h"

#include <cmath>
#include <cstring>
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

}   // namespace
}   // namespace sparkrig
