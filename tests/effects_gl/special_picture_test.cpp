// Special shapes and trails on OpenGL, beside where their formulas put them.

#include <cmath>

#include "base/random.h"
#include "effects/special_shapes.h"
#include "effects/visual_effect_system.h"
#include "gfx/textures/texture_catalogue.h"
#include "scene/camera.h"
#include "tests/support/drawn_gfx.h"
#include "tests/support/picture_files.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

/// The camera stands at (0, 100, 0) and looks along -y: x points to the left, z upwards.
class FormulaPicture : public testing::Test {
  protected:
    FormulaPicture() {
        gfx_->SetProjection(1, 2000, 0.7853982f, 1);
        const ScratchFolder folder;
        const std::string picture = folder.Write("a.png", PngFile({2, 1, {0xFFFF0000, 0xFF00FF00}}, 4));
        gfx_->Catalogue().Load(folder.Write("c.cfg", "\"redgreen\" = \"" + picture + "\"").c_str(), "", false);
        gfx_->Catalogue().GetTexture("redgreen");
        KRN_Camera camera;
        camera.SetEye(0, 100, 0, true);
        camera.SetViewDirection(0, -1, 0, true);
        gfx_->SetView(camera);
        system_.Init(*gfx_, 0);
    }
    ~FormulaPicture() override { system_.Release(); }

    void Start(const std::string& blocks) {
        system_.LoadEffects(ScratchFolder().Write("e.cfg", "#e\ndesc = \"e\"\n" + blocks).c_str(), false);
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

    DrawnGfx gfx_{120, 120};
    VisualEffectSystem system_;
    std::vector<D3DCOLOR> pixels_;
    UINT width_ = 0, height_ = 0;
};

/// Of each shape every point shows where its formula has it, and nothing shows elsewhere. The points of the formula are
/// those that a random table of the same seed gives (the shapes themselves are compared with a reference elsewhere).
TEST_F(FormulaPicture, EachSpecialShapeStandsWhereItsPointsAre) {
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
TEST_F(FormulaPicture, PointsAreAsLargeAsTheirDistanceAllows) {
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

/// Emitters one above the other run along x and lay the edges of a ribbon, 60 lines from x = -20 to 20. Its texture is
/// red on the left and green on the right: stretched, over the whole; repeating with a scale of 0.5, every 19.2 lines.
TEST_F(FormulaPicture, ATrailSpansItsEdgesAndCarriesItsTexture) {
    const auto edge = [](const char* z, const char* flag) {
        return std::string("SPECIAL {\ntype = \"none\"\nEmitEffect = \"trace:redgreen\"\nEmitEffectPerTime = 60\n") +
               "EmitEffectRand = 0\nTraceEffectLifeTime = 9\nTraceEffectTexScale = 0.5\nTraceEffectFlag = " + flag +
               "\npos = -20, 0, " + z + "\nPOSITION {\ntype = \"linear\"\nscale = 40, 0, 0\n}\n}\n";
    };
    const std::tuple<std::string, std::vector<float>, std::vector<float>> kRows[] = {
        {edge("-8", "1") + edge("8", "1"), {-10}, {10}},
        {edge("-8", "0") + edge("8", "0"), {-4, 8.8f}, {2.4f, 15.2f}},
        {edge("-8", "1") + edge("-2", "1") + edge("3", "1") + edge("8", "1"), {-10}, {10}},
    };
    for (const auto& [blocks, red, green] : kRows) {
        SCOPED_TRACE(blocks);
        Start(blocks);
        for (int i = 0; i < 60; ++i) system_.Update(1 / 60.0f);
        Redraw();
        EXPECT_EQ(system_.DrawCallCount(), 1);
        for (const float z : {-6.0f, 0.0f, 6.0f}) {
            const auto at = [&](float x) { return At(OnScreen({x, 0, z}).x, OnScreen({x, 0, z}).y); };
            for (const float x : red) EXPECT_GT(at(x).r, at(x).g + 100) << x;
            for (const float x : green) EXPECT_GT(at(x).g, at(x).r + 100) << x;
            for (const float x : {-24.0f, 24.0f}) EXPECT_FALSE(IsChanged(OnScreen({x, 0, z}))) << x;
        }
        for (const float z : {-10.0f, 10.0f}) EXPECT_FALSE(IsChanged(OnScreen({0, 0, z}))) << z;
    }
}

}   // namespace
}   // namespace sparkrig
