// Creating the device, presenting, losing and resetting it.
#include "gfx/device_life.h"

#include <bit>

#include "gfx/device/frame_timing.h"
#include "gfx/device/presentation.h"
#include "gfx/textures/texture.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

constexpr D3DDISPLAYMODE kSmallMode = {800, 600, 85, D3DFMT_X8R8G8B8}, kLargeMode = {1024, 768, 72, D3DFMT_R5G6B5};

DWORD Bits(float value) { return std::bit_cast<DWORD>(value); }

TEST(Construction, NeedsTheRunTimeLibrariesAndDirect3D) {
    constexpr std::tuple<const char*, bool, const char*> kRows[] = {
        {"d3d9.dll", true, "KRN_Gfx: At least DirectX 9.0 required!"},
        {"d3dx9_30.dll", true,
         "KRN_Gfx: Your DirectX 9.0 runtime is too old (d3dx9_30.dll not found).\n"
         "Please download and install latest DirectX"},
        {"none", false, "KRN_Gfx: Direct3DCreate9 failed!"}};
    Recording recording;
    for (const auto& [missing, offers_direct3d, error] : kRows) {
        FakeEnvironment::Reset();
        FakeEnvironment::missing = missing;
        recording.offers_direct3d = offers_direct3d;
        EXPECT_EQ(ErrorOf([] { const KRN_Gfx gfx(Recording::Create, FakeEnvironment::kTable); }), error);
    }
    FakeEnvironment::Reset();
}

TEST(Creation, ChoosesAdapterTypeAndBehaviour) {
    // clang-format off
    constexpr std::tuple<const char*, int, int, int, bool, const char*, DWORD, DWORD, DWORD> kRows[] = {
        {"software",               0, 0, 0, true,  "NVIDIA NVPerfHUD", 0, D3DDEVTYPE_HAL, 0x20},
        {"mixed",                  1, 0, 0, true,  "NVIDIA NVPerfHUD", 0, D3DDEVTYPE_HAL, 0x80},
        {"hardware, many threads", 2, 0, 1, true,  "NVIDIA NVPerfHUD", 0, D3DDEVTYPE_HAL, 0x44},
        {"no hardware",            2, 3, 0, false, "NVIDIA NVPerfHUD", 0, D3DDEVTYPE_HAL, 0x20},
        {"reference",              1, 1, 0, true,  "NVIDIA NVPerfHUD", 0, D3DDEVTYPE_REF, 0x80},
        {"performance analysis",   1, 2, 0, true,  "NVIDIA NVPerfHUD", 2, D3DDEVTYPE_REF, 0x80},
        {"no analysis adapter",    1, 2, 0, true,  "NVIDIA",           0, D3DDEVTYPE_HAL, 0x80},
    };
    // clang-format on
    for (const auto& [name, vertex_processing, device_select, multithreaded, hardware, third_adapter, adapter, type,
                      behaviour] : kRows) {
        RecordedGfx gfx(RecordedGfx::State::Constructed);
        gfx.recording.adapters = {"NVIDIA", "NVIDIA NVPerfHUD 2", third_adapter};
        if (!hardware) gfx.recording.caps.DevCaps = 0;
        gfx->InitDevice(FakeWindow(), 1, nullptr, 16, 0, vertex_processing, device_select, multithreaded);
        EXPECT_THAT(gfx.recording.ArgumentsOf("CreateDevice"), ElementsAre(ElementsAre(adapter, type, behaviour)))
            << name;
        EXPECT_EQ(gfx->HardwareVertexProcessing(), hardware && vertex_processing > 0) << name;
    }
    RecordedGfx unknown([](Recording& recording) { recording.Fail("GetDeviceCaps", D3DERR_NOTAVAILABLE); });
    EXPECT_FALSE(unknown->HardwareVertexProcessing()) << "the adapter does not say what it can";
    EXPECT_EQ(unknown->Caps().MaxPointSize, 256.0f) << "the device's own were read afterwards";
}

TEST(Creation, BeginsWithTheWholeTargetInView) {
    RecordedGfx gfx;
    EXPECT_EQ(gfx->Viewport(), (D3DVIEWPORT9{0, 0, 640, 480, 0, 1}));
    D3DXMATRIX projection;
    D3DXMatrixPerspectiveFovLH(&projection, 0.7854f, 640.0f / 480, 1, 10000);
    EXPECT_EQ(gfx->ProjectionMatrix(), projection);
    FakeEnvironment::now += 2.5;
    EXPECT_EQ(gfx->DeviceSeconds(), 2.5);
    for (const auto& [state, expected] : {std::pair{D3DRS_DITHERENABLE, 1u}, {D3DRS_NORMALIZENORMALS, 1u}}) {
        DWORD value = 999;
        gfx->Device()->GetRenderState(state, &value);
        EXPECT_EQ(value, expected) << "unlike a device's own";
    }
}

TEST(Creation, ReportsAnEffectPoolThatCannotBeMade) {
    RecordedGfx gfx(RecordedGfx::State::Constructed);
    FakeEnvironment::pool_result = E_OUTOFMEMORY;
    EXPECT_EQ(ErrorOf([&] { gfx.Init(); }), "KRN_Gfx: Can not create default effect pool: E_OUTOFMEMORY");
    gfx.Destroy();
    EXPECT_EQ(gfx.recording.LiveObjects(), 0);
}

TEST(Reset, AppliesWhatIsKeptAndNothingElse) {   // the single states: states_test.cpp
    RecordedGfx gfx;
    D3DXMATRIX view, projection;
    D3DXMatrixTranslation(&view, 3, 5, 7);
    gfx->SetTransform(D3DTS_VIEW, view);
    gfx->SetProjection(2, 600, 1.1f, 1.7f);
    gfx->SetBlendingMode(7, 0x40, 0);
    gfx->SetFogEnable(true);
    gfx->SetMipmapMode(1, 0.25f, 0);
    gfx->SetMipmapMode(0, -0.5f, 2);
    gfx.recording.ForgetCalls();
    EXPECT_EQ(gfx->ResetDevice(nullptr, -1), 1);
    EXPECT_EQ(gfx.Matrix(D3DTS_VIEW), view);
    D3DXMatrixPerspectiveFovLH(&projection, 0.7854f, 640.0f / 480, 2, 600);
    EXPECT_EQ(gfx->ProjectionMatrix(), projection) << "near and far are kept";
    EXPECT_THAT(gfx.recording.Sent(D3DRS_TEXTUREFACTOR), ElementsAre(0x40000000));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_DESTBLEND), ElementsAre(D3DBLEND_INVSRCALPHA));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGENABLE), ElementsAre(1));
    for (const D3DRENDERSTATETYPE state : {D3DRS_DITHERENABLE, D3DRS_NORMALIZENORMALS, D3DRS_LIGHTING})
        EXPECT_THAT(gfx.recording.Sent(state), ElementsAre(1)) << state;
    EXPECT_THAT(gfx.recording.Sent(0, D3DSAMP_MIPFILTER), ElementsAre(1));
    EXPECT_THAT(gfx.recording.Sent(2, D3DSAMP_MIPFILTER), ElementsAre(0));
    EXPECT_EQ(gfx->MipmapBias(), -0.5f) << "as set last";
}

TEST(FullScreen, TakesItsModeAndAnotherAtAReset) {
    RecordedGfx gfx(RecordedGfx::State::Constructed);
    EXPECT_EQ(ErrorOf([&] { gfx->InitDevice(FakeWindow(), 0, nullptr, 16, 0, 1, 0, 0); }),
              "KRN_Gfx: No displaymode specified!");
    gfx->InitDevice(FakeWindow(), 0, &kSmallMode, 16, 1, 1, 0, 0);
    EXPECT_EQ(gfx->Viewport().Width, 800u);
    EXPECT_EQ(gfx->AlphaFormat(), D3DFMT_A8R8G8B8);
    gfx.ResizeWindow(300, 200);
    EXPECT_EQ(gfx->PresentFrame(), 1) << "it does not look at the window";
    gfx->ResetDevice(&kLargeMode, 3);
    gfx->ResetDevice(nullptr, -1);
    const std::vector<DWORD> expected = {1024, 768, D3DPRESENT_INTERVAL_THREE};
    EXPECT_THAT(gfx.recording.ArgumentsOf("Reset"), ElementsAre(expected, expected));
    EXPECT_EQ(gfx->Viewport().Width, 1024u);
    EXPECT_EQ(gfx->AlphaFormat(), D3DFMT_R5G6B5);
    EXPECT_EQ(gfx->OpaqueFormat(), D3DFMT_R5G6B5);
}

TEST(Reset, AViewportInsideStaysAndAWholeOneFollows) {
    RecordedGfx gfx;
    gfx.ResizeWindow(700, 300);
    gfx->ResetDevice(nullptr, -1);
    EXPECT_EQ(gfx->Viewport(), (D3DVIEWPORT9{0, 0, 700, 300, 0, 1}));
    gfx->SetViewPort(10, 20, 110, 220, 0.25f, 0.5f);
    gfx->ResetDevice(nullptr, -1);
    EXPECT_EQ(gfx->Viewport(), (D3DVIEWPORT9{10, 20, 100, 200, 0.25f, 0.5f}));
    gfx.ResizeWindow(90, 300);
    gfx->ResetDevice(nullptr, -1);
    EXPECT_EQ(gfx->Viewport(), (D3DVIEWPORT9{0, 0, 90, 300, 0, 1}));
}

TEST(Present, AResizedWindowResetsAndAMovedOneDoesNot) {
    RecordedGfx gfx;
    RECT& client = FakeEnvironment::client;
    client = {client.left + 9, client.top + 8, client.right + 9, client.bottom + 8};
    EXPECT_EQ(gfx->PresentFrame(), 1);
    EXPECT_EQ(gfx.recording.Count("Reset"), 0);
    gfx.ResizeWindow(500, 400);
    EXPECT_EQ(gfx->PresentFrame(), 0);
    EXPECT_EQ(gfx.recording.Count("Reset"), 1);
    EXPECT_EQ(gfx.recording.Count("Present"), 1) << "the resized frame is not shown";
    for (int frame = 0; frame < 50; ++frame) {
        FakeEnvironment::now += 0.02;
        EXPECT_EQ(gfx->PresentFrame(), 1);
    }
    EXPECT_EQ(gfx->Viewport().Width, 500u);
    EXPECT_NEAR(gfx->GetFrameRate(), 50, 0.5);
}

TEST(FrameTiming, MeasuresASteadyRate) {
    for (const double rate : {24.0, 50.0, 59.0, 240.0, 1000.0}) {
        FrameTimeRing ring;
        for (int frame = 0; frame < 5000; ++frame) {
            ring.Presented(70 + frame / rate);
            EXPECT_TRUE(frame > 0 || ring.Rate() == 0.0f) << "one sample spans no time";
        }
        EXPECT_NEAR(ring.Rate(), rate, rate * 0.02) << rate;
        EXPECT_EQ(ring.TotalFrames(), 5000u);
        EXPECT_EQ(ring.LastPresent(), 70 + 4999 / rate);
    }
}

TEST(FrameTiming, LooksAtTheLastSecondAndAtTwoSamplesAtLeast) {
    FrameTimeRing ring;
    double now = 30;
    const auto rate_after = [&](int frames, double seconds) {
        for (int frame = 0; frame < frames; ++frame) ring.Presented(now += seconds);
        return ring.Rate();
    };
    EXPECT_NEAR(rate_after(40, 0.1), 10, 0.5);
    EXPECT_NEAR(rate_after(41, 0.025), 40, 1);
    EXPECT_NEAR(rate_after(1, 5), 1 / 5.0, 0.01) << "a stall";
}

TEST(Scene, ClearsWhatTheTargetHas) {
    RecordedGfx gfx, without(RecordedGfx::State::Constructed);
    const D3DRECT rectangle = {1, 2, 30, 40};
    gfx->Clear(0xFF123456, 0.5f, nullptr);
    EXPECT_EQ(gfx->ClearZBuffer(0.25f, &rectangle), 1);
    KRN_Texture larger;
    gfx->CreateTexture(&larger, 2048, 16, 3, D3DFMT_A8R8G8B8, 1);
    gfx->SetRenderTarget(larger.GetSurfaceLevel(0).Get(), 0);
    gfx->Clear(0xFF123456, 1, nullptr);   // the depth buffer is too small for this target
    EXPECT_EQ(ErrorOf([&] { gfx->ClearZBuffer(1, nullptr); }), "KRN_Gfx: Render target has no zbuffer!");
    EXPECT_THAT(gfx.recording.ArgumentsOf("Clear"),
                ElementsAre(ElementsAre(0, 3, 0xFF123456, Bits(0.5f), 0), ElementsAre(1, 2, 0, Bits(0.25f), 0),
                            ElementsAre(0, 1, 0xFF123456, Bits(1), 0)));

    without->InitDevice(FakeWindow(), 1, nullptr, 0, 0, 1, 0, 0);
    EXPECT_EQ(without->ClearZBuffer(1, nullptr), 0);
    without->Clear(0xFF123456, 1, nullptr);
    EXPECT_THAT(without.recording.ArgumentsOf("Clear"), ElementsAre(ElementsAre(0, 1, 0xFF123456, Bits(1), 0)));
}

// ---- What is asked of the display, and what it offers

struct Reporter : KRN_Base {
    Reporter() { SetName("Reporter"); }
};

D3DPRESENT_PARAMETERS Build(bool windowed, int bits, int vsync) {
    return BuildPresentParameters(Reporter(), {FakeWindow(), windowed, {1024, 768, 75, D3DFMT_X8R8G8B8}, bits, vsync});
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
