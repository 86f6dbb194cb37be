// Samplers: filters and levels. Addresses are among the random states (fixed_function_test.cpp).
#include <gtest/gtest.h>

#include <bit>
#include <tuple>

#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

class Samplers : public testing::Test {
  protected:
    Samplers() : canvas_(8, 8) { canvas_->SetTextureStageState(0, D3DTSS_COLOROP, D3DTOP_SELECTARG1); }
    // The red of a pixel when the same coordinates lie over the whole canvas.
    int At(float u, float v) {
        canvas_.Clear(0);
        canvas_.Draw<ScreenVertex>(
            ScreenVertex::kFvf, D3DPT_TRIANGLELIST, 1,
            {{-9, -9, 0.5f, 1, 0, 0, u, v}, {30, -9, 0.5f, 1, 0, 0, u, v}, {-9, 30, 0.5f, 1, 0, 0, u, v}});
        return canvas_.Pixel(3, 3).r;
    }
    Canvas canvas_;
};

TEST_F(Samplers, TakeTheNearestTexelOrMixFour) {
    const auto texture = MakeTexture(
        canvas_.Device(), 2, 2, {Argb(255, 40, 0, 0), Argb(255, 80, 0, 0), Argb(255, 120, 0, 0), Argb(255, 240, 0, 0)});
    canvas_->SetTexture(0, texture.Get());
    EXPECT_EQ(At(0.51f, 0.49f), 80);
    canvas_->SetSamplerState(0, D3DSAMP_MAGFILTER, D3DTEXF_LINEAR);
    EXPECT_NEAR(At(0.5f, 0.5f), 120, 1);
    EXPECT_NEAR(At(0.375f, 0.25f), 50, 1);   // a quarter of the way from 40 to 80
    EXPECT_EQ(At(0.25f, 0.75f), 120);
}

TEST_F(Samplers, ChooseLevelsByFilterBiasAndLimit) {
    DevicePtr<IDirect3DTexture9> texture;
    canvas_->CreateTexture(8, 8, 0, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive());
    for (UINT level = 0; level < 4; ++level)
        FillLevel(*texture, level, std::vector<D3DCOLOR>(64, Argb(255, 50 * (level + 1), 0, 0)).data());
    canvas_->SetTexture(0, texture.Get());
    canvas_->SetTextureStageState(0, D3DTSS_ALPHAOP, D3DTOP_SELECTARG2);
    constexpr struct {
        DWORD filter;
        float bias;
        DWORD largest;
        int repeats, wanted, tolerance;
    } kRows[] = {
        {D3DTEXF_NONE, 0, 0, 4, 50, 0},    {D3DTEXF_NONE, 0, 2, 1, 150, 0},  {D3DTEXF_POINT, 0, 0, 1, 50, 0},
        {D3DTEXF_POINT, 0, 0, 2, 100, 0},  {D3DTEXF_POINT, 0, 0, 4, 150, 0}, {D3DTEXF_POINT, 1, 0, 2, 150, 0},
        {D3DTEXF_POINT, -1, 0, 4, 100, 0}, {D3DTEXF_POINT, 0, 3, 1, 200, 0}, {D3DTEXF_LINEAR, 0.5f, 0, 2, 125, 3}};
    for (const auto& row : kRows) {
        canvas_->SetSamplerState(0, D3DSAMP_MIPFILTER, row.filter);
        canvas_->SetSamplerState(0, D3DSAMP_MIPMAPLODBIAS, std::bit_cast<DWORD>(row.bias));
        canvas_->SetSamplerState(0, D3DSAMP_MAXMIPLEVEL, row.largest);
        canvas_.Clear(0);
        const float end = static_cast<float>(row.repeats);   // how often the texture lies over the canvas
        canvas_.Draw<ScreenVertex>(ScreenVertex::kFvf, D3DPT_TRIANGLESTRIP, 2,
                                   {{-0.5f, -0.5f, 0.5f, 1, 0, 0, 0, 0},
                                    {7.5f, -0.5f, 0.5f, 1, 0, 0, end, 0},
                                    {-0.5f, 7.5f, 0.5f, 1, 0, 0, 0, end},
                                    {7.5f, 7.5f, 0.5f, 1, 0, 0, end, end}});
        EXPECT_NEAR(canvas_.Pixel(3, 4).r, row.wanted, row.tolerance)
            << "filter " << row.filter << " bias " << row.bias << " from " << row.largest << " x " << row.repeats;
    }
}

TEST_F(Samplers, EnlargeTheLargestLevelThatTheyReadByTheirOwnFilter) {
    DevicePtr<IDirect3DTexture9> texture;
    canvas_->CreateTexture(4, 4, 2, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive());
    constexpr D3DCOLOR kTexels[] = {0xFF000000, 0xFFC80000, 0xFF000000, 0xFFC80000};
    FillLevel(*texture, 1, kTexels);
    canvas_->SetTexture(0, texture.Get());
    canvas_->SetSamplerState(0, D3DSAMP_MAXMIPLEVEL, 1);
    constexpr std::tuple<DWORD, DWORD, int> kRows[] = {{D3DTEXF_LINEAR, D3DTEXF_POINT, 50},
                                                       {D3DTEXF_POINT, D3DTEXF_LINEAR, 0}};
    for (const auto& [enlarging, reducing, wanted] : kRows) {
        canvas_->SetSamplerState(0, D3DSAMP_MAGFILTER, enlarging);
        canvas_->SetSamplerState(0, D3DSAMP_MINFILTER, reducing);
        EXPECT_NEAR(At(0.375f, 0.5f), wanted, 1);
    }
}

}   // namespace
}   // namespace sparkrig
