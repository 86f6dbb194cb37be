// Pixels against formulas. Effects that read what was drawn: the scene's way to the screen, the copy of the screen, and
// passes through buffers; then meshes in every blending mode.
#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>

#include "gfx/device/surface.h"
#include "gfx/geometry/device_maps.h"
#include "gfx/shaders/shader_effect.h"
#include "scene/mesh.h"
#include "tests/support/drawn_gfx.h"

namespace sparkrig {
namespace {

struct ScreenBufferPicture : testing::Test {
    ScreenBufferPicture() { Resize(96, 64); }

    void Resize(int width, int height) {
        SDL_SetWindowSize(NativeWindow(gfx_.window), width, height);
        gfx_->PresentFrame();
        width_ = width;
        height_ = height;
    }
    void Load(KRN_ShaderEffect& effect, const std::string& file) {
        gfx_->LoadShaderEffect(effect, ("tests/gfx_gl/" + file).c_str(), true, 0, true);
        ASSERT_TRUE(effect.IsValid());
    }

    /// Of the picture that Paint draws: blocks of 4 x 4, neighbours clearly different, no channel like another.
    static D3DCOLOR Painted(int x, int y) {
        const DWORD column = static_cast<DWORD>(x) / 4, row = static_cast<DWORD>(y) / 4;
        return Argb(255, column * 88 % 256, row * 60 % 256, (column + row) % 2 * 120 + 40);
    }
    void Paint() {
        for (int y = 0; y < height_; y += 4) {
            for (int x = 0; x < width_; x += 4) {
                const D3DRECT block = {x, y, x + 4, y + 4};
                gfx_->Clear(Painted(x, y), 1, &block);
            }
        }
    }
    using Formula = std::function<Rgb(int x, int y)>;
    static Rgb AsPainted(int x, int y) { return ToRgb(Painted(x, y)); }
    static Rgb Inverted(int x, int y) {
        const Rgb colour = AsPainted(x, y);
        return {255 - colour.r, 255 - colour.g, 255 - colour.b};
    }
    /// What blur_and_blocks.fx makes of the painted picture.
    Rgb Blurred(int x, int y) const {
        const Rgb block = AsPainted(x, y);
        const Rgb left = AsPainted(std::max(x - 1, 0), y), right = AsPainted(std::min(x + 1, width_ - 1), y);
        const auto sum = [](int b, int l, int r) { return b / 2 + (l + r) / 8; };
        return {sum(block.r, left.r, right.r), sum(block.g, left.g, right.g), sum(block.b, left.b, right.b)};
    }
    void Expect(const std::vector<D3DCOLOR>& pixels, const Formula& formula, int tolerance) const {
        ASSERT_EQ(pixels.size(), static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
        int wrong = 0;
        for (int y = 0; y < height_; ++y) {
            for (int x = 0; x < width_; ++x) {
                const Rgb is = ToRgb(pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                                            static_cast<std::size_t>(x)]),
                          expected = formula(x, y);
                if (Near(is, expected, tolerance)) continue;
                if (++wrong < 5) ADD_FAILURE() << x << ", " << y << ": " << is << ", not " << expected;
            }
        }
        EXPECT_EQ(wrong, 0);
    }
    void ExpectScreen(const Formula& formula, int tolerance = 1) {
        Expect(ReadBackBuffer(*gfx_->Device()), formula, tolerance);
    }

    DrawnGfx gfx_{160, 120};
    int width_ = 0, height_ = 0;
};

/// Inside the scene the copy is of the scene, on its way to the screen it is the scene.
TEST_F(ScreenBufferPicture, TheSceneReachesTheScreenThroughItsTexture) {
    KRN_ShaderEffect invert;
    Load(invert, "invert.fx");
    const Rgb screen = {90, 60, 30};
    for (const bool multisample : {false, true}) {
        gfx_->SetMultisampleTarget(multisample);
        gfx_->BeginScene();   // without post-render effects
        gfx_->Clear(Argb(255, 90, 60, 30), 1, nullptr);
        gfx_->EndScene();
        gfx_->InitPostRenderEffects();
        gfx_->BeginScene();
        Paint();
        gfx_->DrawScreenEffect(invert);
        gfx_->EndScene();
        ExpectScreen([&](int, int) { return screen; });
        DevicePtr<IDirect3DSurface9> level;
        gfx_->SceneTexture()->GetSurfaceLevel(0, level.Receive());
        Expect(ReadTarget(*gfx_->Device(), *level), Inverted, 1);
        EXPECT_TRUE(gfx_->DrawScene(invert));
        ExpectScreen(AsPainted);
        EXPECT_EQ(gfx_->MultisampleTarget(), multisample) << "the device has one";
        gfx_->ReleasePostRenderEffects();
    }
}

TEST_F(ScreenBufferPicture, PassesThroughBuffersGiveTheFormulaInEverySize) {
    KRN_ShaderEffect effect;
    Load(effect, "blur_and_blocks.fx");
    for (const int width : {96, 160}) {
        Resize(width, 80);
        gfx_->BeginScene();
        Paint();
        gfx_->DrawScreenEffect(effect);
        gfx_->EndScene();
        ExpectScreen([this](int x, int y) { return Blurred(x, y); }, 2);
    }
}

TEST_F(ScreenBufferPicture, TheScreenCopyIsTheViewportAsItWasDrawn) {
    KRN_ShaderEffect invert;
    Load(invert, "invert.fx");
    const RECT viewports[] = {{0, 0, 96, 64}, {8, 12, 60, 48}, {33, 5, 96, 41}};
    for (const RECT& view : viewports) {
        gfx_->SetViewPort(0, 0, width_, height_, 0, 1);
        gfx_->BeginScene();
        Paint();
        gfx_->SetViewPort(view.left, view.top, view.right, view.bottom, 0, 1);
        gfx_->DrawScreenEffect(invert);
        gfx_->EndScene();
        ExpectScreen([&](int x, int y) {
            const bool inside = x >= view.left && x < view.right && y >= view.top && y < view.bottom;
            return inside ? Inverted(x, y) : AsPainted(x, y);
        });
    }
}

TEST_F(ScreenBufferPicture, BuffersStandForTheViewport) {
    KRN_ShaderEffect effect;
    Load(effect, "blur_and_blocks.fx");
    gfx_->BeginScene();
    Paint();
    gfx_->SetViewPort(32, 16, 64, 48, 0, 1);
    gfx_->DrawScreenEffect(effect);
    gfx_->EndScene();
    const std::vector<D3DCOLOR> pixels = gfx_.Pixels();
    for (const int x : {4, 31, 64, 90}) EXPECT_TRUE(Near(ToRgb(pixels[30 * 96 + x]), AsPainted(x, 30), 1)) << x;
    for (const int x : {34, 41, 53, 62}) {   // in the middle of blocks neighbours are equal
        const Rgb block = AsPainted(x, 30);
        const Rgb expected = {block.r * 3 / 4, block.g * 3 / 4, block.b * 3 / 4};
        EXPECT_TRUE(Near(ToRgb(pixels[30 * 96 + x]), expected, 2)) << x << ": " << ToRgb(pixels[30 * 96 + x]);
    }
}

TEST_F(ScreenBufferPicture, ListsDrawnInsideABufferPassGoThroughIt) {
    KRN_ShaderEffect effect;
    Load(effect, "place.fx");
    KRN_VertexListTemp<KRN_VertexPosTex> left(PrimitiveMode::TriangleStrip), right(PrimitiveMode::TriangleStrip);
    for (auto* list : {&left, &right}) {
        gfx_->CreateVertexList(list, 4, -1, false);
        constexpr KRN_VertexPosTex kCorners[] = {
            {-0.25f, -1, 0, 0, 1}, {-0.25f, 1, 0, 0, 0}, {0.25f, -1, 0, 1, 1}, {0.25f, 1, 0, 1, 0}};
        std::ranges::copy(kCorners, list->Lock(0, 4, 0));
        list->Unlock();
    }
    left.SetPosition(-0.5f, 0, 0, true);
    right.SetPosition(0.75f, 0, 0, true);
    const D3DCOLOR screen = Argb(255, 10, 90, 70);
    gfx_->BeginScene();
    gfx_->Clear(screen, 1, nullptr);
    effect.ApplyFrameSemantics();
    effect.Begin();
    EXPECT_TRUE(effect.BeginPass(0));
    gfx_->Clear(Argb(255, 1, 2, 3), 1, nullptr);
    gfx_->DrawTriangleList(left, 0, -1);
    gfx_->DrawTriangleList(right, 0, -1);
    effect.EndPass();
    effect.End();
    gfx_->EndScene();
    ExpectScreen([&](int, int) { return ToRgb(screen); }, 0);
    DevicePtr<IDirect3DSurface9> level;
    gfx_->GetScreenBufferTexture(2, 0)->GetSurfaceLevel(0, level.Receive());
    const std::vector<D3DCOLOR> pixels = ReadTarget(*gfx_->Device(), *level);
    const auto drawn = [](int x) { return (x >= 12 && x < 36) || (x >= 72 && x < 96); };
    for (const int x : {2, 10, 14, 33, 38, 60, 70, 75, 93}) {
        const Rgb expected = drawn(x) ? Rgb{51, 102, 153} : Rgb{1, 2, 3};
        EXPECT_TRUE(Near(ToRgb(pixels[20 * 96 + x]), expected, 1)) << x << ": " << ToRgb(pixels[20 * 96 + x]);
    }
}

// ---- Meshes

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
