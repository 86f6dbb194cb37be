// Every device call that the facade makes is refused once: the given message, and nothing leaks.
#include <gtest/gtest.h>

#include "gfx/gfx_parts.h"
#include "gfx/texture.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

constexpr HRESULT kCodes[] = {D3DERR_INVALIDCALL,  D3DERR_OUTOFVIDEOMEMORY, E_OUTOFMEMORY,
                              D3DERR_NOTAVAILABLE, D3DERR_DEVICELOST,       E_FAIL};

struct FailingCall {
    const char* method;
    const char* message;   // %s stands for the code's name
    void (*act)(KRN_Gfx&);
};

std::string WithName(const char* message, HRESULT code) {
    std::string text = message;
    const std::size_t place = text.find("%s");
    return place == std::string::npos ? text : text.replace(place, 2, DXGetErrorString9(code));
}

class Initialised : public testing::TestWithParam<FailingCall> {};

TEST_P(Initialised, ReportsTheRefusalAndLeaksNothing) {
    for (const HRESULT code : kCodes) {
        RecordedGfx gfx;
        gfx.recording.Fail(GetParam().method, code);
        EXPECT_EQ(ErrorOf([&] { GetParam().act(*gfx); }), WithName(GetParam().message, code));
        gfx.Destroy();
        EXPECT_EQ(gfx.recording.LiveObjects(), 0) << GetParam().method;
    }
}

const FailingCall kCalls[] = {
    {"BeginScene", "KRN_Gfx: BeginScene failed: %s", [](KRN_Gfx& gfx) { gfx.BeginScene(); }},
    {"EndScene", "KRN_Gfx: EndScene failed: %s",
     [](KRN_Gfx& gfx) {
         gfx.BeginScene();
         gfx.EndScene();
     }},
    {"Clear", "KRN_Gfx: Clear failed!", [](KRN_Gfx& gfx) { gfx.Clear(0xFF102030, 1, nullptr); }},
    {"Clear", "KRN_Gfx: Clear failed!", [](KRN_Gfx& gfx) { gfx.ClearZBuffer(1, nullptr); }},
    {"SetRenderTarget", "KRN_Gfx: Can not set render target: %s",
     [](KRN_Gfx& gfx) {
         KRN_Texture target;
         gfx.CreateTexture(&target, 16, 8, 3, -1, 1);
         gfx.SetRenderTarget(target.GetSurfaceLevel(0).Get(), 0);
     }},
    {"SetRenderState", "KRN_Gfx:  SetRenderState (state 139, value: 9 failed: %s",
     [](KRN_Gfx& gfx) { gfx.SetAmbient(9); }},
    {"SetTextureStageState", "KRN_Gfx:  SetTextureStageState failed: %s (stage 3, type 1, value 4)",
     [](KRN_Gfx& gfx) { gfx.SetRenderSource(1, 3, 0); }},
    {"SetSamplerState", "KRN_Gfx:  SetSamplerState failed: %s (stage 3, type 5, value 2)",
     [](KRN_Gfx& gfx) { gfx.SetTextureFilter(1, 3); }},
    {"SetTransform", "KRN_Gfx: SetTransform failed: %s", [](KRN_Gfx& gfx) { gfx.ResetWorldTransform(); }},
    {"SetMaterial", "KRN_Gfx: SetMaterial failed: %s", [](KRN_Gfx& gfx) { gfx.SetMaterial({}); }},
    {"SetFVF", "KRN_Gfx: Failed to set flexible vertex format: %s", [](KRN_Gfx& gfx) { gfx.SetVertexFormat(0x42); }},
    {"SetStreamSource", "KRN_Gfx: SetStreamSource failed: %s",
     [](KRN_Gfx& gfx) { gfx.SetStreamSource(gfx.Parts().immediate.point.Buffer(), 16); }},
    {"SetIndices", "KRN_Gfx: SetIndices failed: %s", [](KRN_Gfx& gfx) { gfx.SetIndices(nullptr); }},
    {"SetSoftwareVertexProcessing", "KRN_Gfx: SetSoftwareVertexProcessing failed: %s",
     [](KRN_Gfx& gfx) { gfx.SetSoftwareVertexProcessing(true); }},
    {"Reset", "KRN_Gfx: Device Reset failed: %s", [](KRN_Gfx& gfx) { gfx.ResetDevice(nullptr, -1); }},
    {"GetRenderTarget", "KRN_Gfx: Can not retrieve render target: %s",
     [](KRN_Gfx& gfx) { gfx.ResetDevice(nullptr, -1); }},
    {"GetDepthStencilSurface", "KRN_Gfx: Can not retrieve zbuffer: %s",
     [](KRN_Gfx& gfx) { gfx.ResetDevice(nullptr, -1); }},
    {"GetBackBuffer", "KRN_Gfx: GetBackBuffer failed: %s", [](KRN_Gfx& gfx) { gfx.ResetDevice(nullptr, -1); }},
    {"CreateTexture", "KRN_Gfx: InitPostRenderEffects failed - can not create render texture: %s",
     [](KRN_Gfx& gfx) { gfx.InitPostRenderEffects(); }},
    {"GetSurfaceLevel", "KRN_Gfx: InitPostRenderEffects failed - can not retrieve target surface: %s",
     [](KRN_Gfx& gfx) { gfx.InitPostRenderEffects(); }},
    {"SetRenderTarget", "KRN_Gfx: BeginScene (post effect SetRenderTarget) failed: %s",
     [](KRN_Gfx& gfx) {
         gfx.InitPostRenderEffects();
         gfx.BeginScene();
     }},
    {"CreateTexture", "KRN_Gfx: Could not create screen copy texture: %s",
     [](KRN_Gfx& gfx) { gfx.GetScreenCopy(false); }},
    {"StretchRect", "KRN_Gfx: StretchRect failed: %s", [](KRN_Gfx& gfx) { gfx.GetScreenCopy(true); }},
    {"CreateTexture", "KRN_Gfx: GetScreenBufferTexture failed - can not create texture buffer: %s",
     [](KRN_Gfx& gfx) { gfx.GetScreenBufferTexture(1, 2); }},
    {"CreateVertexBuffer", "KRN_Gfx: CreateVertexBuffer in CreateVertexList failed: %s",
     [](KRN_Gfx& gfx) {
         KRN_VertexListTemp<KRN_LVertex> list;
         gfx.CreateVertexList(&list, 30, -1, false);
     }},
    {"CreateOffscreenPlainSurface", "KRN_Gfx: CreateOffscreenPlainSurface failed: %s",
     [](KRN_Gfx& gfx) {
         std::vector<D3DCOLOR> pixels;
         UINT width, height;
         gfx.ReadBackBuffer(pixels, width, height);
     }},
    {"GetRenderTargetData", "KRN_Gfx: GetRenderTargetData failed: %s",
     [](KRN_Gfx& gfx) {
         std::vector<D3DCOLOR> pixels;
         UINT width, height;
         gfx.ReadBackBuffer(pixels, width, height);
     }},
};
INSTANTIATE_TEST_SUITE_P(Calls, Initialised, testing::ValuesIn(kCalls));

class Creating : public testing::TestWithParam<FailingCall> {};

TEST_P(Creating, ReportsTheRefusalAndLeaksNothing) {
    for (const HRESULT code : kCodes) {
        RecordedGfx gfx(RecordedGfx::State::Constructed);
        gfx.recording.Fail(GetParam().method, code);
        EXPECT_EQ(ErrorOf([&] { GetParam().act(*gfx); }), WithName(GetParam().message, code));
        gfx.Destroy();
        EXPECT_EQ(gfx.recording.LiveObjects(), 0) << GetParam().method;
    }
}

void Init(KRN_Gfx& gfx) { gfx.InitDevice(FakeWindow(), 1, nullptr, 16, 0, 1, 0, 0); }

const FailingCall kCreatingCalls[] = {
    {"GetAdapterDisplayMode", "KRN_Gfx: GetAdapterDisplayMode failed: %s", Init},
    {"CreateDevice", "KRN_Gfx: CreateDevice failed: %s\n", Init},
    {"GetRenderTarget", "KRN_Gfx: Can not retrieve render target: %s", Init},
    {"GetDepthStencilSurface", "KRN_Gfx: Can not retrieve zbuffer: %s", Init},
    {"GetBackBuffer", "KRN_Gfx: GetBackBuffer failed: %s", Init},
    {"CreateVertexBuffer", "KRN_Gfx: CreateVertexBuffer in CreateVertexList failed: %s", Init},
    {"Lock", "KRN_ListBase: *undefined*: Lock failed: %s", Init},
    {"Unlock", "KRN_ListBase: *undefined*: Unlock failed: %s", Init},
};
INSTANTIATE_TEST_SUITE_P(Calls, Creating, testing::ValuesIn(kCreatingCalls));

TEST(Creating, ReportsAnEffectPoolThatCannotBeMade) {
    RecordedGfx gfx(RecordedGfx::State::Constructed);
    FakeEnvironment::pool_result = E_OUTOFMEMORY;
    EXPECT_EQ(ErrorOf([&] { Init(*gfx); }), "KRN_Gfx: Can not create default effect pool: E_OUTOFMEMORY");
    gfx.Destroy();
    EXPECT_EQ(gfx.recording.LiveObjects(), 0);
}

TEST(Creating, CapabilitiesThatCannotBeReadMeanSoftwareProcessing) {
    RecordedGfx gfx(RecordedGfx::State::Constructed);
    gfx.recording.Fail("GetDeviceCaps", D3DERR_NOTAVAILABLE, 1);
    Init(*gfx);
    EXPECT_FALSE(gfx->HardwareVertexProcessing());
    EXPECT_EQ(gfx->Caps().MaxPointSize, 256.0f) << "the device's own were read afterwards";
}

}   // namespace
}   // namespace sparkrig
