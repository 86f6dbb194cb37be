// Fog factors of every mode against their formulas.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/platform/d3d9_gl/point_canvas.h"

namespace sparkrig {
namespace {

struct FogVertex {
    static constexpr DWORD kFvf = D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_SPECULAR;
    D3DVECTOR position;
    D3DCOLOR diffuse, specular;
};

constexpr D3DCOLOR kColour = Argb(255, 240, 120, 30), kFog = Argb(0, 20, 60, 200);
constexpr float kStart = 1.5f, kEnd = 6.0f, kDensity = 0.23f;
constexpr double kSpecularFactor = 0.6;
constexpr D3DCOLOR kSpecular = Argb(153, 5, 5, 5);   // alpha 0.6

Rgb Fogged(double factor) {
    const double f = std::clamp(factor, 0.0, 1.0);
    const auto mix = [f](int colour, int fog) { return static_cast<int>(std::lround(f * colour + (1 - f) * fog)); };
    const Rgb colour = ToRgb(kColour), fog = ToRgb(kFog);
    return {mix(colour.r, fog.r), mix(colour.g, fog.g), mix(colour.b, fog.b)};
}

double Factor(DWORD mode, double d) {
    switch (mode) {
        case D3DFOG_EXP: return std::exp(-kDensity * d);
        case D3DFOG_EXP2: return std::exp(-std::pow(kDensity * d, 2));
        case D3DFOG_LINEAR: return (kEnd - d) / (kEnd - kStart);
        default: return kSpecularFactor;
    }
}

class Fog : public testing::Test {
  protected:
    Fog() {
        canvas_.Set(D3DTS_PROJECTION, Perspective(0.5f, 50));
        canvas_->SetRenderState(D3DRS_FOGENABLE, TRUE);
        canvas_->SetRenderState(D3DRS_FOGCOLOR, kFog);
        canvas_.Set(D3DRS_FOGSTART, kStart);
        canvas_.Set(D3DRS_FOGEND, kEnd);
        canvas_.Set(D3DRS_FOGDENSITY, kDensity);
    }
    void SetModes(DWORD vertex, DWORD table, bool range) {
        canvas_->SetRenderState(D3DRS_FOGVERTEXMODE, vertex);
        canvas_->SetRenderState(D3DRS_FOGTABLEMODE, table);
        canvas_->SetRenderState(D3DRS_RANGEFOGENABLE, range);
    }
    PointCanvas canvas_;
};

TEST_F(Fog, FollowsTheFormulaOfItsModeAndDistance) {
    for (const float depth : {0.9f, 2.4f, 4.1f, 7.7f}) {
        const FogVertex vertex = {{0.7f * depth, -0.6f * depth, depth}, kColour, kSpecular};
        const double range = depth * std::sqrt(1 + 0.49 + 0.36);
        for (const DWORD mode : {D3DFOG_EXP, D3DFOG_EXP2, D3DFOG_LINEAR}) {
            const auto expect = [&](const char* what, double factor) {
                const Rgb found = canvas_.DrawPoint(vertex);
                EXPECT_TRUE(Near(found, Fogged(factor), 1))
                    << what << " mode " << mode << " depth " << depth << found << ", wanted " << Fogged(factor);
            };
            SetModes(mode, D3DFOG_NONE, false);
            expect("vertex", Factor(mode, depth));
            SetModes(mode, D3DFOG_NONE, true);
            expect("range", Factor(mode, range));
            SetModes(D3DFOG_NONE, mode, true);   // the range never applies to pixels
            expect("table", Factor(mode, depth));
            SetModes(mode % 3 + 1, mode, false);
            expect("both", Factor(mode, depth));
        }
    }
}

TEST_F(Fog, TakesTheSpecularAlphaWithoutAMode) {
    const FogVertex vertex = {{0, 0, 3}, kColour, kSpecular};
    SetModes(D3DFOG_NONE, D3DFOG_NONE, false);
    EXPECT_TRUE(Near(canvas_.DrawPoint(vertex), Fogged(kSpecularFactor), 1));
    canvas_->SetRenderState(D3DRS_FOGENABLE, FALSE);
    EXPECT_TRUE(Near(canvas_.DrawPoint(vertex), ToRgb(kColour), 0));
}

TEST_F(Fog, OfFinalPositionsIsTheirSpecularAlpha) {
    SetModes(D3DFOG_EXP, D3DFOG_NONE, true);
    canvas_.FillAll(kColour, kSpecular);
    EXPECT_TRUE(Near(canvas_.Pixel(1, 1), Fogged(kSpecularFactor), 1)) << canvas_.Pixel(1, 1);
    canvas_.FillAll(kColour, 0xFF000000);
    EXPECT_TRUE(Near(canvas_.Pixel(1, 1), ToRgb(kColour), 0)) << canvas_.Pixel(1, 1);
}

TEST_F(Fog, LeavesAVertexWithoutSpecularColourAlone) {
    struct Vertex {
        D3DVECTOR position;
        D3DCOLOR diffuse;
    };
    SetModes(D3DFOG_NONE, D3DFOG_NONE, false);
    EXPECT_TRUE(Near(canvas_.DrawPoint(Vertex{{0, 0, 3}, kColour}, D3DFVF_XYZ | D3DFVF_DIFFUSE), ToRgb(kColour), 0));
}

TEST_F(Fog, OfPixelsGoesByDepthWhereTheProjectionDoesNotDivide) {
    canvas_.Set(D3DTS_PROJECTION, Scaling(0.5f, 0.5f, 0.1f));
    canvas_.Set(D3DRS_FOGSTART, 0.1f);
    canvas_.Set(D3DRS_FOGEND, 0.9f);
    SetModes(D3DFOG_NONE, D3DFOG_LINEAR, false);
    for (const float depth : {2.0f, 6.5f}) {
        const Rgb found = canvas_.DrawPoint(FogVertex{{0, 0, depth}, kColour, 0});
        EXPECT_TRUE(Near(found, Fogged((0.9 - 0.1 * depth) / 0.8), 1)) << depth << found;
    }
}

TEST_F(Fog, ThatStartsWhereItEndsIsAStep) {
    SetModes(D3DFOG_LINEAR, D3DFOG_NONE, false);
    canvas_.Set(D3DRS_FOGSTART, 3.0f);
    canvas_.Set(D3DRS_FOGEND, 3.0f);
    EXPECT_TRUE(Near(canvas_.DrawPoint(FogVertex{{0, 0, 2.5f}, kColour, 0}), ToRgb(kColour), 0));
    EXPECT_TRUE(Near(canvas_.DrawPoint(FogVertex{{0, 0, 3.5f}, kColour, 0}), ToRgb(kFog), 0));
}

}   // namespace
}   // namespace sparkrig
