// The numbered blending modes from the facade to the pixel: each mode's formula, over many colours and alphas.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "gfx/gfx.h"
#include "gfx/textures/texture.h"
#include "platform/window/window.h"
#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

/// One channel of a pixel that is drawn, all in 0..1.
struct Channel {
    double texel, source, back;   // source: the texel times the diffuse colour
    double texel_alpha, diffuse_alpha, given_alpha;
};

double Mix(double alpha, const Channel& c) { return alpha * c.source + (1 - alpha) * c.back; }

constexpr int kAlphaBefore = 200;   // that mode 10 finds

constexpr struct {
    int mode;
    double (*result)(const Channel& c);
} kModes[] = {
    {-1, [](const Channel& c) { return c.source; }},
    {1, [](const Channel& c) { return c.source; }},
    {2, [](const Channel& c) { return c.source + c.back * (1 - c.source); }},
    {3, [](const Channel& c) { return c.source * c.texel_alpha * c.diffuse_alpha + c.back; }},
    {4, [](const Channel& c) { return c.source * (1 - c.back) + c.back * (1 - c.source); }},
    {5, [](const Channel& c) { return c.back * (1 - c.source); }},
    {6, [](const Channel& c) { return c.back * c.source; }},
    {7, [](const Channel& c) { return Mix(c.given_alpha * c.texel_alpha, c); }},
    {9, [](const Channel& c) { return Mix(c.texel_alpha * c.diffuse_alpha, c); }},
    {10, [](const Channel& c) { return Mix(c.given_alpha * kAlphaBefore / 255 * c.texel_alpha, c); }},
    {11, [](const Channel& c) { return c.back * (1 - c.source); }},
    {12, [](const Channel& c) { return c.source * c.given_alpha * c.texel_alpha + c.back; }},
    {13, [](const Channel& c) { return Mix(c.given_alpha, c); }},
    {14, [](const Channel& c) { return c.back; }},
    {15, [](const Channel& c) { return c.texel; }},
    {16, [](const Channel& c) { return c.texel + c.back; }},
    {17, [](const Channel& c) { return c.back * (1 - c.source); }},
};

Rgb Expected(double (*result)(const Channel&), D3DCOLOR texture, D3DCOLOR diffuse, D3DCOLOR back, int alpha) {
    const auto channel = [&](int shift) {
        const auto part = [shift](D3DCOLOR colour) { return (colour >> shift & 255) / 255.0; };
        const double value = result({part(texture), part(texture) * part(diffuse), part(back), (texture >> 24) / 255.0,
                                     (diffuse >> 24) / 255.0, alpha / 255.0});
        return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
    };
    return {channel(16), channel(8), channel(0)};
}

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

TEST(BlendingPicture, EveryModeGivesItsFormula) {
    KeepDriverLoaded();
    RegisterClassExA({Ignore, "BLENDING"});
    KRN_Gfx gfx;
    gfx.InitDevice(CreateWindowExA("BLENDING", "", 0, 0, 8, 8), 1, nullptr, 0, 0, 2, 0, 0);
    KRN_Texture texture;
    gfx.CreateTexture(&texture, 1, 1, -1, D3DFMT_A8R8G8B8, 1);
    gfx.SetTexture2D(&texture);
    std::vector<D3DCOLOR> pixels;
    UINT width, height;
    for (const D3DCOLOR texel : {0x80C8643Cu, 0xFF1EFA78u, 0x3CFF5005u}) {
        texture.Clear(texel, nullptr);
        for (const D3DCOLOR diffuse : {0xB4DC8C5Au, 0xFFFFFFFFu, 0x1464C8FFu}) {
            for (const D3DCOLOR back : {0xFF283C50u, 0xFFAA5A0Au, 0xFFFF8040u}) {
                for (const int alpha : {255, 77, 140}) {
                    for (const auto& [mode, result] : kModes) {
                        gfx.SetBlendingMode(7, kAlphaBefore, 0);
                        gfx.SetRenderSource(1, 0, 0);   // modes 12, 15 and 16 have colours of their own
                        gfx.SetBlendingMode(mode, alpha, 0);
                        EXPECT_EQ(gfx.BlendingMode(), mode == -1 ? 1 : mode == 10 ? 7 : mode);
                        gfx.BeginScene();
                        gfx.Clear(back, 1, nullptr);
                        gfx.DrawTexture2D({0, 0, 8, 8}, diffuse, {0, 0, 0, 0});
                        gfx.EndScene();
                        gfx.ReadBackBuffer(pixels, width, height);
                        const Rgb wanted = Expected(result, texel, diffuse, back, alpha);
                        EXPECT_TRUE(Near(ToRgb(pixels[3 * width + 5]), wanted, 2))
                            << "mode " << mode << " alpha " << alpha << std::hex << " of " << texel << " x " << diffuse
                            << " on " << back << std::dec << ": " << ToRgb(pixels[3 * width + 5]) << ", wanted "
                            << wanted;
                    }
                }
            }
        }
    }
}

}   // namespace
}   // namespace sparkrig
