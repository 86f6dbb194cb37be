// Text, screen rectangles and meshes on the real device: pixels against what was asked for.
#include <gtest/gtest.h>

#include <cstring>

#include <algorithm>
#include <memory>
#include <utility>

#include "gfx/gfx.h"
#include "gfx/text/font.h"
#include "gfx/textures/texture.h"
#include "platform/window/window.h"
#include "scene/mesh.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kBack = 0xFF283C50;
constexpr D3DCOLOR kA = 0xFF96DCFF, kB = 0xFF006473;

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

class Drawing : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        KeepDriverLoaded();
        RegisterClassExA({Ignore, "DRAWING"});
        gfx_ = std::make_unique<KRN_Gfx>();
        gfx_->InitDevice(CreateWindowExA("DRAWING", "", 0, 0, 160, 120), 1, nullptr, 16, 0, 1, 0, 0);
    }
    static void TearDownTestSuite() { gfx_.reset(); }

    Drawing() {
        gfx_->BeginScene();
        gfx_->Clear(kBack, 1, nullptr);
    }
    void Finish() {
        gfx_->EndScene();
        gfx_->ReadBackBuffer(pixels_, width_, height_);
    }
    Rgb At(UINT x, UINT y) const { return ToRgb(pixels_[y * width_ + x]); }

    static std::unique_ptr<KRN_Gfx> gfx_;
    std::vector<D3DCOLOR> pixels_;
    UINT width_ = 0, height_ = 0;
};
std::unique_ptr<KRN_Gfx> Drawing::gfx_;

/// What the overlay's blending makes of a colour over another.
Rgb Screened(D3DCOLOR colour, D3DCOLOR back) {
    const auto channel = [](int s, int d) { return (s * (255 - d) + d * (255 - s)) / 255; };
    const Rgb s = ToRgb(colour), d = ToRgb(back);
    return {channel(s.r, d.r), channel(s.g, d.g), channel(s.b, d.b)};
}

TEST_F(Drawing, TextLiesExactlyOnItsPixels) {
    KRN_Font font;
    font.CreateBuiltInFont(*gfx_, kA, kB);
    font.SetTextStyle(2, 0xFFFFFFFF, kKeepSpacing, kKeepSpacing, 0.75f);
    gfx_->SetFont(&font, 0, 0);
    gfx_->SetBlendingMode(4, 255, 0);
    gfx_->Printf(8, 20, "E]");
    gfx_->DrawText();
    Finish();
    for (const UINT y : {23u, 24u}) {   // the run begins 3 below its line, a sheet pixel is two by two
        for (const UINT x : {8u, 9u}) EXPECT_TRUE(Near(At(x, y), Screened(kA, kBack), 2)) << x << " " << At(x, y);
        EXPECT_TRUE(Near(At(7, y), ToRgb(kBack), 1)) << At(7, y);
    }
    EXPECT_TRUE(Near(At(17, 32), Screened(kB, kBack), 2)) << "the glyph's last pixel: " << At(17, 32);
    EXPECT_TRUE(Near(At(18, 32), ToRgb(kBack), 1)) << "the gap behind it: " << At(18, 32);
    EXPECT_TRUE(Near(At(8, 33), ToRgb(kBack), 1)) << At(8, 33);
    EXPECT_TRUE(Near(At(14, 25), ToRgb(kBack), 1)) << "inside the glyph, not set: " << At(14, 25);
    EXPECT_FALSE(Near(At(22, 23), ToRgb(kBack), 30)) << "the bracket, 12 further";
    font.Release();
}

TEST_F(Drawing, AScreenRectangleFillsItsPixels) {
    KRN_Texture texture;
    gfx_->CreateTexture(&texture, 4, 4, 4, D3DFMT_A8R8G8B8, 1);
    texture.Clear(0xFF64C832, nullptr);
    gfx_->SetBlendingMode(1, 255, 0);
    gfx_->SetTexture2D(&texture);
    gfx_->DrawTexture2D({10, 12, 30, 20}, 0xFFFF8040, {1, 1, 1, 1});
    Finish();
    const Rgb drawn = {100, 100, 13};   // texture x colour
    for (const auto& [x, y] : {std::pair{10u, 12u}, {29u, 12u}, {10u, 19u}, {29u, 19u}}) {
        EXPECT_TRUE(Near(At(x, y), drawn, 2)) << x << " " << y << " " << At(x, y);
    }
    for (const auto& [x, y] : {std::pair{9u, 15u}, {30u, 15u}, {20u, 11u}, {20u, 20u}}) {
        EXPECT_TRUE(Near(At(x, y), ToRgb(kBack), 1)) << x << " " << y << " " << At(x, y);
    }
}

/// One triangle over the middle of the view, lit by ambient light alone.
void BuildTriangle(KRN_Mesh& mesh) {
    MeshGeometry& geometry = mesh.CreateGeometry({.faces = 1, .vertices = 3, .format = 0x12});
    constexpr float kVertices[3][6] = {{-9, -9, 20, 0, 0, -1}, {0, 9, 20, 0, 0, -1}, {9, -9, 20, 0, 0, -1}};
    std::memcpy(geometry.vertices.data(), kVertices, sizeof kVertices);
    geometry.indices = {0, 1, 2};
    mesh.SortByGroup();
    mesh.ComputeBounds();
    mesh.Material(0).colours.Ambient = {0.2f, 0.6f, 0.4f, 1};
    mesh.Material(0).colours.Diffuse = {0, 0, 0, 1};
}

TEST_F(Drawing, AMeshIsSeenFromItsFrontAlsoWhenMirrored) {
    KRN_Mesh mesh;
    BuildTriangle(mesh);
    gfx_->SetBlendingMode(1, 255, 0);
    gfx_->SetCullingMode(-1);
    gfx_->SetAmbient(0xFFFFFFFF);
    constexpr std::tuple<const char*, float, int, bool> kRows[] = {
        {"front", 1, -1, true}, {"mirrored", -1, -1, true}, {"back", 1, 1, false}, {"mirrored back", -1, 1, false}};
    for (const auto& [name, scale_x, culling, seen] : kRows) {
        gfx_->Clear(kBack, 1, nullptr);
        mesh.SetScale(scale_x, 1, 1, true);
        gfx_->SetCullingMode(culling);
        gfx_->DrawMesh(&mesh, nullptr);
        gfx_->ReadBackBuffer(pixels_, width_, height_);
        const Rgb expected = seen ? Rgb{51, 153, 102} : ToRgb(kBack);
        EXPECT_TRUE(Near(At(width_ / 2, height_ / 2), expected, 2)) << name << " " << At(width_ / 2, height_ / 2);
    }
    gfx_->SetAmbient(0);
    Finish();
    mesh.Clear();
}

}   // namespace
}   // namespace sparkrig
