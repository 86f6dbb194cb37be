// What reaches the frame buffer: the blending modes of the program by their states, blend operations, write mask,
// alpha test.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

using Colour = std::array<double, 4>;   // r, g, b, a in 0..1

Colour ToColour(D3DCOLOR argb) {
    const Rgb rgb = ToRgb(argb);
    return {rgb.r / 255.0, rgb.g / 255.0, rgb.b / 255.0, (argb >> 24) / 255.0};
}
Rgb ToRgb(const Colour& colour) {
    const auto byte = [](double value) { return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255)); };
    return {byte(colour[0]), byte(colour[1]), byte(colour[2])};
}

// The factor of one channel as the interface documents it; a target without alpha has destination alpha 1.
double Factor(DWORD factor, const Colour& source, const Colour& destination, std::size_t channel) {
    switch (factor) {
        case D3DBLEND_ZERO: return 0;
        case D3DBLEND_ONE: return 1;
        case D3DBLEND_SRCCOLOR: return source[channel];
        case D3DBLEND_INVSRCCOLOR: return 1 - source[channel];
        case D3DBLEND_SRCALPHA: return source[3];
        case D3DBLEND_INVSRCALPHA: return 1 - source[3];
        case D3DBLEND_DESTALPHA: return destination[3];
        case D3DBLEND_INVDESTALPHA: return 1 - destination[3];
        case D3DBLEND_DESTCOLOR: return destination[channel];
        case D3DBLEND_INVDESTCOLOR: return 1 - destination[channel];
        case D3DBLEND_SRCALPHASAT: return channel == 3 ? 1 : std::min(source[3], 1 - destination[3]);
        default: return -1;
    }
}

Colour Blend(DWORD source_factor, DWORD destination_factor, const Colour& source, const Colour& destination) {
    Colour result;
    for (std::size_t i = 0; i < 4; ++i) {
        result[i] = source[i] * Factor(source_factor, source, destination, i) +
                    destination[i] * Factor(destination_factor, source, destination, i);
    }
    return result;
}

enum class Alpha { Texture, TextureDiffuse, FactorTexture, Factor };

TEST(Blending, GivesTheDocumentedResultOfEveryMode) {
    constexpr struct {
        int mode;
        Alpha alpha;
        bool texture_only;   // the colour of the texture alone, not times the diffuse colour
        DWORD source, destination;
    } kRows[] = {{2, Alpha::Texture, false, D3DBLEND_ONE, D3DBLEND_INVSRCCOLOR},
                 {3, Alpha::TextureDiffuse, false, D3DBLEND_SRCALPHA, D3DBLEND_ONE},
                 {4, Alpha::Texture, false, D3DBLEND_INVDESTCOLOR, D3DBLEND_INVSRCCOLOR},
                 {5, Alpha::TextureDiffuse, false, D3DBLEND_ZERO, D3DBLEND_INVSRCCOLOR},
                 {6, Alpha::Texture, false, D3DBLEND_ZERO, D3DBLEND_SRCCOLOR},
                 {7, Alpha::FactorTexture, false, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA},
                 {9, Alpha::TextureDiffuse, false, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA},
                 {10, Alpha::FactorTexture, false, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA},
                 {11, Alpha::Texture, false, D3DBLEND_ZERO, D3DBLEND_INVSRCCOLOR},
                 {12, Alpha::FactorTexture, false, D3DBLEND_SRCALPHA, D3DBLEND_ONE},
                 {13, Alpha::Factor, false, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA},
                 {14, Alpha::Texture, false, D3DBLEND_ZERO, D3DBLEND_ONE},
                 {15, Alpha::Factor, true, D3DBLEND_ONE, D3DBLEND_ZERO},
                 {16, Alpha::Factor, true, D3DBLEND_ONE, D3DBLEND_ONE},
                 {17, Alpha::FactorTexture, false, D3DBLEND_ZERO, D3DBLEND_INVSRCCOLOR}};
    constexpr struct {
        D3DCOLOR texture, diffuse, back;
        DWORD alpha;
    } kColours[] = {{Argb(128, 200, 100, 60), Argb(180, 220, 140, 90), Argb(255, 40, 60, 80), 255},
                    {Argb(255, 30, 250, 120), Argb(255, 255, 255, 255), Argb(255, 170, 90, 10), 77},
                    {Argb(60, 255, 80, 5), Argb(20, 100, 200, 255), Argb(255, 255, 128, 64), 140}};
    Canvas canvas(4, 4);
    canvas->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
    for (const auto& colours : kColours) {
        const auto texture = MakeTexture(canvas.Device(), 1, 1, {colours.texture});
        canvas->SetTexture(0, texture.Get());
        const Colour t = ToColour(colours.texture), d = ToColour(colours.diffuse);
        const double factor = colours.alpha / 255.0;
        for (const auto& row : kRows) {
            const bool modulates = row.alpha == Alpha::TextureDiffuse || row.alpha == Alpha::FactorTexture;
            const bool factor_first = row.alpha == Alpha::FactorTexture || row.alpha == Alpha::Factor;
            canvas->SetTextureStageState(0, D3DTSS_COLOROP, row.texture_only ? D3DTOP_SELECTARG1 : D3DTOP_MODULATE);
            canvas->SetTextureStageState(0, D3DTSS_COLORARG2, D3DTA_DIFFUSE);
            canvas->SetTextureStageState(0, D3DTSS_ALPHAOP, modulates ? D3DTOP_MODULATE : D3DTOP_SELECTARG1);
            canvas->SetTextureStageState(0, D3DTSS_ALPHAARG1, factor_first ? D3DTA_TFACTOR : D3DTA_TEXTURE);
            canvas->SetTextureStageState(0, D3DTSS_ALPHAARG2, factor_first ? D3DTA_TEXTURE : D3DTA_DIFFUSE);
            canvas->SetRenderState(D3DRS_TEXTUREFACTOR, Argb(colours.alpha, 1, 2, 3));
            canvas->SetRenderState(D3DRS_SRCBLEND, row.source);
            canvas->SetRenderState(D3DRS_DESTBLEND, row.destination);
            canvas.Clear(colours.back);
            canvas.FillAll(colours.diffuse);

            Colour source = t;
            for (std::size_t i = 0; i < 3 && !row.texture_only; ++i) source[i] *= d[i];
            const double alphas[] = {t[3], t[3] * d[3], factor * t[3], factor};
            source[3] = alphas[static_cast<int>(row.alpha)];
            const Rgb wanted = ToRgb(Blend(row.source, row.destination, source, ToColour(colours.back)));
            EXPECT_TRUE(Near(canvas.Pixel(1, 2), wanted, 2))
                << "mode " << row.mode << ": " << canvas.Pixel(1, 2) << ", wanted " << wanted;
        }
    }
}

TEST(Blending, ReadsDestinationAlphaAsOneWithoutAnAlphaChannel) {
    constexpr DWORD kFactors[] = {D3DBLEND_DESTALPHA, D3DBLEND_INVDESTALPHA, D3DBLEND_DESTCOLOR, D3DBLEND_SRCALPHASAT};
    constexpr D3DCOLOR kSource = Argb(90, 200, 100, 60), kBack = Argb(150, 40, 80, 120);
    for (const D3DFORMAT format : {D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8}) {
        Canvas canvas(4, 4, format);
        canvas->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
        canvas->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_ONE);
        Colour back = ToColour(kBack);
        if (format == D3DFMT_X8R8G8B8) back[3] = 1;
        for (const DWORD factor : kFactors) {
            canvas->SetRenderState(D3DRS_SRCBLEND, factor);
            canvas.Clear(kBack);
            canvas.FillAll(kSource);
            const Rgb wanted = ToRgb(Blend(factor, D3DBLEND_ONE, ToColour(kSource), back));
            EXPECT_TRUE(Near(canvas.Pixel(2, 1), wanted, 1))
                << factor << " on " << format << ": " << canvas.Pixel(2, 1) << ", wanted " << wanted;
        }
    }
}

TEST(Blending, AppliesOperationsFactorsAndSeparateAlpha) {
    constexpr D3DCOLOR kSource = Argb(100, 200, 50, 60), kBack = Argb(150, 80, 120, 40);
    constexpr struct {
        DWORD operation;
        int r, g, b;
    } kRows[] = {{D3DBLENDOP_ADD, 255, 170, 100},
                 {D3DBLENDOP_SUBTRACT, 120, 0, 20},
                 {D3DBLENDOP_REVSUBTRACT, 0, 70, 0},
                 {D3DBLENDOP_MIN, 80, 50, 40},
                 {D3DBLENDOP_MAX, 200, 120, 60}};
    Canvas canvas(4, 4, D3DFMT_A8R8G8B8);
    canvas->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
    canvas->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_ONE);
    for (const auto& row : kRows) {
        canvas->SetRenderState(D3DRS_BLENDOP, row.operation);
        canvas.Clear(kBack);
        canvas.FillAll(kSource);
        EXPECT_TRUE(Near(canvas.Pixel(0, 3), Rgb{row.r, row.g, row.b}, 1)) << row.operation << canvas.Pixel(0, 3);
    }
    canvas->SetRenderState(D3DRS_BLENDOP, D3DBLENDOP_ADD);
    canvas->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_BLENDFACTOR);
    canvas->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVBLENDFACTOR);
    canvas->SetRenderState(D3DRS_BLENDFACTOR, Argb(0, 51, 102, 204));
    canvas->SetRenderState(D3DRS_SEPARATEALPHABLENDENABLE, TRUE);
    canvas->SetRenderState(D3DRS_SRCBLENDALPHA, D3DBLEND_ONE);
    canvas->SetRenderState(D3DRS_DESTBLENDALPHA, D3DBLEND_ONE);
    canvas.Clear(kBack);
    canvas.FillAll(kSource);
    EXPECT_TRUE(Near(canvas.Pixel(1, 1), Rgb{104, 92, 56}, 1)) << canvas.Pixel(1, 1);
    EXPECT_NEAR(canvas.PixelArgb(1, 1) >> 24, 250, 1);
}

TEST(Blending, WritesTheChannelsOfTheMask) {
    constexpr D3DCOLOR kBack = Argb(255, 10, 20, 30);
    Canvas canvas(4, 4);
    for (DWORD mask = 0; mask < 8; ++mask) {
        canvas->SetRenderState(D3DRS_COLORWRITEENABLE, mask);
        canvas.Clear(kBack);
        canvas.FillAll(Argb(255, 200, 150, 100));
        const Rgb wanted = {mask & 1 ? 200 : 10, mask & 2 ? 150 : 20, mask & 4 ? 100 : 30};
        EXPECT_TRUE(Near(canvas.Pixel(3, 2), wanted, 0)) << mask << canvas.Pixel(3, 2);
    }
}

TEST(AlphaTest, ComparesWholeNumbers) {
    constexpr struct {
        DWORD function;
        bool below, equal, above;   // whether alpha 99, 100, 101 pass against 100
    } kRows[] = {{D3DCMP_NEVER, false, false, false},      {D3DCMP_LESS, true, false, false},
                 {D3DCMP_EQUAL, false, true, false},       {D3DCMP_LESSEQUAL, true, true, false},
                 {D3DCMP_GREATER, false, false, true},     {D3DCMP_NOTEQUAL, true, false, true},
                 {D3DCMP_GREATEREQUAL, false, true, true}, {D3DCMP_ALWAYS, true, true, true}};
    Canvas canvas(4, 4);
    canvas->SetRenderState(D3DRS_ALPHATESTENABLE, TRUE);
    canvas->SetRenderState(D3DRS_ALPHAREF, 100);
    for (const auto& row : kRows) {
        canvas->SetRenderState(D3DRS_ALPHAFUNC, row.function);
        const bool passes[] = {row.below, row.equal, row.above};
        for (DWORD i = 0; i < 3; ++i) {
            canvas.Clear(0);
            canvas.FillAll(Argb(99 + i, 255, 0, 0));
            EXPECT_EQ(canvas.Pixel(1, 1).r == 255, passes[i]) << row.function << " with " << 99 + i;
        }
    }
}

}   // namespace
}   // namespace sparkrig
