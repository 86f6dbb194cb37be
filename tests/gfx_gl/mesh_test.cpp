// Meshes on the real device: pixels against formulas.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>

#include "gfx/geometry/device_maps.h"
#include "scene/mesh.h"
#include "tests/support/drawn_gfx.h"

namespace sparkrig {
namespace {

constexpr UINT kSize = 32;
constexpr std::size_t kMiddle = kSize * kSize / 2 + kSize / 2;

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

/// A square over the whole picture, drawn without perspective.
void BuildSquare(KRN_Mesh& mesh) {
    MeshGeometry& geometry = mesh.CreateGeometry({.faces = 2, .vertices = 4, .format = 0x112});
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

struct MeshPicture : testing::Test {
    MeshPicture() {
        gfx->SetTransform(D3DTS_PROJECTION, kIdentityMatrix);
        gfx->BeginScene();
        BuildSquare(mesh);
    }
    ~MeshPicture() override { mesh.Clear(); }
    std::shared_ptr<DeviceMaps> Map(D3DCOLOR texel) {
        auto map = std::make_shared<DeviceMaps>();
        gfx->CreateTexture(&map->texture, 1, 1, -1, D3DFMT_A8R8G8B8, 1);
        map->texture.Clear(texel, nullptr);
        map->texture.SetStageMap(0, MapKind::Diffuse, 1);
        map->layers = 1;
        return map;
    }
    /// Draws the mesh, and compares a pixel with the mode's formula.
    void Expect(double (*result)(const Channel&), D3DCOLOR texel, D3DCOLOR diffuse, D3DCOLOR back, int alpha,
                const std::string& what) {
        gfx->Clear(back, 1, nullptr);
        gfx->DrawMesh(&mesh, nullptr);
        const Rgb seen = ToRgb(gfx.Pixels()[kMiddle]), wanted = Expected(result, texel, diffuse, back, alpha);
        EXPECT_TRUE(Near(seen, wanted, 2)) << what << std::hex << " " << texel << " x " << diffuse << " on " << back
                                           << std::dec << ": " << seen << ", wanted " << wanted;
    }
    DrawnGfx gfx{kSize, kSize};
    KRN_Mesh mesh;
};

TEST_F(MeshPicture, EveryModeGivesItsFormula) {
    for (const D3DCOLOR texel : {0x80C8643Cu, 0xFF1EFA78u, 0x3CFF5005u}) {
        mesh.Textures(0).device = Map(texel);
        for (const D3DCOLOR diffuse : {0xB4DC8C5Au, 0xFFFFFFFFu, 0x1464C8FFu}) {
            mesh.Material(0).colours = Emitting(diffuse);
            for (const D3DCOLOR back : {0xFF283C50u, 0xFFAA5A0Au, 0xFFFF8040u}) {
                for (const int alpha : {255, 77, 140}) {
                    for (const auto& [mode, result] : kModes) {
                        gfx->SetBlendingMode(7, kAlphaBefore, 0);
                        gfx->SetBlendingMode(mode, alpha, 0);
                        EXPECT_EQ(gfx->BlendingMode(), mode == -1 ? 1 : mode == 10 ? 7 : mode);
                        Expect(result, texel, diffuse, back, alpha,
                               "mode " + std::to_string(mode) + " alpha " + std::to_string(alpha));
                    }
                }
            }
        }
    }
}

/// The mode that a material chooses, and what it makes of one that is set already.
TEST_F(MeshPicture, MaterialsBlendByTheirOpacity) {
    constexpr std::tuple<const char*, int, int, bool, MaterialBlend, float, int, int> kRows[] = {
        {"opaque", 1, 255, false, MaterialBlend::Normal, 0, 1, 255},
        {"normal", 1, 255, true, MaterialBlend::Normal, 0.25f, 7, 191},
        {"additive", 1, 255, true, MaterialBlend::Additive, 0.5f, 12, 128},
        {"subtractive", 1, 255, true, MaterialBlend::Subtractive, 0.5f, 17, 128},
        {"opaque in a fading effect", 7, 128, false, MaterialBlend::Normal, 0, 7, 128},
        {"normal in a fading effect", 7, 128, true, MaterialBlend::Normal, 0.5f, 7, 64},
        {"normal in an additive effect", 12, 128, true, MaterialBlend::Normal, 0.5f, 12, 64},
    };
    constexpr D3DCOLOR kColour = 0xFFC8643C, kTexel = 0xC0A0E064;
    gfx->SetLighting(false, nullptr);
    gfx->SetColourOverride(&kColour);
    for (const D3DCOLOR texel : {kTexel, 0xFFFFFFFF}) {   // the second stands for no map
        mesh.Textures(0).device = texel == kTexel ? Map(texel) : nullptr;
        for (const auto& [name, mode, alpha, blending, blend, transparency, drawn_mode, drawn_alpha] : kRows) {
            MeshMaterial& material = mesh.Material(0);
            material.blending = blending;
            material.blend = blend;
            material.transparency = transparency;
            gfx->SetBlendingMode(mode, alpha, 0);
            const auto* drawn = std::ranges::find(kModes, drawn_mode, &Mode::mode);
            Expect(drawn->result, texel, kColour, 0xFF283C50, drawn_alpha, name);
            EXPECT_EQ(gfx->BlendingMode(), mode) << name;
        }
    }
}

}   // namespace
}   // namespace sparkrig
