// Meshes on the real device: pixels against formulas.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <memory>

#include "gfx/geometry/device_maps.h"
#include "gfx/geometry/skinning.h"
#include "gfx/geometry/sphere_reflection.h"
#include "gfx/gfx.h"
#include "platform/window/window.h"
#include "scene/scene.h"
#include "scene/vertex_codec.h"
#include "tests/base/reports.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

constexpr UINT kSize = 64;
constexpr D3DCOLOR kBack = 0xFF283C50;

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

/// A square over the whole picture, drawn without perspective.
void BuildSquare(KRN_Mesh& mesh, DWORD format, std::uint32_t groups = 1) {
    MeshGeometry& geometry =
        mesh.CreateGeometry({.faces = 2 * groups, .vertices = 4 * groups, .groups = groups, .format = format});
    const int uv = geometry.layout.texture_offset[0];
    for (std::uint32_t i = 0; i < geometry.VertexCount(); ++i) {
        const float x = i & 1 ? 1.0f : -1.0f, y = i & 2 ? 1.0f : -1.0f;
        const float place[3] = {x, y, 0.5f}, normal[3] = {0, 0, -1}, map[2] = {x / 2 + 0.5f, 0.5f - y / 2};
        std::memcpy(geometry.Vertex(i), place, sizeof place);
        std::memcpy(geometry.Vertex(i) + geometry.layout.normal, normal, sizeof normal);
        std::memcpy(geometry.Vertex(i) + uv, map, sizeof map);
    }
    for (std::uint32_t i = 0; i < geometry.indices.size(); ++i) {
        constexpr std::uint16_t kCorners[] = {0, 2, 1, 1, 2, 3};
        geometry.indices[i] = static_cast<std::uint16_t>(kCorners[i % 6] + 4 * (i / 6));
        geometry.groups[i / 3] = static_cast<std::uint16_t>(i / 6);
    }
    mesh.SortByGroup();
}

class MeshPicture : public testing::Test {
  protected:
    MeshPicture() {
        KeepDriverLoaded();
        RegisterClassExA({Ignore, "MESHES"});
        gfx_.InitDevice(CreateWindowExA("MESHES", "", 0, 0, kSize, kSize), 1, nullptr, 16, 0, 1, 0, 0);
        gfx_.SetTransform(D3DTS_VIEW, kIdentityMatrix);
        gfx_.SetTransform(D3DTS_PROJECTION, kIdentityMatrix);
        gfx_.BeginScene();
        gfx_.Clear(kBack, 1, nullptr);
    }
    Rgb At(UINT x, UINT y) {
        UINT width, height;
        gfx_.ReadBackBuffer(pixels_, width, height);
        return ToRgb(pixels_[y * width + x]);
    }
    /// A map of one colour.
    std::shared_ptr<DeviceMaps> Map(D3DCOLOR texel) {
        auto maps = std::make_shared<DeviceMaps>();
        gfx_.CreateTexture(&maps->texture, 1, 1, -1, D3DFMT_A8R8G8B8, 1);
        maps->texture.Clear(texel, nullptr);
        maps->texture.SetStageMap(0, MapKind::Diffuse, 1);
        maps->layers = 1;
        return maps;
    }

    KRN_Gfx gfx_;
    std::vector<D3DCOLOR> pixels_;
};

double Clamped(double x) { return std::clamp(x, 0.0, 1.0); }

/// What the material alone decides, and what it does to a mode that is set already.
TEST_F(MeshPicture, MaterialsBlendByTheirOpacity) {
    struct Channel {
        double source, back, alpha;   // alpha: texel's, times opacity, times what is set
    };
    constexpr auto kMix = [](const Channel& c) { return c.alpha * c.source + (1 - c.alpha) * c.back; };
    constexpr auto kAdd = [](const Channel& c) { return c.back + c.alpha * c.source; };
    constexpr auto kSubtract = [](const Channel& c) { return c.back * (1 - c.source); };
    constexpr struct {
        const char* name;
        int mode, alpha;   // set before
        bool blending;
        MaterialBlend blend;
        float transparency;
        double (*result)(const Channel& c);
        double factor;   // of the texel's alpha
    } kRows[] = {
        {"opaque", 1, 255, false, MaterialBlend::Normal, 0, [](const Channel& c) { return c.source; }, 1},
        {"normal", 1, 255, true, MaterialBlend::Normal, 0.25f, kMix, 0.75},
        {"additive", 1, 255, true, MaterialBlend::Additive, 0.5f, kAdd, 0.5},
        {"subtractive", 1, 255, true, MaterialBlend::Subtractive, 0.5f, kSubtract, 1},
        {"opaque in a fading effect", 7, 128, false, MaterialBlend::Normal, 0, kMix, 128 / 255.0},
        {"normal in a fading effect", 7, 128, true, MaterialBlend::Normal, 0.5f, kMix, 64 / 255.0},
        {"normal in an additive effect", 12, 128, true, MaterialBlend::Normal, 0.5f, kAdd, 64 / 255.0},
    };
    constexpr D3DCOLOR kColours[] = {0xFFC8643C, 0xFFFFFFFF};   // that the mesh is drawn in
    constexpr D3DCOLOR kTexel = 0xC0A0E064;
    KRN_Mesh mesh;
    BuildSquare(mesh, 0x112);
    gfx_.SetLighting(false, nullptr);
    for (const bool mapped : {true, false}) {
        mesh.Textures(0).device = mapped ? Map(kTexel) : nullptr;
        for (const auto& row : kRows) {
            for (const D3DCOLOR colour : kColours) {
                MeshMaterial& material = mesh.Material(0);
                material.blending = row.blending;
                material.blend = row.blend;
                material.transparency = row.transparency;
                gfx_.SetBlendingMode(row.mode, row.alpha, 0);
                gfx_.SetColourOverride(&colour);
                gfx_.Clear(kBack, 1, nullptr);
                gfx_.DrawMesh(&mesh, nullptr);
                EXPECT_EQ(gfx_.BlendingMode(), row.mode) << row.name;
                const auto channel = [&](int shift) {
                    const auto part = [shift](D3DCOLOR c) { return (c >> shift & 255) / 255.0; };
                    const double texel = mapped ? part(kTexel) : 1, alpha = mapped ? 0xC0 / 255.0 : 1;
                    const Channel c = {part(colour) * texel, part(kBack), alpha * row.factor};
                    return static_cast<int>(std::lround(Clamped(row.result(c)) * 255));
                };
                const Rgb expected = {channel(16), channel(8), channel(0)}, seen = At(kSize / 2, kSize / 2);
                EXPECT_TRUE(Near(seen, expected, 2))
                    << row.name << (mapped ? " " : " without a map ") << seen << " for " << expected;
            }
        }
    }
    mesh.Clear();
}

/// The plain sum over a vertex's bones, in double precision.
std::array<double, 3> PlainSum(const float (&p)[3], const double (&weights)[4],
                               const std::vector<D3DXMATRIX>& palette) {
    std::array<double, 3> sum = {};
    for (std::size_t bone = 0; bone < 4; ++bone)
        for (int c = 0; c < 3; ++c) {
            const auto& m = palette[bone].m;
            sum[c] +=
                weights[bone] * (double{p[0]} * m[0][c] + double{p[1]} * m[1][c] + double{p[2]} * m[2][c] + m[3][c]);
        }
    return sum;
}

TEST_F(MeshPicture, SkinnedVerticesAreTheSumOfTheirBones) {
    KRN_Mesh skinned, placed;
    BuildSquare(skinned, 0x111C);
    BuildSquare(placed, 0x112);
    skinned.influences = 4;
    KRN_3dScene scene;
    D3DXMATRIX world, turn;
    D3DXMatrixTranslation(&world, 0.05f, -0.1f, 0.1f);
    for (int i = 0; i < 4; ++i) {
        KRN_3dObject& bone = scene.helpers.Add();
        const float angle = 0.3f * static_cast<float>(i) - 0.2f, size = 0.7f - 0.1f * static_cast<float>(i);
        turn = {{{size * std::cos(angle), size * std::sin(angle), 0, 0},
                 {-size * std::sin(angle), size * std::cos(angle), 0, 0},
                 {0, 0, 0.5f, 0},
                 {0.1f * static_cast<float>(i), -0.05f, 0.1f, 1}}};
        bone.SetWorldMatrix(turn);
        skinned.bones.emplace_back().offset = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0.1f, 0.2f, 0, 1}}};
        skinned.bone_nodes.push_back(&bone);
    }
    std::vector<D3DXMATRIX> palette;
    MakePalette(skinned, world, palette);
    for (std::uint32_t i = 0; i < 4; ++i) {
        const float weights[3] = {0.1f * static_cast<float>(i), 0.4f, 0.25f};
        const std::uint8_t indices[4] = {0, 1, 2, 3};
        std::uint8_t* vertex = skinned.Geometry()->Vertex(i);
        std::memcpy(vertex + 12, weights, sizeof weights);
        std::memcpy(vertex + BoneIndexOffset(skinned.Geometry()->layout), indices, sizeof indices);
        float p[3];
        std::memcpy(p, vertex, sizeof p);
        const auto sum = PlainSum(p, {weights[0], 0.4, 0.25, 0.35 - weights[0]}, palette);
        PlacedVertex computed;
        PlaceVertices(*skinned.Geometry(), i, palette, {&computed, 1});
        const D3DXVECTOR3 expected(static_cast<float>(sum[0]), static_cast<float>(sum[1]), static_cast<float>(sum[2]));
        EXPECT_LT(D3DXVec3Length(computed.position - expected), 1e-5f) << i;
        std::memcpy(placed.Geometry()->Vertex(i), &expected, sizeof expected);
    }
    gfx_.SetLighting(false, nullptr);
    gfx_.DrawMesh(&placed, nullptr);
    At(0, 0);
    const std::vector<D3DCOLOR> of_placed = pixels_;
    gfx_.Clear(kBack, 1, nullptr);
    gfx_.DrawMesh(&skinned, &world);
    At(0, 0);
    int differing = 0, drawn = 0;
    for (std::size_t i = 0; i < pixels_.size(); ++i) {
        differing += pixels_[i] != of_placed[i];
        drawn += pixels_[i] != kBack;
    }
    EXPECT_GT(drawn, 200);
    EXPECT_LE(differing, 2) << "of " << drawn;
    skinned.Clear();
    placed.Clear();
}

}   // namespace
}   // namespace sparkrig
