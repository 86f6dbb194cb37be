#include "gfx/device/presentation.h"

#include <gmock/gmock.h>

#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

struct Reporter : KRN_Base {
    Reporter() { SetName("Reporter"); }
};

PresentationSettings Settings(bool windowed, int bits, int vsync) {
    PresentationSettings settings;
    settings.window = FakeWindow();
    settings.windowed = windowed;
    settings.mode = {1024, 768, 75, D3DFMT_X8R8G8B8};
    settings.z_buffer_bits = bits;
    settings.vsync = vsync;
    return settings;
}

TEST(Presentation, AWindowTakesItsSizeFromTheClientAreaAndFullScreenTheMode) {
    const D3DPRESENT_PARAMETERS p = BuildPresentParameters(Reporter(), Settings(true, 16, 9));
    EXPECT_THAT((std::vector<DWORD>{p.BackBufferWidth, p.BackBufferHeight, p.FullScreen_RefreshRateInHz}), Each(0));
    EXPECT_THAT((std::vector<DWORD>{p.BackBufferFormat, p.BackBufferCount, p.SwapEffect}),
                ElementsAre(D3DFMT_X8R8G8B8, 1, D3DSWAPEFFECT_FLIP));
    EXPECT_EQ(p.hDeviceWindow, FakeWindow());
    EXPECT_EQ(p.PresentationInterval, 0u) << "vsync is not looked at in a window";
    EXPECT_TRUE(p.Windowed && p.EnableAutoDepthStencil);
    const D3DPRESENT_PARAMETERS full = BuildPresentParameters(Reporter(), Settings(false, 0, 3));
    EXPECT_THAT((std::vector<DWORD>{full.BackBufferWidth, full.BackBufferHeight, full.FullScreen_RefreshRateInHz}),
                ElementsAre(1024, 768, 75));
    EXPECT_FALSE(full.Windowed || full.EnableAutoDepthStencil);
}

TEST(Presentation, DepthFormats) {
    constexpr std::tuple<int, D3DFORMAT, D3DFORMAT> kRows[] = {
        {16, D3DFMT_D16, D3DFMT_D16}, {24, D3DFMT_D24X8, D3DFMT_D24S8}, {32, D3DFMT_D32, D3DFMT_D32}};
    for (const auto& [bits, windowed, full_screen] : kRows) {
        EXPECT_EQ(BuildPresentParameters(Reporter(), Settings(true, bits, 0)).AutoDepthStencilFormat, windowed);
        EXPECT_EQ(BuildPresentParameters(Reporter(), Settings(false, bits, 0)).AutoDepthStencilFormat, full_screen);
    }
    EXPECT_EQ(ErrorOf([] { BuildPresentParameters(Reporter(), Settings(true, 15, 0)); }),
              "Reporter: Invalid Z-buffer: 15");
}

TEST(Presentation, Intervals) {
    constexpr UINT kIntervals[] = {0x80000000, 1, 2, 4, 8};
    for (int vsync = 0; vsync < 5; ++vsync) {
        EXPECT_EQ(BuildPresentParameters(Reporter(), Settings(false, 16, vsync)).PresentationInterval,
                  kIntervals[vsync]);
    }
    for (const int vsync : {5, -1}) {
        EXPECT_EQ(ErrorOf([&] { BuildPresentParameters(Reporter(), Settings(false, 16, vsync)); }),
                  "Reporter: Wrong vsync parameter: " + std::to_string(vsync));
    }
}

TEST(Presentation, FormatsFollowTheDisplay) {
    constexpr std::tuple<D3DFORMAT, D3DFORMAT, D3DFORMAT> kRows[] = {
        {D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8, D3DFMT_X8R8G8B8},
        {D3DFMT_A8R8G8B8, D3DFMT_A8R8G8B8, D3DFMT_X8R8G8B8},
        {D3DFMT_R5G6B5, D3DFMT_R5G6B5, D3DFMT_R5G6B5}};
    for (const auto& [display, alpha, opaque] : kRows) {
        EXPECT_EQ(AlphaFormatOf(display), alpha);
        EXPECT_EQ(OpaqueFormatOf(display), opaque);
    }
}

}   // namespace
}   // namespace sparkrig
