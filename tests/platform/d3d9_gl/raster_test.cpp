// Where pixels land: pixel centres, winding, clip depth, final positions, viewports, points.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>

#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kBack = Argb(255, 10, 20, 30), kFront = Argb(255, 200, 100, 50);

struct PlainVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_DIFFUSE;
    float x, y, z;
    D3DCOLOR diffuse;
};

// A rectangle of clip coordinates, its vertices clockwise on the screen from the lower left.
std::vector<PlainVertex> Quad(float left, float bottom, float right, float top, float z) {
    return {{left, bottom, z, kFront}, {left, top, z, kFront}, {right, bottom, z, kFront}, {right, top, z, kFront}};
}

std::ptrdiff_t Covered(Canvas& canvas) { return std::ranges::count(canvas.Pixels(), kFront); }

// Pixel centres are whole numbers. An edge that runs through them gives its pixels to the rectangle only if it is the
// left or the top one: rectangles that share an edge neither leave a gap nor draw a pixel twice.
TEST(Raster, GivesPixelsOnAnEdgeToTheLeftAndTheTop) {
    Canvas canvas(8, 8);
    ShaderCode code;
    code.glsl =
        "#version 450\nlayout(location = 0) in vec4 place;\nlayout(location = 5) in vec4 colour;\n"
        "layout(location = 0) out vec4 passed;\nvoid main() { gl_Position = vec4(place.xyz, 1.0); passed = colour; }\n";
    code.varyings = 1u << kVaryingColor0;
    DevicePtr<IDirect3DVertexShader9> function;
    ASSERT_EQ(canvas->CreateVertexShader(code, function.Receive()), D3D_OK);
    for (const RECT& edges : {RECT{0, 0, 8, 8}, RECT{2, 3, 5, 7}, RECT{1, 2, 2, 6}}) {
        const auto left = static_cast<float>(edges.left), top = static_cast<float>(edges.top),
                   right = static_cast<float>(edges.right), bottom = static_cast<float>(edges.bottom);
        const auto wanted = Box(8, 8, edges, kFront, kBack);
        canvas.Clear(kBack);
        canvas.Draw(ScreenVertex::kFvf, D3DPT_TRIANGLESTRIP, 2, Corners(left, top, right, bottom, kFront));
        EXPECT_EQ(canvas.Pixels(), wanted) << "final positions";
        const auto quad = Quad(left / 4 - 1, 1 - bottom / 4, right / 4 - 1, 1 - top / 4, 0.5f);
        for (const bool own_function : {true, false}) {
            canvas.Clear(kBack);
            canvas->SetVertexShader(own_function ? function.Get() : nullptr);
            canvas.Draw(PlainVertex::kFvf, D3DPT_TRIANGLESTRIP, 2, quad);
            EXPECT_EQ(canvas.Pixels(), wanted) << own_function;
        }
    }
}

TEST(Raster, IsFlatInTheColourOfTheFirstVertex) {
    Canvas canvas(4, 4);
    canvas->SetRenderState(D3DRS_SHADEMODE, D3DSHADE_FLAT);
    canvas.Draw<ScreenVertex>(
        ScreenVertex::kFvf, D3DPT_TRIANGLELIST, 1,
        {{-1, -1, 0, 1, kFront, 0, 0, 0}, {9, -1, 0, 1, kBack, 0, 0, 0}, {-1, 9, 0, 1, 0xFFFFFFFF, 0, 0, 0}});
    EXPECT_EQ(canvas.PixelArgb(0, 0), kFront);
    EXPECT_EQ(canvas.PixelArgb(3, 2), kFront);
}

TEST(Raster, CullsByTheWindingSeenOnTheScreen) {
    Canvas canvas(8, 8);
    for (const DWORD mode : {D3DCULL_NONE, D3DCULL_CW, D3DCULL_CCW}) {
        for (const bool clockwise : {true, false}) {
            canvas.Clear(kBack);
            canvas->SetRenderState(D3DRS_CULLMODE, mode);
            auto vertices = Quad(-0.9f, -0.9f, 0.9f, 0.9f, 0.25f);
            if (!clockwise) std::swap(vertices[1], vertices[2]);
            canvas.Draw(PlainVertex::kFvf, D3DPT_TRIANGLESTRIP, 2, vertices);
            EXPECT_EQ(Covered(canvas) > 0, mode != (clockwise ? D3DCULL_CW : D3DCULL_CCW)) << mode << clockwise;
        }
    }
}

TEST(Raster, ClipsDepthFromZeroToOne) {
    Canvas canvas(8, 8);
    for (const float z : {-0.125f, 0.0f, 0.625f, 1.0f, 1.125f}) {
        canvas.Clear(kBack);
        canvas.Draw(PlainVertex::kFvf, D3DPT_TRIANGLESTRIP, 2, Quad(-1, -1, 1, 1, z));
        EXPECT_EQ(Covered(canvas) > 0, z >= 0 && z <= 1) << z;
    }
}

TEST(Raster, PlacesClipSpaceInTheViewportAndEndsFinalPositionsThere) {
    Canvas canvas(8, 8);
    const D3DVIEWPORT9 viewport = {2, 1, 3, 5, 0.25f, 0.75f};
    const auto wanted = Box(8, 8, {2, 1, 5, 6}, kFront, kBack);
    canvas.Clear(kBack);
    EXPECT_EQ(canvas->SetViewport(&viewport), D3D_OK);
    canvas.FillAll(kFront);
    EXPECT_EQ(canvas.Pixels(), wanted);
    canvas.FillAll(kBack);
    canvas.Draw(PlainVertex::kFvf, D3DPT_TRIANGLESTRIP, 2, Quad(-1, -1, 1, 1, 0.5f));
    EXPECT_EQ(canvas.Pixels(), wanted);
}

TEST(Raster, TestsAndWritesDepth) {
    // ..., the depth cleared to; whether 0.75 is seen then, and 0.625 after it
    constexpr std::tuple<DWORD, DWORD, DWORD, float, bool, bool> kRows[] = {
        {1, 1, D3DCMP_LESSEQUAL, 0.5f, false, false}, {1, 1, D3DCMP_GREATER, 0.5f, true, false},
        {1, 0, D3DCMP_GREATER, 0.5f, true, true},     {1, 1, D3DCMP_ALWAYS, 0.5f, true, true},
        {0, 1, D3DCMP_NEVER, 0.5f, true, true},       {1, 1, D3DCMP_EQUAL, 0.75f, true, false}};
    constexpr D3DCOLOR kSecond = Argb(255, 1, 2, 3), kThird = Argb(255, 4, 5, 6);
    Canvas canvas(4, 4);
    canvas.FillAll(kFront, 0xFF000000, 1.0f);   // passes "less or equal" only if 1 stays 1
    EXPECT_EQ(canvas.PixelArgb(1, 2), kFront);
    for (const auto& [enable, write, function, first, second_seen, third_seen] : kRows) {
        canvas.Clear(kBack, first);
        canvas->SetRenderState(D3DRS_ZENABLE, enable);
        canvas->SetRenderState(D3DRS_ZWRITEENABLE, write);
        canvas->SetRenderState(D3DRS_ZFUNC, function);
        canvas.FillAll(kSecond, 0xFF000000, 0.75f);
        EXPECT_EQ(canvas.PixelArgb(1, 1) == kSecond, second_seen) << enable << write << function;
        canvas.FillAll(kThird, 0xFF000000, 0.625f);
        EXPECT_EQ(canvas.PixelArgb(1, 1) == kThird, third_seen) << enable << write << function;
    }
}

// Drivers may count a step as two.
TEST(Raster, BiasesDepthInItsOwnRange) {
    constexpr D3DCOLOR kBehind = Argb(255, 1, 2, 3);
    for (const D3DFORMAT format : {D3DFMT_D16, D3DFMT_D24X8}) {
        Canvas canvas(4, 4);
        canvas->EndScene();
        D3DPRESENT_PARAMETERS parameters = CanvasParameters(4, 4);
        parameters.AutoDepthStencilFormat = format;
        ASSERT_EQ(canvas->Reset(&parameters), D3D_OK);
        canvas->BeginScene();
        canvas->SetRenderState(D3DRS_LIGHTING, FALSE);
        for (const float bias : {-0.02f, -0.002f}) {
            canvas.Clear(kBack, 0.5f);
            canvas->SetRenderState(D3DRS_DEPTHBIAS, std::bit_cast<DWORD>(bias));
            canvas.FillAll(kBehind, 0xFF000000, 0.51f);
            EXPECT_EQ(canvas.PixelArgb(1, 1) == kBehind, bias == -0.02f) << format << " " << bias;
        }
    }
}

TEST(Raster, ClearsTheViewportAndRectanglesInsideIt) {
    Canvas canvas(8, 8);
    canvas.Clear(kBack);
    const D3DVIEWPORT9 viewport = {1, 1, 5, 6, 0.0f, 1.0f};
    canvas->SetViewport(&viewport);
    canvas->SetRenderState(D3DRS_COLORWRITEENABLE, 0);
    canvas->Clear(0, nullptr, D3DCLEAR_TARGET, kFront, 0.0f, 0);
    EXPECT_EQ(Covered(canvas), 5 * 6);
    const D3DRECT rects[] = {{0, 0, 3, 4}, {5, 6, 100, 100}};
    canvas->Clear(2, rects, D3DCLEAR_TARGET, kBack, 0.0f, 0);
    EXPECT_EQ(Covered(canvas), 5 * 6 - 2 * 3 - 1);
}

TEST(Raster, DrawsIndexedFansListsAndLines) {
    Canvas canvas(16, 16);
    const std::vector<PlainVertex> corners = Quad(-0.8f, -0.8f, 0.8f, 0.8f, 0.5f);   // 13 x 13 pixels
    DevicePtr<IDirect3DVertexBuffer9> vertices;
    canvas->CreateVertexBuffer(6 * sizeof(PlainVertex), 0, PlainVertex::kFvf, D3DPOOL_MANAGED, vertices.Receive());
    FillBuffer(*vertices, 2 * sizeof(PlainVertex), corners.data(), 4 * sizeof(PlainVertex));   // used from there on
    const auto indices = MakeIndices(canvas.Device(), {9, 1, 2, 4, 3, 3, 1});
    canvas->SetFVF(PlainVertex::kFvf);
    canvas->SetStreamSource(0, vertices.Get(), 0, sizeof(PlainVertex));
    canvas->SetIndices(indices.Get());
    constexpr std::tuple<D3DPRIMITIVETYPE, UINT, UINT, int, int> kRows[] = {{D3DPT_TRIANGLEFAN, 1, 2, 169, 169},
                                                                            {D3DPT_TRIANGLELIST, 1, 1, 78, 91},
                                                                            {D3DPT_LINELIST, 1, 1, 12, 14},
                                                                            {D3DPT_LINESTRIP, 1, 3, 36, 40}};
    for (int frame = 0; frame < 3; ++frame) {   // streamed first, then from a buffer of its own
        for (const auto& [type, first, count, at_least, at_most] : kRows) {
            canvas.Clear(kBack);
            EXPECT_EQ(canvas->DrawIndexedPrimitive(type, 1, 1, 4, first, count), D3D_OK);
            EXPECT_GE(Covered(canvas), at_least) << type << " frame " << frame;
            EXPECT_LE(Covered(canvas), at_most) << type << " frame " << frame;
        }
        canvas->EndScene();
        EXPECT_EQ(canvas->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
        canvas->BeginScene();
    }
}

// ---- Points that the random ones (fixed_function_test.cpp) do not reach: at edges, as sprites, of triangles, in
// numbers.

constexpr UINT kSize = 64;

struct FinalPoint {
    static constexpr DWORD kFvf = D3DFVF_XYZRHW | D3DFVF_PSIZE | D3DFVF_DIFFUSE;
    float x, y, z, rhw, size;
    D3DCOLOR diffuse = kFront;
};

class Points : public testing::Test {
  protected:
    Points() : canvas_(kSize, kSize) {}

    /// How many pixels are drawn.
    std::ptrdiff_t Draw(const std::vector<FinalPoint>& vertices, D3DPRIMITIVETYPE type = D3DPT_POINTLIST,
                        UINT count = 1) {
        canvas_.Clear(0);
        EXPECT_EQ(canvas_.Draw(FinalPoint::kFvf, type, count, vertices), D3D_OK);
        return Covered(canvas_);
    }

    Canvas canvas_;
};

TEST_F(Points, ReachIntoTheViewportAndAreDroppedBehindItsDepth) {
    Draw({{-2.3f, 66.1f, 0.5f, 1, 21.0f}});
    EXPECT_EQ(canvas_.Pixels(), Box(kSize, kSize, {0, 56, 9, 64}, kFront, Argb(255, 0, 0, 0)));
    EXPECT_EQ(Draw({{30, 30, 1.25f, 1, 21.0f}}), 0);
    EXPECT_EQ(Draw({{30, 30, -0.25f, 1, 21.0f}}), 0);
    for (const DWORD culled : {D3DCULL_CW, D3DCULL_CCW}) {
        canvas_->SetRenderState(D3DRS_CULLMODE, culled);
        EXPECT_EQ(Draw({{30, 30, 0.5f, 1, 21.0f}}), 21 * 21);
    }
}

TEST_F(Points, AreTexturedWholeAsSprites) {
    const auto texture = MakeTexture(canvas_.Device(), 2, 2, {0xFF0A0000, 0xFF140000, 0xFF1E0000, 0xFF280000});
    canvas_->SetTexture(0, texture.Get());
    canvas_->SetSamplerState(0, D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP);
    canvas_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    struct Vertex {
        float x, y, z, rhw, size, u, v;
    };
    constexpr DWORD kFvf = D3DFVF_XYZRHW | D3DFVF_PSIZE | D3DFVF_TEX1;
    const std::vector<Vertex> point = {{30.3f, 20.3f, 0.5f, 1, 10, 0.75f, 0.25f}};
    canvas_->SetRenderState(D3DRS_POINTSPRITEENABLE, TRUE);
    const auto reds = [this] {
        return std::array{canvas_.Pixel(27, 17).r, canvas_.Pixel(33, 17).r, canvas_.Pixel(27, 23).r,
                          canvas_.Pixel(33, 23).r};
    };
    canvas_.Draw<Vertex>(kFvf, D3DPT_POINTLIST, 1, point);
    EXPECT_EQ(reds(), (std::array{10, 20, 30, 40})) << "final position";
    struct Plain {
        float x, y, z, size, u, v;
    };   // at the same place; a projection of coordinates has no part in the corners
    canvas_->SetTextureStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_COUNT2 | D3DTTFF_PROJECTED);
    canvas_.Draw<Plain>(D3DFVF_XYZ | D3DFVF_PSIZE | D3DFVF_TEX1, D3DPT_POINTLIST, 1,
                        {{30.3f / 32 - 1, 1 - 20.3f / 32, 0.5f, 10, 0.75f, 0.25f}});
    EXPECT_EQ(reds(), (std::array{10, 20, 30, 40})) << "projected";
    canvas_->SetRenderState(D3DRS_POINTSPRITEENABLE, FALSE);
    canvas_.Draw<Vertex>(kFvf, D3DPT_POINTLIST, 1, point);
    EXPECT_EQ(reds(), (std::array{20, 20, 20, 20})) << "no sprite";
}

TEST_F(Points, StandForTheVerticesOfTrianglesInFillModePoint) {
    canvas_->SetRenderState(D3DRS_FILLMODE, D3DFILL_POINT);
    const std::vector<FinalPoint> corners = {
        {10.3f, 10.3f, 0.5f, 1, 3}, {40.3f, 10.3f, 0.5f, 1, 3}, {10.3f, 40.3f, 0.5f, 1, 3}};
    EXPECT_EQ(Draw(corners, D3DPT_TRIANGLELIST), 27);
    canvas_->SetRenderState(D3DRS_FILLMODE, D3DFILL_WIREFRAME);
    Draw(corners, D3DPT_TRIANGLELIST);
    EXPECT_EQ(canvas_.PixelArgb(25, 10), kFront);
    EXPECT_NE(canvas_.PixelArgb(18, 18), kFront);   // inside
}

TEST_F(Points, LeaveOutIndicesOutsideTheGivenRange) {
    canvas_->SetRenderState(D3DRS_FILLMODE, D3DFILL_POINT);
    DevicePtr<IDirect3DVertexBuffer9> vertices;
    constexpr FinalPoint kPoints[] = {{10.3f, 10.3f, 0.5f, 1, 3}, {40.3f, 10.3f, 0.5f, 1, 3}};
    canvas_->CreateVertexBuffer(sizeof kPoints, 0, FinalPoint::kFvf, D3DPOOL_MANAGED, vertices.Receive());
    FillBuffer(*vertices, 0, kPoints, sizeof kPoints);
    const auto indices = MakeIndices(canvas_.Device(), {4, 5, 3, 6, 65535, 0});
    canvas_->SetFVF(FinalPoint::kFvf);
    canvas_->SetStreamSource(0, vertices.Get(), 0, sizeof(FinalPoint));
    canvas_->SetIndices(indices.Get());
    EXPECT_EQ(canvas_->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, -4, 4, 2, 0, 2), D3D_OK);
    EXPECT_EQ(Covered(canvas_), 18);
}

TEST_F(Points, AreDrawnInAnyNumber) {
    std::vector<FinalPoint> many;
    many.reserve(40000);
    for (int i = 0; i < 40000; ++i)
        many.push_back({static_cast<float>(i % 64) + 0.3f, static_cast<float>(i / 64 % 64) + 0.3f, 0.5f, 1, 1});
    EXPECT_EQ(Draw(many, D3DPT_POINTLIST, 40000), kSize * kSize);
}

}   // namespace
}   // namespace sparkrig
