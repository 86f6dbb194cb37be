// Points: their size by the documented rule, their place, sprites, triangles drawn as points.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "tests/platform/d3d9_gl/matrices.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kFront = Argb(255, 200, 100, 50);
constexpr UINT kSize = 64;

struct PlainPoint {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_DIFFUSE;
    D3DVECTOR position;
    D3DCOLOR diffuse = kFront;
};
struct SizedPoint {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_PSIZE | D3DFVF_DIFFUSE;
    D3DVECTOR position;
    float size;
    D3DCOLOR diffuse = kFront;
};
struct FinalPoint {
    static constexpr DWORD kFvf = D3DFVF_XYZRHW | D3DFVF_PSIZE | D3DFVF_DIFFUSE;
    float x, y, z, rhw, size;
    D3DCOLOR diffuse = kFront;
};

// The rectangle of drawn pixels, and whether it is full.
struct Box {
    UINT left = kSize, top = kSize, right = 0, bottom = 0;   // right and bottom are behind the last
    bool full = false;
};

class Points : public testing::Test {
  protected:
    Points() : canvas_(kSize, kSize) { Set(D3DRS_POINTSIZE_MAX, 256.0f); }

    void Set(D3DRENDERSTATETYPE state, float value) { canvas_->SetRenderState(state, std::bit_cast<DWORD>(value)); }
    template <class Vertex>
    Box Draw(const std::vector<Vertex>& vertices, D3DPRIMITIVETYPE type = D3DPT_POINTLIST, UINT count = 1) {
        canvas_.Clear(0);
        EXPECT_EQ(canvas_.Draw<Vertex>(Vertex::kFvf, type, count, vertices), D3D_OK);
        const auto pixels = canvas_.Pixels();
        Box box;
        UINT covered = 0;
        for (UINT y = 0; y < kSize; ++y) {
            for (UINT x = 0; x < kSize; ++x) {
                if (pixels[y * kSize + x] != kFront) continue;
                ++covered;
                box.left = std::min(box.left, x), box.right = std::max(box.right, x + 1);
                box.top = std::min(box.top, y), box.bottom = std::max(box.bottom, y + 1);
            }
        }
        box.full = covered > 0 && covered == (box.right - box.left) * (box.bottom - box.top);
        return box;
    }
    // The pixels whose whole-numbered centres lie within half the size of a place.
    static void ExpectSquare(const Box& box, double x, double y, double size, const std::string& what) {
        const auto first = [size](double place) {
            return static_cast<UINT>(std::max(std::ceil(place - size / 2), 0.0));
        };
        const auto behind = [size](double place) {
            return static_cast<UINT>(std::min(std::floor(place + size / 2) + 1, double{kSize}));
        };
        EXPECT_TRUE(box.full) << what;
        EXPECT_EQ(box.left, first(x)) << what;
        EXPECT_EQ(box.top, first(y)) << what;
        EXPECT_EQ(box.right, behind(x)) << what;
        EXPECT_EQ(box.bottom, behind(y)) << what;
    }

    Canvas canvas_;
};

TEST_F(Points, HaveTheSizeOfTheStateOrTheVertex) {
    // Clip coordinates to screen: (1 + x) * 32, (1 - y) * 32.
    const D3DVECTOR place = {-0.29f, 0.17f, 0.5f};
    Set(D3DRS_POINTSIZE, 7.3f);
    ExpectSquare(Draw<PlainPoint>({{place}}), 22.72, 26.56, 7.3, "state");
    ExpectSquare(Draw<SizedPoint>({{place, 12.6f}}), 22.72, 26.56, 12.6, "vertex");
    ExpectSquare(Draw<FinalPoint>({{30.3f, 20.2f, 0.5f, 1, 9.7f}}), 30.3, 20.2, 9.7, "final position");
}

TEST_F(Points, StayBetweenTheLimits) {
    const D3DVECTOR place = {0.013f, 0.021f, 0.5f};
    Set(D3DRS_POINTSIZE_MIN, 5.4f);
    Set(D3DRS_POINTSIZE_MAX, 20.6f);
    ExpectSquare(Draw<SizedPoint>({{place, 2.0f}}), 32.416, 31.328, 5.4, "smallest");
    ExpectSquare(Draw<SizedPoint>({{place, 33.0f}}), 32.416, 31.328, 20.6, "largest");
    Set(D3DRS_POINTSIZE_MAX, 1000.0f);   // the device's own limit is 256
    const D3DVECTOR aside = {-4.5f, 0.021f, 0.5f};
    const D3DMATRIX wide = Scaling(0.5f, 0.5f, 1);
    canvas_->SetTransform(D3DTS_PROJECTION, &wide);
    ExpectSquare(Draw<SizedPoint>({{aside, 900.0f}}), -40.0, 31.664, 256, "device limit");
}

TEST_F(Points, ScaleWithDistance) {
    const D3DMATRIX view = Translation(0.3f, -0.2f, 1.5f), projection = Perspective(0.5f, 50);
    canvas_->SetTransform(D3DTS_VIEW, &view);
    canvas_->SetTransform(D3DTS_PROJECTION, &projection);
    canvas_->SetRenderState(D3DRS_POINTSCALEENABLE, TRUE);
    constexpr struct {
        float a, b, c, depth;
    } kRows[] = {{1, 0, 0, 0.8f}, {0, 1, 0, 1.9f}, {0, 0, 1, 0.4f}, {0.3f, 0.2f, 0.1f, 2.6f}};
    for (const auto& row : kRows) {
        Set(D3DRS_POINTSCALE_A, row.a);
        Set(D3DRS_POINTSCALE_B, row.b);
        Set(D3DRS_POINTSCALE_C, row.c);
        const double z = row.depth + 1.5, distance = std::sqrt(0.3 * 0.3 + 0.2 * 0.2 + z * z);
        const double size = kSize * 0.27 * std::sqrt(1 / (row.a + row.b * distance + row.c * distance * distance));
        ExpectSquare(Draw<SizedPoint>({{{0, 0, row.depth}, 0.27f}}), (1 + 0.3 / z) * 32, (1 + 0.2 / z) * 32, size,
                     "distance " + std::to_string(distance));
    }
    // Final positions are not scaled.
    ExpectSquare(Draw<FinalPoint>({{30.3f, 20.2f, 0.5f, 1, 9.7f}}), 30.3, 20.2, 9.7, "final position");
}

TEST_F(Points, ReachIntoTheViewportAndAreDroppedBehindItsDepth) {
    ExpectSquare(Draw<FinalPoint>({{-2.3f, 66.1f, 0.5f, 1, 21.0f}}), -2.3, 66.1, 21.0, "corner");
    EXPECT_FALSE(Draw<FinalPoint>({{30, 30, 1.25f, 1, 21.0f}}).full);
    EXPECT_FALSE(Draw<FinalPoint>({{30, 30, -0.25f, 1, 21.0f}}).full);
    canvas_->SetRenderState(D3DRS_CULLMODE, D3DCULL_CW);
    EXPECT_TRUE(Draw<FinalPoint>({{30, 30, 0.5f, 1, 21.0f}}).full);
    canvas_->SetRenderState(D3DRS_CULLMODE, D3DCULL_CCW);
    EXPECT_TRUE(Draw<FinalPoint>({{30, 30, 0.5f, 1, 21.0f}}).full);
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
    Draw<FinalPoint>(corners, D3DPT_TRIANGLELIST, 1);
    const auto pixels = canvas_.Pixels();
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), kFront), 27);
    canvas_->SetRenderState(D3DRS_FILLMODE, D3DFILL_WIREFRAME);
    Draw<FinalPoint>(corners, D3DPT_TRIANGLELIST, 1);
    EXPECT_EQ(canvas_.PixelArgb(25, 10), kFront);
    EXPECT_NE(canvas_.PixelArgb(18, 18), kFront);   // inside
}

TEST_F(Points, LeaveOutIndicesOutsideTheGivenRange) {
    canvas_->SetRenderState(D3DRS_FILLMODE, D3DFILL_POINT);
    DevicePtr<IDirect3DVertexBuffer9> vertices;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    void* data = nullptr;
    canvas_->CreateVertexBuffer(2 * sizeof(FinalPoint), 0, FinalPoint::kFvf, D3DPOOL_MANAGED, vertices.Receive());
    vertices->Lock(0, 0, &data, 0);
    static_cast<FinalPoint*>(data)[0] = {10.3f, 10.3f, 0.5f, 1, 3};
    static_cast<FinalPoint*>(data)[1] = {40.3f, 10.3f, 0.5f, 1, 3};
    vertices->Unlock();
    canvas_->CreateIndexBuffer(6 * 2, 0, D3DFMT_INDEX16, D3DPOOL_MANAGED, indices.Receive());
    indices->Lock(0, 0, &data, 0);
    constexpr WORD kIndices[] = {4, 5, 3, 6, 65535, 0};
    std::copy(std::begin(kIndices), std::end(kIndices), static_cast<WORD*>(data));
    indices->Unlock();
    canvas_->SetFVF(FinalPoint::kFvf);
    canvas_->SetStreamSource(0, vertices.Get(), 0, sizeof(FinalPoint));
    canvas_->SetIndices(indices.Get());
    EXPECT_EQ(canvas_->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, -4, 4, 2, 0, 2), D3D_OK);
    const auto pixels = canvas_.Pixels();
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), kFront), 18);
}

TEST_F(Points, AreDrawnInAnyNumber) {
    std::vector<FinalPoint> many;
    many.reserve(40000);
    for (int i = 0; i < 40000; ++i) {
        many.push_back({static_cast<float>(i % 64) + 0.3f, static_cast<float>(i / 64 % 64) + 0.3f, 0.5f, 1, 1});
    }
    EXPECT_TRUE(Draw<FinalPoint>(many, D3DPT_POINTLIST, 40000).full);
    EXPECT_EQ(Draw<FinalPoint>(many, D3DPT_POINTLIST, 40000).bottom, kSize);
}

}   // namespace
}   // namespace sparkrig
