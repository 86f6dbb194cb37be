// Meshes on the real device: pixels against formulas.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "gfx/geometry/device_maps.h"
#include "gfx/geometry/skinning.h"
#include "gfx/gfx.h"
#include "platform/window/window.h"
#include "scene/scene.h"
#include "scene/vertex_codec.h"
#include "tests/support/canvas.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

constexpr UINT kSize = 32;
constexpr std::size_t kMiddle = kSize * kSize / 2 + kSize / 2;
constexpr D3DCOLOR kBack = 0xFF283C50;

/// One channel of a pixel that is drawn, all in 0..1.
struct Channel {
    double texel, source, back;   // source: the texel times the diffuse colour
    double texel_alpha, diffuse_alpha, given_alpha;
};

double Mix(double alpha, const Channel& c) { return alpha * c.source + (1 - alpha) * c.back; }

constexpr int kAlphaBefore = 200;   // that mode 10 finds

struct Mode {
    int mode;
    double (*result)(const Channel& c);
};
constexpr Mode kModes[] = {
    {-1, [](const Channel& c) { return c.source; }},
    {1, [](const Channel& c) { return c.source; }},
    {2, [](const Channel& c) { return c.source + c.back * (1 - c.source); }},
    {3, [](const Channel& c) { return c.source * c.texel_alpha * c.diffuse_alpha + c.back; }},
    {4, [](const Channel& c) { return c.source * (1 - c.back) + c.back * (1 - c.source); }},
    {5, [](const Channel& c) { return c.back * (1 - c.source); }},
    {6, [](const Channel& c) { return c.back * c.source; }},
    {7, [](const Channel& c) { return Mix(c.given_alpha * c.texel_alpha, c); }},
    {9, [](const Channel& c) { return Mix(c.texel_alpha * c.diffuse_alpha, c); }},
    {10, [](const Channel& c) { return Mix(c.given_alpha * kAlphaBefore / 255 * c.texel_alpha, c); }},
    {11, [](const Channel& c) { return c.back * (1 - c.source); }},
    {12, [](const Channel& c) { return c.source * c.given_alpha * c.texel_alpha + c.back; }},
    {13, [](const Channel& c) { return Mix(c.given_alpha, c); }},
    {14, [](const Channel& c) { return c.back; }},
    {15, [](const Channel& c) { return c.texel; }},
    {16, [](const Channel& c) { return c.texel + c.back; }},
    {17, [](const Channel& c) { return c.back * (1 - c.source); }},
};

Rgb Expected(double (*result)(const Channel&), D3DCOLOR texture, D3DCOLOR diffuse, D3DCOLOR back, int alpha) {
    const auto channel = [&](int shift) {
        const auto part = [shift](D3DCOLOR colour) { return (colour >> shift & 255) / 255.0; };
        const double value = result({part(texture), part(texture) * part(diffuse), part(back), (texture >> 24) / 255.0,
                                     (diffuse >> 24) / 255.0, alpha / 255.0});
        return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
    };
    return {channel(16), channel(8), channel(0)};
}

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

/// A square over the whole picture, drawn without perspective.
void BuildSquare(KRN_Mesh& mesh, DWORD format) {
    MeshGeometry& geometry = mesh.CreateGeometry({.faces = 2, .vertices = 4, .format = format});
    for (std::uint32_t i = 0; i < 4; ++i) {
        const float place[3] = {i & 1 ? 1.0f : -1.0f, i & 2 ? 1.0f : -1.0f, 0.5f};
        std::memcpy(geometry.Vertex(i), place, sizeof place);
    }
    geometry.indices = {0, 2, 1, 1, 2, 3};
    mesh.SortByGroup();
}

/// What no light changes.
D3DMATERIAL9 Emitting(D3DCOLOR colour) {
    const auto part = [colour](int shift) { return static_cast<float>(colour >> shift & 255) / 255; };
    return {{0, 0, 0, part(24)}, {}, {}, {part(16), part(8), part(0), 0}, 1};
}

class MeshPicture : public testing::Test {
  protected:
    MeshPicture() {
        KeepDriverLoaded();
        RegisterClassExA({Ignore, "MESHES"});
        gfx_.InitDevice(CreateWindowExA("MESHES", "", 0, 0, kSize, kSize), 1, nullptr, 16, 0, 1, 0, 0);
        gfx_.SetTransform(D3DTS_PROJECTION, kIdentityMatrix);
        gfx_.BeginScene();
    }
    std::shared_ptr<DeviceMaps> Map(D3DCOLOR texel) {
        auto map = std::make_shared<DeviceMaps>();
        gfx_.CreateTexture(&map->texture, 1, 1, -1, D3DFMT_A8R8G8B8, 1);
        map->texture.Clear(texel, nullptr);
        map->texture.SetStageMap(0, MapKind::Diffuse, 1);
        map->layers = 1;
        return map;
    }
    std::vector<D3DCOLOR> Draw(KRN_Mesh& mesh, const D3DXMATRIX* world, D3DCOLOR back) {
        std::vector<D3DCOLOR> pixels;
        UINT width, height;
        gfx_.Clear(back, 1, nullptr);
        gfx_.DrawMesh(&mesh, world);
        gfx_.ReadBackBuffer(pixels, width, height);
        return pixels;
    }
    KRN_Gfx gfx_;
};

TEST_F(MeshPicture, EveryModeGivesItsFormula) {
    KRN_Mesh mesh;
    BuildSquare(mesh, 0x112);
    for (const D3DCOLOR texel : {0x80C8643Cu, 0xFF1EFA78u, 0x3CFF5005u}) {
        mesh.Textures(0).device = Map(texel);
        for (const D3DCOLOR diffuse : {0xB4DC8C5Au, 0xFFFFFFFFu, 0x1464C8FFu}) {
            mesh.Material(0).colours = Emitting(diffuse);
            for (const D3DCOLOR back : {0xFF283C50u, 0xFFAA5A0Au, 0xFFFF8040u}) {
                for (const int alpha : {255, 77, 140}) {
                    for (const auto& [mode, result] : kModes) {
                        gfx_.SetBlendingMode(7, kAlphaBefore, 0);
                        gfx_.SetBlendingMode(mode, alpha, 0);
                        EXPECT_EQ(gfx_.BlendingMode(), mode == -1 ? 1 : mode == 10 ? 7 : mode);
                        const Rgb seen = ToRgb(Draw(mesh, nullptr, back)[kMiddle]);
                        const Rgb wanted = Expected(result, texel, diffuse, back, alpha);
                        EXPECT_TRUE(Near(seen, wanted, 2))
                            << "mode " << mode << " alpha " << alpha << std::hex << " of " << texel << " x " << diffuse
                            << " on " << back << std::dec << ": " << seen << ", wanted " << wanted;
                    }
                }
            }
        }
    }
    mesh.Clear();
}

/// The mode that a material chooses, and what it makes of one that is set already.
TEST_F(MeshPicture, MaterialsBlendByTheirOpacity) {
    constexpr struct {
        const char* name;
        int mode, alpha;   // set before
        bool blending;
        MaterialBlend blend;
        float transparency;
        int drawn_mode, drawn_alpha;
    } kRows[] = {
        {"opaque", 1, 255, false, MaterialBlend::Normal, 0, 1, 255},
        {"normal", 1, 255, true, MaterialBlend::Normal, 0.25f, 7, 191},
        {"additive", 1, 255, true, MaterialBlend::Additive, 0.5f, 12, 128},
        {"subtractive", 1, 255, true, MaterialBlend::Subtractive, 0.5f, 17, 128},
        {"opaque in a fading effect", 7, 128, false, MaterialBlend::Normal, 0, 7, 128},
        {"normal in a fading effect", 7, 128, true, MaterialBlend::Normal, 0.5f, 7, 64},
        {"normal in an additive effect", 12, 128, true, MaterialBlend::Normal, 0.5f, 12, 64},
    };
    constexpr D3DCOLOR kColour = 0xFFC8643C, kTexel = 0xC0A0E064;
    KRN_Mesh mesh;
    BuildSquare(mesh, 0x112);
    gfx_.SetLighting(false, nullptr);
    gfx_.SetColourOverride(&kColour);
    for (const D3DCOLOR texel : {kTexel, 0xFFFFFFFF}) {   // the second stands for no map
        mesh.Textures(0).device = texel == kTexel ? Map(texel) : nullptr;
        for (const auto& row : kRows) {
            MeshMaterial& material = mesh.Material(0);
            material.blending = row.blending;
            material.blend = row.blend;
            material.transparency = row.transparency;
            gfx_.SetBlendingMode(row.mode, row.alpha, 0);
            const Rgb seen = ToRgb(Draw(mesh, nullptr, kBack)[kMiddle]);
            const auto* mode = std::ranges::find(kModes, row.drawn_mode, &Mode::mode);
            const Rgb wanted = Expected(mode->result, texel, kColour, kBack, row.drawn_alpha);
            EXPECT_TRUE(Near(seen, wanted, 2)) << row.name << " " << seen << ", wanted " << wanted;
            EXPECT_EQ(gfx_.BlendingMode(), row.mode) << row.name;
        }
    }
    mesh.Clear();
}

/// The plain sum in double precision, computed, and seen as the picture of a mesh that stands there.
TEST_F(MeshPicture, SkinnedVerticesAreTheSumOfTheirBones) {
    constexpr int kBones = 4;
    KRN_Mesh skinned, placed;
    BuildSquare(skinned, 0x111C);
    BuildSquare(placed, 0x112);
    gfx_.SetLighting(false, nullptr);
    skinned.influences = kBones;
    KRN_3dScene scene;
    for (int i = 0; i < kBones; ++i) {
        const float n = static_cast<float>(i), size = 0.7f - 0.1f * n, c = size * std::cos(n / 4),
                    s = size * std::sin(n / 4);
        KRN_3dObject& bone = scene.helpers.Add();
        bone.SetWorldMatrix({{{c, s, 0, 0}, {-s, c, 0, 0}, {0, 0, 0.5f, 0}, {0.1f * n, -0.05f, 0.1f, 1}}});
        skinned.bones.emplace_back().offset = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0.1f, 0.2f, 0, 1}}};
        skinned.bone_nodes.push_back(&bone);
    }
    const D3DXMATRIX world = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0.05f, -0.1f, 0.1f, 1}}};
    std::vector<D3DXMATRIX> palette;
    MakePalette(skinned, world, palette);
    for (std::uint32_t i = 0; i < 4; ++i) {
        const float first = 0.1f * static_cast<float>(i), weights[kBones] = {first, 0.4f, 0.25f, 0.35f - first};
        const std::uint8_t indices[kBones] = {0, 1, 2, 3};
        std::uint8_t* vertex = skinned.Geometry()->Vertex(i);
        std::memcpy(vertex + 12, weights, 3 * sizeof(float));
        std::memcpy(vertex + BoneIndexOffset(skinned.Geometry()->layout), indices, sizeof indices);
        float p[3], sum[3];
        std::memcpy(p, vertex, sizeof p);
        for (int axis = 0; axis < 3; ++axis) {
            double total = 0;
            for (int k = 0; k < kBones; ++k) {
                const auto& m = palette[static_cast<std::size_t>(k)].m;
                total += double{weights[k]} * (double{p[0]} * m[0][axis] + double{p[1]} * m[1][axis] +
                                               double{p[2]} * m[2][axis] + m[3][axis]);
            }
            sum[axis] = static_cast<float>(total);
        }
        PlacedVertex computed;
        PlaceVertices(*skinned.Geometry(), i, palette, {&computed, 1});
        EXPECT_LT(D3DXVec3Length(computed.position - D3DXVECTOR3(sum[0], sum[1], sum[2])), 1e-5f) << i;
        std::memcpy(placed.Geometry()->Vertex(i), sum, sizeof sum);
    }
    const std::vector<D3DCOLOR> expected = Draw(placed, nullptr, kBack), seen = Draw(skinned, &world, kBack);
    EXPECT_GT(seen.size() - static_cast<std::size_t>(std::ranges::count(seen, kBack)), 60u);
    std::size_t differing = 0;
    for (std::size_t i = 0; i < seen.size(); ++i) differing += seen[i] != expected[i];
    EXPECT_LE(differing, 2u);
    skinned.Clear();
    placed.Clear();
}

}   // namespace
}   // namespace sparkrig
