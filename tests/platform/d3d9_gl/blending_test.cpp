// What reaches the frame buffer: blend factors and operations, write mask, alpha test.
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

TEST(Blending, MultipliesByEveryFactorAndReadsAMissingAlphaAsOne) {
    constexpr D3DCOLOR kSource = Argb(90, 200, 100, 60), kBack = Argb(150, 40, 80, 120);
    for (const D3DFORMAT format : {D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8}) {
        Canvas canvas(4, 4, format);
        canvas->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
        Colour back = ToColour(kBack);
        if (format == D3DFMT_X8R8G8B8) back[3] = 1;
        for (DWORD factor = D3DBLEND_ZERO; factor <= D3DBLEND_SRCALPHASAT; ++factor) {
            const DWORD other = D3DBLEND_ZERO + factor % 7;
            canvas->SetRenderState(D3DRS_SRCBLEND, factor);
            canvas->SetRenderState(D3DRS_DESTBLEND, other);
            canvas.Clear(kBack);
            canvas.FillAll(kSource);
            const Rgb wanted = ToRgb(Blend(factor, other, ToColour(kSource), back));
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
