// Small pictures of particles, drawn by the shipped shader on OpenGL.
#include <gtest/gtest.h>

#include <memory>

#include "effects/visual_effect_system.h"
#include "gfx/gfx.h"
#include "platform/window/window.h"
#include "scene/camera.h"
#include "tests/effects/effects_file_text.h"
#include "tests/support/canvas.h"
#include "tests/support/picture_files.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

constexpr float kHalfHeight = 41.4214f;   // of the view, 100 before the camera

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

/// The camera stands at (0, 100, 0) and looks along -y: x points to the left, z upwards.
class ParticlePicture : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        KeepDriverLoaded();
        RegisterClassExA({Ignore, "PICTURE"});
        gfx_ = std::make_unique<KRN_Gfx>();
        gfx_->InitDevice(CreateWindowExA("PICTURE", "", 0, 0, 120, 120), 1, nullptr, 16, 0, 1, 0, 0);
        gfx_->SetProjection(1, 2000, 0.7853982f, 1);
    }
    static void TearDownTestSuite() { gfx_.reset(); }

    ParticlePicture() {
        KRN_Camera camera;
        camera.SetEye(0, 100, 0, true);
        camera.SetViewDirection(0, -1, 0, true);
        gfx_->SetView(camera);
        system_.Init(*gfx_, 0);
        const TestPicture picture = {2, 2, {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFF808080}};
        picture_file_ = folder_.Write("a.png", PngFile(picture, 4));
    }
    ~ParticlePicture() override { system_.Release(); }

    /// A frame of one particle at the origin, half as high as the view, over 0x204060.
    void Draw(const std::string& lines) {
        const std::string text = "#e\ndesc = \"e\"\nPARTICLE {\ntexture = \"" + picture_file_ +
                                 "\"\nscale = " + std::to_string(kHalfHeight) + ", 1, 1\n" + lines + "\n}\n";
        system_.LoadEffects(EffectsFileOf(text).Name(), false);
        system_.StartEffect("e", {});
        gfx_->BeginScene();
        gfx_->Clear(0xFF204060, 1, nullptr);
        gfx_->SetZBufferMode(1);
        gfx_->SetZWrite(true);
        system_.Draw();
        gfx_->EndScene();
        gfx_->ReadBackBuffer(pixels_, width_, height_);
    }
    /// The pixel at a part of the picture's width and height, from its left top corner.
    Rgb At(double x, double y) const {
        const auto column = static_cast<std::size_t>(x * width_), row = static_cast<std::size_t>(y * height_);
        return ToRgb(pixels_[row * width_ + column]);
    }

    static std::unique_ptr<KRN_Gfx> gfx_;
    VisualEffectSystem system_;
    ScratchFolder folder_;
    std::string picture_file_;
    std::vector<D3DCOLOR> pixels_;
    UINT width_ = 0, height_ = 0;
};
std::unique_ptr<KRN_Gfx> ParticlePicture::gfx_;

constexpr Rgb kBackground = {0x20, 0x40, 0x60};

TEST_F(ParticlePicture, AQuadThatFacesTheCameraIsAsLargeAsItsSize) {
    Draw("");
    for (const double place : {0.3, 0.7}) EXPECT_FALSE(Near(At(place, place), kBackground, 8)) << place;
    for (const double place : {0.2, 0.8}) EXPECT_TRUE(Near(At(place, 0.5), kBackground, 0)) << place;
    for (const double place : {0.2, 0.8}) EXPECT_TRUE(Near(At(0.5, place), kBackground, 0)) << place;
}

TEST_F(ParticlePicture, AdditiveParticlesAddTheirColourTimesTheAlpha) {
    Draw("BlendType = \"additive\"\ncol = 0.5, 0.5, 0.5\nALPHA {\ntype = \"cos\"\nTimeScale = 0, 0.5, 0\n}");
    int brightened = 0;   // one texel of the picture is pure red, one pure green, one pure blue
    for (const double x : {0.375, 0.625}) {
        for (const double y : {0.375, 0.625}) {
            const Rgb pixel = At(x, y);
            brightened += Near(pixel, {0x20 + 64, 0x40, 0x60}, 12) || Near(pixel, {0x20, 0x40 + 64, 0x60}, 12) ||
                          Near(pixel, {0x20, 0x40, 0x60 + 64}, 12);
        }
    }
    EXPECT_EQ(brightened, 3);
}

TEST_F(ParticlePicture, SubtractiveParticlesTakeAway) {
    Draw("BlendType = \"subtractive\"");
    for (const double x : {0.3, 0.7}) {
        for (const double y : {0.3, 0.7}) {
            const Rgb pixel = At(x, y);
            EXPECT_TRUE(pixel.r < 0x20 || pixel.g < 0x40 || pixel.b < 0x60) << pixel;
            EXPECT_TRUE(pixel.r <= 0x20 && pixel.g <= 0x40 && pixel.b <= 0x60) << pixel;
        }
    }
}

TEST_F(ParticlePicture, RotationTurnsTheQuad) {
    Draw("ROTATION {\ntype = \"linear\"\nscale = 0.7853982, 0, 0\nTimeMinMax = 1, 1\n}");
    EXPECT_TRUE(Near(At(0.28, 0.28), kBackground, 0));   // a corner has gone
    EXPECT_FALSE(Near(At(0.17, 0.5), kBackground, 8));   // and stands out to the side
}

TEST_F(ParticlePicture, BillboardModesPlaceTheQuad) {
    const std::tuple<const char*, bool> kRows[] = {
        {"BillBoard = 0", false},                 // in the plane of x and y: seen on its edge
        {"BillBoard = 1", true},                  // upright
        {"BillBoard = 2", true},                  // facing the camera
        {"BillBoard = 3\npos = 20, 5, 9", true}   // before the camera, wherever it is
    };
    for (const auto& [lines, shows_centre] : kRows) {
        Draw(lines);
        EXPECT_EQ(!Near(At(0.4, 0.4), kBackground, 8), shows_centre) << lines;
        EXPECT_TRUE(Near(At(0.5, 0.1), kBackground, 0)) << lines;
    }
}

}   // namespace
}   // namespace sparkrig
