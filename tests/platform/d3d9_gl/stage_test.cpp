// The cascade of texture stages against the documented formula of each operation.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

using Colour = std::array<double, 4>;   // r, g, b, a in 0..1

Colour ToColour(D3DCOLOR argb) {
    return {(argb >> 16 & 255) / 255.0, (argb >> 8 & 255) / 255.0, (argb & 255) / 255.0, (argb >> 24) / 255.0};
}

struct Inputs {
    Colour texture, diffuse, factor, current;
};

constexpr D3DCOLOR kTexture = Argb(140, 200, 90, 30), kDiffuse = Argb(190, 60, 170, 240),
                   kFactor = Argb(70, 20, 130, 210), kConstant = Argb(110, 150, 45, 220),
                   kSpecular = Argb(35, 25, 75, 125);

// One channel of an operation: c of 0..2 is colour, 3 alpha. a1 = texture, a2 = diffuse, a0 = texture factor.
using Formula = std::function<double(const Inputs&, std::size_t)>;
struct OperationRow {
    DWORD operation;
    bool colour_only;
    Formula formula;
};

double Dot3(const Inputs& in) {
    double sum = 0;
    for (std::size_t i = 0; i < 3; ++i) sum += 4 * (in.texture[i] - 0.5) * (in.diffuse[i] - 0.5);
    return sum;
}

const OperationRow kOperations[] = {
    {D3DTOP_SELECTARG1, false, [](const Inputs& in, std::size_t c) { return in.texture[c]; }},
    {D3DTOP_SELECTARG2, false, [](const Inputs& in, std::size_t c) { return in.diffuse[c]; }},
    {D3DTOP_MODULATE, false, [](const Inputs& in, std::size_t c) { return in.texture[c] * in.diffuse[c]; }},
    {D3DTOP_MODULATE2X, false, [](const Inputs& in, std::size_t c) { return 2 * in.texture[c] * in.diffuse[c]; }},
    {D3DTOP_MODULATE4X, false, [](const Inputs& in, std::size_t c) { return 4 * in.texture[c] * in.diffuse[c]; }},
    {D3DTOP_ADD, false, [](const Inputs& in, std::size_t c) { return in.texture[c] + in.diffuse[c]; }},
    {D3DTOP_ADDSIGNED, false, [](const Inputs& in, std::size_t c) { return in.texture[c] + in.diffuse[c] - 0.5; }},
    {D3DTOP_ADDSIGNED2X, false,
     [](const Inputs& in, std::size_t c) { return 2 * (in.texture[c] + in.diffuse[c] - 0.5); }},
    {D3DTOP_SUBTRACT, false, [](const Inputs& in, std::size_t c) { return in.texture[c] - in.diffuse[c]; }},
    {D3DTOP_ADDSMOOTH, false,
     [](const Inputs& in, std::size_t c) { return in.texture[c] + in.diffuse[c] * (1 - in.texture[c]); }},
    {D3DTOP_BLENDDIFFUSEALPHA, false,
     [](const Inputs& in, std::size_t c) {
         return in.texture[c] * in.diffuse[3] + in.diffuse[c] * (1 - in.diffuse[3]);
     }},
    {D3DTOP_BLENDTEXTUREALPHA, false,
     [](const Inputs& in, std::size_t c) {
         return in.texture[c] * in.texture[3] + in.diffuse[c] * (1 - in.texture[3]);
     }},
    {D3DTOP_BLENDFACTORALPHA, false,
     [](const Inputs& in, std::size_t c) { return in.texture[c] * in.factor[3] + in.diffuse[c] * (1 - in.factor[3]); }},
    {D3DTOP_BLENDTEXTUREALPHAPM, false,
     [](const Inputs& in, std::size_t c) { return in.texture[c] + in.diffuse[c] * (1 - in.texture[3]); }},
    {D3DTOP_BLENDCURRENTALPHA, false,
     [](const Inputs& in, std::size_t c) {
         return in.texture[c] * in.current[3] + in.diffuse[c] * (1 - in.current[3]);
     }},
    {D3DTOP_MODULATEALPHA_ADDCOLOR, true,
     [](const Inputs& in, std::size_t c) { return in.texture[c] + in.texture[3] * in.diffuse[c]; }},
    {D3DTOP_MODULATECOLOR_ADDALPHA, true,
     [](const Inputs& in, std::size_t c) { return in.texture[c] * in.diffuse[c] + in.texture[3]; }},
    {D3DTOP_MODULATEINVALPHA_ADDCOLOR, true,
     [](const Inputs& in, std::size_t c) { return (1 - in.texture[3]) * in.diffuse[c] + in.texture[c]; }},
    {D3DTOP_MODULATEINVCOLOR_ADDALPHA, true,
     [](const Inputs& in, std::size_t c) { return (1 - in.texture[c]) * in.diffuse[c] + in.texture[3]; }},
    {D3DTOP_DOTPRODUCT3, false, [](const Inputs& in, std::size_t) { return Dot3(in); }},
    {D3DTOP_MULTIPLYADD, false,
     [](const Inputs& in, std::size_t c) { return in.factor[c] + in.texture[c] * in.diffuse[c]; }},
    {D3DTOP_LERP, false,
     [](const Inputs& in, std::size_t c) { return in.factor[c] * in.texture[c] + (1 - in.factor[c]) * in.diffuse[c]; }},
};

class Stages : public testing::Test {
  protected:
    Stages() : canvas_(4, 4, D3DFMT_A8R8G8B8) { canvas_->SetRenderState(D3DRS_TEXTUREFACTOR, kFactor); }

    void Set(DWORD stage, DWORD op, DWORD arg1, DWORD arg2, DWORD arg0 = D3DTA_CURRENT) {
        canvas_->SetTextureStageState(stage, D3DTSS_COLOROP, op);
        canvas_->SetTextureStageState(stage, D3DTSS_COLORARG1, arg1);
        canvas_->SetTextureStageState(stage, D3DTSS_COLORARG2, arg2);
        canvas_->SetTextureStageState(stage, D3DTSS_COLORARG0, arg0);
    }
    void SetAlpha(DWORD stage, DWORD op, DWORD arg1, DWORD arg2, DWORD arg0 = D3DTA_CURRENT) {
        canvas_->SetTextureStageState(stage, D3DTSS_ALPHAOP, op);
        canvas_->SetTextureStageState(stage, D3DTSS_ALPHAARG1, arg1);
        canvas_->SetTextureStageState(stage, D3DTSS_ALPHAARG2, arg2);
        canvas_->SetTextureStageState(stage, D3DTSS_ALPHAARG0, arg0);
    }
    D3DCOLOR Draw(D3DCOLOR diffuse = kDiffuse) {
        canvas_.Clear(0);
        canvas_.FillAll(diffuse, kSpecular);
        return canvas_.PixelArgb(2, 1);
    }
    void ExpectNear(D3DCOLOR found, const Colour& wanted, const std::string& what, int channels = 4) {
        const Colour got = ToColour(found);
        for (int i = 0; i < channels; ++i) {
            const auto c = static_cast<std::size_t>(i);
            EXPECT_NEAR(got[c] * 255, std::clamp(wanted[c], 0.0, 1.0) * 255, 1.01) << what << ", channel " << i;
        }
    }

    Canvas canvas_;
};

TEST_F(Stages, ComputeEveryOperation) {
    for (const D3DCOLOR texel : {kTexture, Argb(45, 15, 155, 235)}) {
        const auto texture = MakeTexture(canvas_.Device(), 1, 1, {texel});
        canvas_->SetTexture(0, texture.Get());
        const Inputs in = {ToColour(texel), ToColour(kDiffuse), ToColour(kFactor), ToColour(kDiffuse)};
        for (const OperationRow& row : kOperations) {
            Set(0, row.operation, D3DTA_TEXTURE, D3DTA_DIFFUSE, D3DTA_TFACTOR);
            SetAlpha(0, row.colour_only ? DWORD{D3DTOP_SELECTARG1} : row.operation, D3DTA_TEXTURE, D3DTA_DIFFUSE,
                     D3DTA_TFACTOR);
            Colour wanted;
            for (std::size_t c = 0; c < 3; ++c) wanted[c] = row.formula(in, c);
            wanted[3] = row.colour_only ? in.texture[3] : row.formula(in, 3);
            ExpectNear(Draw(), wanted, "operation " + std::to_string(row.operation));
        }
    }
}

TEST_F(Stages, ReadEveryArgumentAndModifier) {
    const auto texture = MakeTexture(canvas_.Device(), 1, 1, {kTexture});
    canvas_->SetTexture(0, texture.Get());
    canvas_->SetTextureStageState(0, D3DTSS_CONSTANT, kConstant);
    const struct {
        DWORD argument;
        D3DCOLOR value;
    } kRows[] = {{D3DTA_DIFFUSE, kDiffuse},  {D3DTA_CURRENT, kDiffuse},   {D3DTA_TEXTURE, kTexture},
                 {D3DTA_TFACTOR, kFactor},   {D3DTA_CONSTANT, kConstant}, {D3DTA_TEMP, 0},
                 {D3DTA_SPECULAR, kSpecular}};
    for (const auto& row : kRows) {
        for (const DWORD modifier :
             {DWORD{0}, D3DTA_COMPLEMENT, D3DTA_ALPHAREPLICATE, D3DTA_COMPLEMENT | D3DTA_ALPHAREPLICATE}) {
            Colour wanted = ToColour(row.value);
            if (modifier & D3DTA_ALPHAREPLICATE) wanted.fill(wanted[3]);
            if (modifier & D3DTA_COMPLEMENT) {
                for (double& channel : wanted) channel = 1 - channel;
            }
            Set(0, D3DTOP_SELECTARG1, row.argument | modifier, D3DTA_CURRENT);
            SetAlpha(0, D3DTOP_SELECTARG1, row.argument | modifier, D3DTA_CURRENT);
            ExpectNear(Draw(), wanted, std::to_string(row.argument) + " | " + std::to_string(modifier));
        }
    }
}

TEST_F(Stages, PassResultsOnAndEndAtTheFirstDisabledOne) {
    const auto texture = MakeTexture(canvas_.Device(), 1, 1, {kTexture});
    canvas_->SetTexture(0, texture.Get());
    const Colour t = ToColour(kTexture), d = ToColour(kDiffuse), f = ToColour(kFactor);
    Colour product, sum;
    for (std::size_t c = 0; c < 4; ++c) {
        product[c] = t[c] * d[c];
        sum[c] = product[c] + f[c];
    }
    Set(0, D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_DIFFUSE);
    SetAlpha(0, D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_DIFFUSE);
    Set(2, D3DTOP_ADD, D3DTA_CURRENT, D3DTA_DIFFUSE);
    ExpectNear(Draw(), product, "one stage");
    Set(1, D3DTOP_ADD, D3DTA_CURRENT, D3DTA_TFACTOR);
    SetAlpha(1, D3DTOP_ADD, D3DTA_CURRENT, D3DTA_TFACTOR);
    Set(2, D3DTOP_DISABLE, D3DTA_CURRENT, D3DTA_DIFFUSE);
    ExpectNear(Draw(), sum, "two stages");
    SetAlpha(1, D3DTOP_DISABLE, D3DTA_CURRENT, D3DTA_TFACTOR);
    sum[3] = product[3];
    ExpectNear(Draw(), sum, "the second without alpha operation");
    // The second into TEMP: CURRENT stays; the third adds both.
    canvas_->SetTextureStageState(1, D3DTSS_RESULTARG, D3DTA_TEMP);
    Set(2, D3DTOP_SUBTRACT, D3DTA_TEMP, D3DTA_CURRENT);
    SetAlpha(2, D3DTOP_SELECTARG1, D3DTA_TFACTOR, D3DTA_CURRENT);
    Colour difference;
    for (std::size_t c = 0; c < 3; ++c) difference[c] = std::min(product[c] + f[c], 1.0) - product[c];
    difference[3] = f[3];
    ExpectNear(Draw(), difference, "through TEMP");
    Set(0, D3DTOP_DISABLE, D3DTA_TEXTURE, D3DTA_DIFFUSE);
    ExpectNear(Draw(), d, "no stage");
}

TEST_F(Stages, WithoutATextureAreSkippedOnlyWhenTheyReadIt) {
    const Colour d = ToColour(kDiffuse), f = ToColour(kFactor);
    ExpectNear(Draw(), d, "defaults without a texture");
    Set(0, D3DTOP_SELECTARG2, D3DTA_TEXTURE, D3DTA_TFACTOR);
    SetAlpha(0, D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_TFACTOR);
    ExpectNear(Draw(), {f[0], f[1], f[2], d[3] * f[3]}, "second argument, alpha of no texture");
    Set(0, D3DTOP_MODULATE, D3DTA_TFACTOR, D3DTA_TEXTURE);
    ExpectNear(Draw(), {f[0], f[1], f[2], d[3] * f[3]}, "no texture is white as second argument");
}

TEST_F(Stages, AddSpecularAfterwards) {
    const Colour d = ToColour(kDiffuse), s = ToColour(kSpecular);
    Set(0, D3DTOP_SELECTARG2, D3DTA_TEXTURE, D3DTA_DIFFUSE);
    canvas_->SetRenderState(D3DRS_SPECULARENABLE, TRUE);
    ExpectNear(Draw(), {d[0] + s[0], d[1] + s[1], d[2] + s[2], d[3]}, "added");
    canvas_->SetRenderState(D3DRS_SPECULARENABLE, FALSE);
    ExpectNear(Draw(), d, "not added");
    Set(0, D3DTOP_SELECTARG2, D3DTA_TEXTURE, D3DTA_SPECULAR);
    ExpectNear(Draw(), s, "as an argument", 3);
}

TEST_F(Stages, AreFlatInTheColourOfTheFirstVertex) {
    canvas_->SetRenderState(D3DRS_SHADEMODE, D3DSHADE_FLAT);
    canvas_.Clear(0);
    canvas_.Draw<ScreenVertex>(
        ScreenVertex::kFvf, D3DPT_TRIANGLELIST, 1,
        {{-1, -1, 0, 1, kTexture, 0, 0, 0}, {9, -1, 0, 1, kDiffuse, 0, 0, 0}, {-1, 9, 0, 1, kFactor, 0, 0, 0}});
    EXPECT_EQ(canvas_.PixelArgb(0, 0), kTexture);
    EXPECT_EQ(canvas_.PixelArgb(3, 2), kTexture);
}

}   // namespace
}   // namespace sparkrig
