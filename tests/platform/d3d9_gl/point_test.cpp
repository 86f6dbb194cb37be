// Points that the random ones (fixed_function_test.cpp) do not reach: at edges, as sprites, of triangles, in numbers.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kFront = Argb(255, 200, 100, 50);
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
        return Drawn();
    }
    std::ptrdiff_t Drawn() { return std::ranges::count(canvas_.Pixels(), kFront); }

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
    const auto texture = MakeTexture(
        canvas_.Device(), 2, 2, {Argb(255, 10, 0, 0), Argb(255, 20, 0, 0), Argb(255, 30, 0, 0), Argb(255, 40, 0, 0)});
    canvas_->SetTexture(0, texture.Get());
    canvas_->SetSamplerState(0, D3DSAMP_ADDRESSU, D3DTADDRESS_CLAMP);
    canvas_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    struct Vertex {
        float x, y, z, rhw, size, u, v;
    };
    constexpr DWORD kFvf = D3DFVF_XYZRHW | D3DFVF_PSIZE | D3DFVF_TEX1;
    const std::vector<Vertex> point = {{30.3f, 20.3f, 0.5f, 1, 10, 0.75f, 0.25f}};
    canvas_->SetRenderState(D3DRS_POINTSPRITEENABLE, TRUE);
    const auto expect_whole = [this](const char* what) {
        EXPECT_EQ(canvas_.Pixel(27, 17).r, 10) << what;
        EXPECT_EQ(canvas_.Pixel(33, 17).r, 20) << what;
        EXPECT_EQ(canvas_.Pixel(27, 23).r, 30) << what;
        EXPECT_EQ(canvas_.Pixel(33, 23).r, 40) << what;
    };
    canvas_.Draw<Vertex>(kFvf, D3DPT_POINTLIST, 1, point);
    expect_whole("final position");
    struct Plain {
        float x, y, z, size, u, v;
    };   // at the same place; a projection of coordinates has no part in the corners
    canvas_->SetTextureStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_COUNT2 | D3DTTFF_PROJECTED);
    canvas_.Draw<Plain>(D3DFVF_XYZ | D3DFVF_PSIZE | D3DFVF_TEX1, D3DPT_POINTLIST, 1,
                        {{30.3f / 32 - 1, 1 - 20.3f / 32, 0.5f, 10, 0.75f, 0.25f}});
    expect_whole("projected");
    canvas_->SetRenderState(D3DRS_POINTSPRITEENABLE, FALSE);
    canvas_.Draw<Vertex>(kFvf, D3DPT_POINTLIST, 1, point);
    for (const UINT x : {27u, 33u}) {
        for (const UINT y : {17u, 23u}) EXPECT_EQ(canvas_.Pixel(x, y).r, 20) << x << ", " << y;
    }
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
    EXPECT_EQ(Drawn(), 18);
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
