// Texture coordinates and blended vertices of the fixed vertex pipeline, read as numbers through a pixel function.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/platform/d3d9_gl/point_canvas.h"
#include "tests/platform/d3d9_gl/reference.h"

namespace sparkrig {
namespace {

using reference::Vec;

struct CoordinateVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_TEX2;
    D3DVECTOR position, normal;
    float u0, v0, u1, v1;
};
constexpr CoordinateVertex kVertex = {{0.4f, -0.3f, 0.6f}, {0.48f, 0.36f, -0.8f}, 0.7f, -1.2f, 2.1f, 0.4f};

class Coordinates : public testing::Test {
  protected:
    Coordinates() {
        canvas_.Set(D3DTS_WORLD, world_);
        canvas_.Set(D3DTS_VIEW, view_);
        canvas_.Set(D3DTS_PROJECTION, Perspective(0.5f, 20));
        EXPECT_EQ(canvas_->CreatePixelShader(ShowVarying(kVaryingTexCoord0), shader_.Receive()), D3D_OK);
        canvas_->SetPixelShader(shader_.Get());
        v_ = reference::Times(reference::From(kVertex.position), 1, world_ * view_);
        n_ = reference::TurnNormal(reference::From(kVertex.normal), world_ * view_);
        const Vec e = reference::Normalize(v_ * -1);
        r_ = n_ * (2 * reference::Dot(n_, e)) - e;
    }
    void Expect(const char* what, double x, double y, double z) {
        const Rgb found = canvas_.DrawPoint(kVertex), wanted = Shown(x, y, z);
        EXPECT_TRUE(Near(found, wanted, 1)) << what << ": " << found << ", wanted " << wanted;
    }

    PointCanvas canvas_;
    DevicePtr<IDirect3DPixelShader9> shader_;
    D3DMATRIX world_ = Scaling(1.2f, 0.8f, 1.1f) * Rotation({0, 1, 0}, 0.5f) * Translation(0.1f, 0.2f, 0.3f);
    D3DMATRIX view_ = Rotation({1, 0, 0}, -0.3f) * Translation(-0.2f, 0.15f, 2.5f);
    Vec v_, n_, r_;
};

TEST_F(Coordinates, ComeFromSetsOrCameraSpace) {
    const double m = 2 * std::sqrt(r_.x * r_.x + r_.y * r_.y + (r_.z + 1) * (r_.z + 1));
    const struct {
        const char* what;
        DWORD index;
        Vec wanted;
    } kRows[] = {{"set 0", 0, {0.7, -1.2, 0}},
                 {"set 1", 1, {2.1, 0.4, 0}},
                 {"missing set", 2, {0, 0, 0}},
                 {"normal", D3DTSS_TCI_CAMERASPACENORMAL, n_},
                 {"position", D3DTSS_TCI_CAMERASPACEPOSITION, v_},
                 {"reflection", D3DTSS_TCI_CAMERASPACEREFLECTIONVECTOR, r_},
                 {"sphere", D3DTSS_TCI_SPHEREMAP, {r_.x / m + 0.5, r_.y / m + 0.5, 0}}};
    for (const auto& row : kRows) {
        canvas_->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, row.index);
        Expect(row.what, row.wanted.x, row.wanted.y, row.wanted.z);
    }
}

TEST_F(Coordinates, GoThroughTheirMatrix) {
    const D3DMATRIX matrix = {
        {{0.6f, -0.4f, 0.3f, 0}, {0.2f, 1.1f, -0.7f, 0}, {0.9f, -0.8f, 0.5f, 0}, {-0.3f, 0.35f, 1.4f, 1}}};
    canvas_.Set(D3DTS_TEXTURE0, matrix);
    const auto row = [&matrix](int i) { return Vec{matrix.m[i][0], matrix.m[i][1], matrix.m[i][2]}; };
    canvas_->SetTextureStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_COUNT3);
    const Vec set = row(0) * 0.7 + row(1) * -1.2 + row(2);   // (u, v, 1, 0): the translation stands in row 2
    Expect("two of a set", set.x, set.y, set.z);
    canvas_->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, D3DTSS_TCI_CAMERASPACEPOSITION);
    const Vec position = row(0) * v_.x + row(1) * v_.y + row(2) * v_.z + row(3);
    Expect("three generated", position.x, position.y, position.z);
    canvas_->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, D3DTSS_TCI_SPHEREMAP);   // two, like a set's
    const double m = 2 * std::sqrt(r_.x * r_.x + r_.y * r_.y + (r_.z + 1) * (r_.z + 1));
    const Vec sphere = row(0) * (r_.x / m + 0.5) + row(1) * (r_.y / m + 0.5) + row(2);
    Expect("two generated", sphere.x, sphere.y, sphere.z);
    canvas_->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, 0);
    canvas_->SetTextureStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_COUNT1);
    Expect("the first alone", set.x, 0, 0);
    canvas_->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, D3DTSS_TCI_CAMERASPACEPOSITION);
    canvas_->SetTextureStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_DISABLE);
    Expect("without", v_.x, v_.y, v_.z);
}

// A texture whose texel (x, y) has the colour (10 x, 10 y, 0).
DevicePtr<IDirect3DTexture9> Grid(IDirect3DDevice9& device) {
    std::vector<D3DCOLOR> texels;
    for (DWORD y = 0; y < 16; ++y) {
        for (DWORD x = 0; x < 16; ++x) texels.push_back(Argb(255, 10 * x, 10 * y, 0));
    }
    return MakeTexture(device, 16, 16, texels);
}

TEST_F(Coordinates, AreDividedByTheirLastComponentWhenProjected) {
    canvas_->SetPixelShader(nullptr);
    const auto texture = Grid(canvas_.Device());
    canvas_->SetTexture(0, texture.Get());
    canvas_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    const D3DMATRIX matrix = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {1.1f, 2.9f, 2, 2.5f}, {0, 0, 0, 0}}};
    canvas_.Set(D3DTS_TEXTURE0, matrix);   // (0.7, -1.2) to (1.8, 1.7, 2, 2.5)
    constexpr struct {
        DWORD flags;
        int x, y;
    } kRows[] = {{D3DTTFF_COUNT3 | D3DTTFF_PROJECTED, 14, 13},   // 0.9, 0.85
                 {D3DTTFF_COUNT4 | D3DTTFF_PROJECTED, 11, 10},   // 0.72, 0.68
                 {D3DTTFF_COUNT3, 12, 11}};                      // 1.8, 1.7 wrapped
    for (const auto& row : kRows) {
        canvas_->SetTextureStageState(0, D3DTSS_TEXTURETRANSFORMFLAGS, row.flags);
        const Rgb found = canvas_.DrawPoint(kVertex);
        EXPECT_TRUE(Near(found, Rgb{10 * row.x, 10 * row.y, 0}, 0)) << row.flags << found;
    }
}

TEST_F(Coordinates, AreShiftedByTheBumpStageBefore) {
    canvas_->SetPixelShader(nullptr);
    const auto grid = Grid(canvas_.Device());
    DevicePtr<IDirect3DTexture9> bump;
    D3DLOCKED_RECT locked;
    canvas_->CreateTexture(1, 1, 1, 0, D3DFMT_V8U8, D3DPOOL_MANAGED, bump.Receive());
    bump->LockRect(0, &locked, nullptr, 0);
    static_cast<signed char*>(locked.pBits)[0] = 64;    // du = 64 / 127
    static_cast<signed char*>(locked.pBits)[1] = -95;   // dv = -95 / 127
    bump->UnlockRect(0);
    const auto plain = MakeTexture(canvas_.Device(), 1, 1, {Argb(255, 192, 32, 0)});   // du = 0.506, dv = -0.749
    canvas_->SetTexture(1, grid.Get());
    canvas_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_BUMPENVMAP);
    constexpr float kMatrix[] = {0.5f, -0.25f, 0.3f, 0.6f};   // M00, M01, M10, M11
    for (DWORD i = 0; i < 4; ++i) {
        canvas_->SetTextureStageState(0, static_cast<D3DTEXTURESTAGESTATETYPE>(D3DTSS_BUMPENVMAT00 + i),
                                      std::bit_cast<DWORD>(kMatrix[i]));
    }
    canvas_->SetTextureStageState(1, D3DTSS_COLOROP, D3DTOP_SELECTARG1);
    const double du = 64 / 127.0, dv = -95 / 127.0;
    const double u = 2.1 + du * 0.5 + dv * 0.3, v = 0.4 + du * -0.25 + dv * 0.6;
    const auto texel = [](double c) { return static_cast<int>((c - std::floor(c)) * 16); };
    for (IDirect3DTexture9* texture : {bump.Get(), plain.Get()}) {
        canvas_->SetTexture(0, texture);
        const Rgb found = canvas_.DrawPoint(kVertex);
        EXPECT_TRUE(Near(found, Rgb{10 * texel(u), 10 * texel(v), 0}, 0)) << found << " at " << u << ", " << v;
    }
}

// ---- Blended vertices

struct BlendVertex {
    D3DVECTOR position;
    float weights[3];
    BYTE indices[4];
    D3DVECTOR normal;
};

class VertexBlending : public testing::Test {
  protected:
    VertexBlending() {
        for (DWORD i = 0; i < 256; ++i) canvas_.Set(D3DTS_WORLDMATRIX(i), World(i));
        canvas_.Set(D3DTS_VIEW, view_);
        canvas_.Set(D3DTS_PROJECTION, Perspective(0.25f, 20));
        canvas_->CreatePixelShader(ShowVarying(kVaryingTexCoord0), shader_.Receive());
        canvas_->SetPixelShader(shader_.Get());
    }
    static D3DMATRIX World(DWORD i) {
        const float k = static_cast<float>(i % 17) * 0.1f;
        return Scaling(1 + 0.2f * k, 1 - 0.1f * k, 0.9f) * Rotation({0.3f, 1, 0.2f}, k) *
               Translation(0.2f * k, -0.3f * k, k);
    }

    PointCanvas canvas_;
    DevicePtr<IDirect3DPixelShader9> shader_;
    D3DMATRIX view_ = Rotation({1, 0, 0}, -0.3f) * Translation(-0.2f, 0.15f, 2.2f);
};

TEST_F(VertexBlending, WeighsTheWorldMatrices) {
    const BlendVertex vertex = {{0.4f, -0.3f, 0.6f}, {0.45f, 0.3f, 0.15f}, {7, 201, 15, 90}, {0.6f, 0.48f, -0.64f}};
    constexpr DWORD kFvf = D3DFVF_XYZB4 | D3DFVF_LASTBETA_UBYTE4 | D3DFVF_NORMAL;
    constexpr struct {
        DWORD state;
        int matrices;
    } kRows[] = {
        {D3DVBF_DISABLE, 0}, {D3DVBF_0WEIGHTS, 1}, {D3DVBF_1WEIGHTS, 2}, {D3DVBF_2WEIGHTS, 3}, {D3DVBF_3WEIGHTS, 4}};
    for (const bool indexed : {false, true}) {
        canvas_->SetRenderState(D3DRS_INDEXEDVERTEXBLENDENABLE, indexed);
        for (const auto& row : kRows) {
            canvas_->SetRenderState(D3DRS_VERTEXBLEND, row.state);
            Vec position, normal;
            double left = 1;
            for (int i = 0; i < std::max(row.matrices, 1); ++i) {
                const bool last = i + 1 >= row.matrices;
                const double weight = last ? left : double{vertex.weights[i]};
                left -= weight;
                const DWORD number = row.matrices == 0 ? 0 : indexed ? vertex.indices[i] : static_cast<DWORD>(i);
                position =
                    position + reference::Times(reference::From(vertex.position), 1, World(number) * view_) * weight;
                normal = normal + reference::TurnNormal(reference::From(vertex.normal), World(number) * view_) * weight;
            }
            const std::string what = std::to_string(row.matrices) + (indexed ? " indexed" : "");
            canvas_->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, D3DTSS_TCI_CAMERASPACEPOSITION);
            Rgb found = canvas_.DrawPoint(vertex, kFvf), wanted = Shown(position.x, position.y, position.z);
            EXPECT_TRUE(Near(found, wanted, 1)) << what << " position " << found << ", wanted " << wanted;
            canvas_->SetTextureStageState(0, D3DTSS_TEXCOORDINDEX, D3DTSS_TCI_CAMERASPACENORMAL);
            found = canvas_.DrawPoint(vertex, kFvf), wanted = Shown(normal.x, normal.y, normal.z);
            EXPECT_TRUE(Near(found, wanted, 1)) << what << " normal " << found << ", wanted " << wanted;
        }
    }
}

}   // namespace
}   // namespace sparkrig
