// Small pictures of particles, drawn by the shipped shader on OpenGL.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "base/random.h"
#include "effects/special_shapes.h"
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
        Start("PARTICLE {\ntexture = \"" + picture_file_ + "\"\nscale = " + std::to_string(kHalfHeight) + ", 1, 1\n" +
              lines + "\n}\n");
        Redraw();
    }
    void Start(const std::string& blocks) {
        system_.LoadEffects(EffectsFileOf("#e\ndesc = \"e\"\n" + blocks).Name(), false);
        system_.StartEffect("e", {});
    }
    void Redraw() {
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

    /// Where a place of the world shows, as parts of the picture's width and height.
    static D3DXVECTOR2 OnScreen(const D3DXVECTOR3& p) {
        const float deep = (100 - p.y) * 0.41421356f;   // half the view's height there
        return {0.5f - p.x / deep / 2, 0.5f - p.z / deep / 2};
    }
    bool IsChanged(const D3DXVECTOR2& part) const { return !Near(At(part.x, part.y), {0x20, 0x40, 0x60}, 6); }

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

/// Of each shape every point shows where its formula has it, and nothing shows elsewhere. The points of the formula are
/// those that a random table of the same seed gives (the shapes themselves are compared with a reference elsewhere).
TEST_F(ParticlePicture, EachSpecialShapeStandsWhereItsPointsAre) {
    const std::pair<const char*, SpecialType> kRows[] = {
        {"flame", SpecialType::Flame},   {"helix", SpecialType::Helix}, {"snake", SpecialType::Snake},
        {"wave", SpecialType::Wave},     {"jelly", SpecialType::Jelly}, {"firework", SpecialType::Firework},
        {"splash", SpecialType::Splash}, {"smoke", SpecialType::Smoke}};
    SeedRandom(11);
    system_.Init(*gfx_, 0);
    RandomTable table;
    SeedRandom(11);
    table.Draw();
    for (const auto& [name, type] : kRows) {
        Start(std::string("SPECIAL {\ntype = \"") + name +
              "\"\nBlendType = \"additive\"\nnumPart = 40\nPartSize = 0.1\nscale = 14, 6, 18\nStartTime = 0.4\n" +
              "pos = 4, 3, -5\ncol = 1, 0.5, 0.2\n}\n");
        Redraw();
        SpecialShape shape;
        shape.type = type;
        shape.position = {4, 3, -5};
        shape.age = 0.4;
        shape.scale = {14, 6, 18};
        shape.count = 40;
        shape.first = shape.second = 0xFFFF7F33;
        shape.seed = static_cast<int>(system_.GetInstanceStates().at(0).random[0] * 100);
        KRN_PointVertex points[kSpecialPoints];
        const int count = WriteShape(shape, table, points);
        EXPECT_EQ(system_.DrawnParticleCount(), 40) << name;
        EXPECT_EQ(system_.DrawCallCount(), 1) << name;
        for (int i = 0; i < count; ++i) {
            const bool bright = (points[i].diffuse >> 24) * (points[i].diffuse >> 16 & 255) > 90 * 90;
            EXPECT_TRUE(!bright || IsChanged(OnScreen({points[i].x, points[i].y, points[i].z}))) << name << " " << i;
        }
        for (UINT y = 0; y < height_; ++y) {
            for (UINT x = 0; x < width_; ++x) {
                const D3DXVECTOR2 here{(static_cast<float>(x) + 0.5f) / static_cast<float>(width_),
                                       (static_cast<float>(y) + 0.5f) / static_cast<float>(height_)};
                float nearest = 1;
                for (int i = 0; i < count; ++i) {
                    const D3DXVECTOR2 point = OnScreen({points[i].x, points[i].y, points[i].z});
                    nearest = std::min(nearest, std::hypot(point.x - here.x, point.y - here.y));
                }
                ASSERT_FALSE(nearest > 0.04f && IsChanged(here)) << name << " " << x << " " << y;
            }
        }
    }
}

/// A single point of the default picture, a soft spot: 120 x 20 / sqrt(10 d^2) pixels, at most 64.
TEST_F(ParticlePicture, PointsAreAsLargeAsTheirDistanceAllows) {
    const std::pair<float, int> kRows[] = {{85, 51}, {70, 25}, {40, 13}, {90, 64}};   // y, pixels
    for (const auto& [y, pixels] : kRows) {
        Start(
            "SPECIAL {\ntype = \"snake\"\nBlendType = \"additive\"\nnumPart = 1\nPartSize = 10\nscale = 1, 1, 0\npos = "
            "0, " +
            std::to_string(y) + ", 0\n}\n");
        Redraw();
        int width = 0;
        for (UINT x = 0; x < width_; ++x) width += IsChanged({(static_cast<float>(x) + 0.5f) / 120, 0.5f});
        EXPECT_NEAR(width, pixels * 0.84, 1 + pixels * 0.08) << y;   // what of the spot is bright enough
    }
}

/// Two emitters a distance apart run along x and lay the edges of a ribbon.
TEST_F(ParticlePicture, ATrailSpansItsEdges) {
    const auto edge = [](const char* z) {
        return std::string("SPECIAL {\ntype = \"none\"\nEmitEffect = \"trace:spot\"\nEmitEffectPerTime = 60\n") +
               "EmitEffectRand = 0\nTraceEffectLifeTime = 9\nTraceEffectFlag = 1\npos = -20, 0, " + z +
               "\nPOSITION {\ntype = \"linear\"\nscale = 40, 0, 0\n}\n}\n";
    };
    Start(edge("-8") + edge("8"));
    for (int i = 0; i < 60; ++i) system_.Update(1 / 60.0f);
    Redraw();
    EXPECT_EQ(system_.DrawCallCount(), 1);
    for (const float x : {-6.0f, 0.0f, 6.0f, 12.0f}) {
        EXPECT_TRUE(IsChanged(OnScreen({x, 0, 0}))) << x;
        EXPECT_FALSE(IsChanged(OnScreen({x, 0, 10}))) << x;
        EXPECT_FALSE(IsChanged(OnScreen({x, 0, -10}))) << x;
    }
    EXPECT_FALSE(IsChanged(OnScreen({-24, 0, 0})));
    EXPECT_FALSE(IsChanged(OnScreen({24, 0, 0})));
}

}   // namespace
}   // namespace sparkrig
