// What is asked of the display, and what it offers.
#include "gfx/device/presentation.h"

#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

struct Reporter : KRN_Base {
    Reporter() { SetName("Reporter"); }
};

D3DPRESENT_PARAMETERS Build(bool windowed, int bits, int vsync) {
    PresentationSettings settings;
    settings.window = FakeWindow();
    settings.windowed = windowed;
    settings.mode = {1024, 768, 75, D3DFMT_X8R8G8B8};
    settings.z_buffer_bits = bits;
    settings.vsync = vsync;
    return BuildPresentParameters(Reporter(), settings);
}

TEST(Presentation, AWindowTakesItsSizeFromTheClientAreaAndFullScreenTheMode) {
    for (const bool windowed : {true, false}) {
        const D3DPRESENT_PARAMETERS p = Build(windowed, windowed ? 16 : 0, windowed ? 9 : 3);
        const DWORD seen = windowed ? 0 : 1;
        EXPECT_THAT((std::vector<DWORD>{p.BackBufferWidth, p.BackBufferHeight, p.FullScreen_RefreshRateInHz}),
                    ElementsAre(1024 * seen, 768 * seen, 75 * seen));
        EXPECT_THAT((std::vector<DWORD>{p.BackBufferFormat, p.BackBufferCount, p.SwapEffect}),
                    ElementsAre(D3DFMT_X8R8G8B8, 1, D3DSWAPEFFECT_FLIP));
        EXPECT_EQ(p.hDeviceWindow, FakeWindow());
        EXPECT_EQ(p.Windowed, windowed);
        EXPECT_EQ(p.EnableAutoDepthStencil, windowed) << "by the bits of depth";
    }
}

TEST(Presentation, DepthsAndIntervalsHaveTheirNumbers) {
    constexpr std::tuple<int, D3DFORMAT, D3DFORMAT> kDepths[] = {
        {16, D3DFMT_D16, D3DFMT_D16}, {24, D3DFMT_D24X8, D3DFMT_D24S8}, {32, D3DFMT_D32, D3DFMT_D32}};
    for (const auto& [bits, windowed, full_screen] : kDepths) {
        EXPECT_EQ(Build(true, bits, 0).AutoDepthStencilFormat, windowed);
        EXPECT_EQ(Build(false, bits, 0).AutoDepthStencilFormat, full_screen);
    }
    EXPECT_EQ(ErrorOf([] { Build(true, 15, 0); }), "Reporter: Invalid Z-buffer: 15");
    constexpr UINT kIntervals[] = {0x80000000, 1, 2, 4, 8};
    for (int vsync = 0; vsync < 5; ++vsync) EXPECT_EQ(Build(false, 16, vsync).PresentationInterval, kIntervals[vsync]);
    EXPECT_EQ(Build(true, 16, 9).PresentationInterval, 0u) << "not looked at in a window";
    for (const int vsync : {5, -1})
        EXPECT_EQ(ErrorOf([&] { Build(false, 16, vsync); }),
                  "Reporter: Wrong vsync parameter: " + std::to_string(vsync));
}

TEST(Presentation, FormatsFollowTheDisplay) {
    for (const D3DFORMAT display : {D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8, D3DFMT_R5G6B5}) {
        EXPECT_EQ(AlphaFormatOf(display), display == D3DFMT_R5G6B5 ? display : D3DFMT_A8R8G8B8);
        EXPECT_EQ(OpaqueFormatOf(display), display == D3DFMT_R5G6B5 ? display : D3DFMT_X8R8G8B8);
    }
}

TEST(DisplayModes, AreFoundBySizeFormatAndRate) {
    constexpr std::tuple<const char*, D3DDISPLAYMODE, bool, UINT> kRows[] = {
        {"the highest rate", {1024, 768, 0, D3DFMT_X8R8G8B8}, true, 75},
        {"alpha does not count", {1024, 768, 0, D3DFMT_A8R8G8B8}, true, 75},
        {"an exact rate", {1024, 768, 72, D3DFMT_X8R8G8B8}, true, 72},
        {"no such rate", {1024, 768, 85, D3DFMT_X8R8G8B8}, false, 85},
        {"no such size", {1024, 600, 0, D3DFMT_R5G6B5}, false, 0},
        {"16 bits", {800, 600, 0, D3DFMT_R5G6B5}, true, 85},
        {"no such format", {800, 600, 0, D3DFMT_A1R5G5B5}, false, 0},
    };
    RecordedGfx gfx(RecordedGfx::State::Constructed);
    for (const auto& [name, wanted, found, rate] : kRows) {
        D3DDISPLAYMODE mode = wanted;
        EXPECT_EQ(gfx->FindDisplayMode(mode), found) << name;
        EXPECT_EQ(mode.RefreshRate, rate) << name;
    }
}

TEST(TextureFormats, AreAskedForWithTheirUsage) {
    constexpr std::tuple<int, DWORD> kRows[] = {
        {3, D3DUSAGE_RENDERTARGET}, {5, D3DUSAGE_DEPTHSTENCIL}, {4, 0}, {-1, 0}};
    RecordedGfx gfx;
    for (const auto& [mode, usage] : kRows) {
        EXPECT_TRUE(gfx->CheckTextureFormat(D3DFMT_A4R4G4B4, mode));
        EXPECT_THAT(gfx.recording.Calls().back().arguments,
                    ElementsAre(0, D3DDEVTYPE_HAL, D3DFMT_X8R8G8B8, usage, D3DRTYPE_TEXTURE, D3DFMT_A4R4G4B4));
    }
    const Reports reports;
    EXPECT_FALSE(gfx->CheckTextureFormat(D3DFMT_R8G8B8, 3));
    EXPECT_EQ(reports.Last(), "warning KRN_Gfx: Texture format 20 mode 1 not supported by device");
}

}   // namespace
}   // namespace sparkrig
