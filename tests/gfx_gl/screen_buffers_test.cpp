// Effects that read what was drawn: the scene's way to the screen, the copy of the screen, and passes through buffers.
#include <SDL.h>

#include <algorithm>
#include <functional>

#include "gfx/device/surface.h"
#include "gfx/shaders/shader_effect.h"
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

}   // namespace
}   // namespace sparkrig
