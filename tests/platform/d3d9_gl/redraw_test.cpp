// Draws that follow each other: what changed in between counts, and nothing else does.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kBack = Argb(255, 10, 20, 30), kFirst = Argb(255, 200, 100, 50), kSecond = Argb(255, 60, 170, 240);

class Redraw : public testing::Test {
  protected:
    Redraw() : canvas_(8, 8) {}

    void MakeBuffer(D3DPOOL pool, DWORD usage) {
        canvas_->CreateVertexBuffer(8 * sizeof(ScreenVertex), usage, ScreenVertex::kFvf, pool, quads_.Receive());
        ASSERT_TRUE(quads_);
    }
    // Writes one of two quads: the left or the right half of the canvas.
    void WriteQuad(UINT which, D3DCOLOR colour) {
        const float left = which == 0 ? -0.25f : 3.75f;
        const std::vector<ScreenVertex> quad = Corners(left, -0.25f, left + 4, 7.75f, colour);
        FillBuffer(*quads_, which * 4 * sizeof quad[0], quad.data(), 4 * sizeof quad[0]);
    }
    void DrawQuads() {
        canvas_.Clear(kBack);
        canvas_->SetFVF(ScreenVertex::kFvf);
        canvas_->SetStreamSource(0, quads_.Get(), 0, sizeof(ScreenVertex));
        canvas_->DrawPrimitive(D3DPT_TRIANGLESTRIP, 0, 2);
        canvas_->DrawPrimitive(D3DPT_TRIANGLESTRIP, 4, 2);
    }
    void NextFrame() {
        canvas_->EndScene();
        EXPECT_EQ(canvas_->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
        canvas_->BeginScene();
    }
    void ExpectHalves(D3DCOLOR left, D3DCOLOR right, const char* what) {
        EXPECT_EQ(canvas_.PixelArgb(1, 6), left) << what;
        EXPECT_EQ(canvas_.PixelArgb(6, 1), right) << what;
    }

    Canvas canvas_;
    DevicePtr<IDirect3DVertexBuffer9> quads_;
};

TEST_F(Redraw, ShowsWhatABufferHoldsNow) {
    for (const auto& [pool, usage] : std::initializer_list<std::pair<D3DPOOL, DWORD>>{
             {D3DPOOL_MANAGED, 0}, {D3DPOOL_SYSTEMMEM, 0}, {D3DPOOL_DEFAULT, D3DUSAGE_DYNAMIC}}) {
        MakeBuffer(pool, usage);
        WriteQuad(0, kFirst);
        WriteQuad(1, kFirst);
        DrawQuads();
        ExpectHalves(kFirst, kFirst, "streamed");
        WriteQuad(1, kSecond);   // the one drawn last
        canvas_->DrawPrimitive(D3DPT_TRIANGLESTRIP, 4, 2);
        ExpectHalves(kFirst, kSecond, "rewritten in the same frame");
        for (int frame = 0; frame < 3; ++frame) {
            NextFrame();
            DrawQuads();
            ExpectHalves(kFirst, kSecond, "at rest");
        }
        WriteQuad(0, kSecond);
        DrawQuads();
        ExpectHalves(kSecond, kSecond, "rewritten after a rest");
        NextFrame();
        WriteQuad(1, kFirst);
        DrawQuads();
        ExpectHalves(kSecond, kFirst, "rewritten again");
        NextFrame();
        DrawQuads();
        ExpectHalves(kSecond, kFirst, "at rest again");
    }
}

// More than the ring holds, so that its parts are used again and the uniforms have to move on.
TEST_F(Redraw, StreamsWithoutEnd) {
    MakeBuffer(D3DPOOL_SYSTEMMEM, 0);
    DevicePtr<IDirect3DVertexBuffer9> large;
    constexpr UINT kVertices = 60000;
    canvas_->CreateVertexBuffer(kVertices * sizeof(ScreenVertex), 0, ScreenVertex::kFvf, D3DPOOL_SYSTEMMEM,
                                large.Receive());
    canvas_->SetRenderState(D3DRS_TEXTUREFACTOR, kSecond);
    canvas_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG2);
    canvas_->SetTextureStageState(0, D3DTSS_COLORARG2, D3DTA_TFACTOR);
    for (int round = 0; round < 80; ++round) {   // 150 MB
        void* data = nullptr;
        large->Lock(0, 0, &data, 0);
        large->Unlock();
        canvas_->SetFVF(ScreenVertex::kFvf);
        canvas_->SetStreamSource(0, large.Get(), 0, sizeof(ScreenVertex));
        ASSERT_EQ(canvas_->DrawPrimitive(D3DPT_TRIANGLELIST, 0, kVertices / 3), D3D_OK);
    }
    WriteQuad(0, kFirst);
    canvas_->SetStreamSource(0, quads_.Get(), 0, sizeof(ScreenVertex));
    canvas_->DrawPrimitive(D3DPT_TRIANGLESTRIP, 0, 2);
    EXPECT_EQ(canvas_.PixelArgb(1, 6), kSecond);
}

TEST_F(Redraw, SendsAllThatSeveralLocksWrote) {
    const auto texture = MakeTexture(canvas_.Device(), 2, 8, std::vector<D3DCOLOR>(16, kBack));
    canvas_->SetTexture(0, texture.Get());
    canvas_.FillAll(0xFFFFFFFF);
    std::vector<D3DCOLOR> wanted(64, kBack);
    for (const LONG row : {5, 1, 3}) {
        const RECT rect = {1, row, 2, row + 1};
        D3DLOCKED_RECT locked;
        texture->LockRect(0, &locked, &rect, 0);
        *static_cast<D3DCOLOR*>(locked.pBits) = kFirst;
        texture->UnlockRect(0);
        std::fill_n(wanted.begin() + row * 8 + 4, 4, kFirst);
    }
    canvas_.FillAll(0xFFFFFFFF);
    EXPECT_EQ(canvas_.Pixels(), wanted);
}

}   // namespace
}   // namespace sparkrig
