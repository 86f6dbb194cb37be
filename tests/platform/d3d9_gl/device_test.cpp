// The device's life: creation, defaults, loss, reset, presenting, and state calls that are refused.
#include <SDL.h>
#include <gtest/gtest.h>

#include <functional>

#include "platform/d3d9_gl/device_hooks.h"
#include "platform/window/window.h"
#include "tests/support/canvas.h"
#include "tests/support/held_states.h"

namespace sparkrig {
namespace {

TEST(Device, RefusesWrongStates) {
    Canvas canvas(4, 4);
    const D3DMATRIX matrix = {};
    D3DLIGHT9 light = {};
    const auto sampler = [&](D3DSAMPLERSTATETYPE state, DWORD value) {
        return canvas->SetSamplerState(2, state, value);
    };
    EXPECT_EQ(canvas->SetRenderState(static_cast<D3DRENDERSTATETYPE>(200), 5), D3D_OK);   // a number without effect
    EXPECT_EQ(canvas->SetTransform(D3DTS_WORLDMATRIX(255), &matrix), D3D_OK);
    for (const HRESULT good :
         {sampler(D3DSAMP_ADDRESSU, 3), sampler(D3DSAMP_ADDRESSV, 5), sampler(D3DSAMP_MAGFILTER, 2),
          sampler(D3DSAMP_MINFILTER, 3), sampler(D3DSAMP_MIPFILTER, 2)})
        EXPECT_EQ(good, D3D_OK);
    const std::vector<DWORD> before = HeldStates(canvas.Device());
    const std::pair<const char*, HRESULT> kRefused[] = {
        {"render state", canvas->SetRenderState(static_cast<D3DRENDERSTATETYPE>(256), 1)},
        {"stage", canvas->SetTextureStageState(8, D3DTSS_COLOROP, 1)},
        {"stage state", canvas->SetTextureStageState(0, static_cast<D3DTEXTURESTAGESTATETYPE>(12), 1)},
        {"sampler", canvas->SetSamplerState(16, D3DSAMP_ADDRESSU, 1)},
        {"address 0", sampler(D3DSAMP_ADDRESSU, 0)},
        {"address 6", sampler(D3DSAMP_ADDRESSV, 6)},
        {"enlarging filter", sampler(D3DSAMP_MAGFILTER, 4)},
        {"reducing filter", sampler(D3DSAMP_MINFILTER, 9)},
        {"level filter", sampler(D3DSAMP_MIPFILTER, 3)},
        {"matrix", canvas->SetTransform(static_cast<D3DTRANSFORMSTATETYPE>(24), &matrix)},
        {"world matrix", canvas->SetTransform(D3DTS_WORLDMATRIX(256), &matrix)},
        {"no matrix", canvas->SetTransform(D3DTS_VIEW, nullptr)},
        {"light of no type", canvas->SetLight(0, &light)},
        {"light that was never set", canvas->GetLight(3, &light)}};
    for (const auto& [what, result] : kRefused) EXPECT_EQ(result, D3DERR_INVALIDCALL) << what;
    EXPECT_EQ(HeldStates(canvas.Device()), before);
    EXPECT_EQ(canvas->LightEnable(3, TRUE), D3D_OK);   // makes a light
    EXPECT_EQ(canvas->GetLight(3, &light), D3D_OK);
    EXPECT_TRUE(light.Type == D3DLIGHT_DIRECTIONAL && light.Direction == (D3DVECTOR{0, 0, 1}));
    EXPECT_EQ(light.Diffuse, (D3DCOLORVALUE{1, 1, 1, 0}));
}

TEST(Device, ScenesDoNotNestAndNothingIsPresentedInside) {
    Canvas canvas(4, 4);
    EXPECT_EQ(canvas->BeginScene(), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas->Present(nullptr, nullptr, nullptr, nullptr), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas->EndScene(), D3D_OK);
    EXPECT_EQ(canvas->EndScene(), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
}

TEST(Device, AnswersAsLostUntilItIsReset) {
    Canvas canvas(8, 4);
    const auto texture = MakeTexture(canvas.Device(), 1, 1, {Argb(255, 50, 60, 70)});
    canvas->SetTexture(0, texture.Get());
    D3DPRESENT_PARAMETERS parameters = CanvasParameters(6, 5);
    canvas->EndScene();
    LoseDevice(canvas.Device());
    EXPECT_EQ(canvas->TestCooperativeLevel(), D3DERR_DEVICELOST);
    EXPECT_EQ(canvas->Present(nullptr, nullptr, nullptr, nullptr), D3DERR_DEVICELOST);
    EXPECT_EQ(canvas->Reset(&parameters), D3DERR_DEVICELOST);
    EXPECT_EQ(canvas->BeginScene(), D3D_OK);
    EXPECT_EQ(canvas->Clear(0, nullptr, D3DCLEAR_TARGET, 1, 1, 0), D3D_OK);
    EXPECT_EQ(canvas->DrawPrimitive(D3DPT_TRIANGLELIST, 0, 1), D3D_OK);   // without effect, as everything now
    RestoreDevice(canvas.Device());
    EXPECT_EQ(canvas->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
    EXPECT_EQ(canvas->Present(nullptr, nullptr, nullptr, nullptr), D3DERR_DEVICELOST);
    canvas->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
    ASSERT_EQ(canvas->Reset(&parameters), D3D_OK);
    EXPECT_EQ(canvas->TestCooperativeLevel(), D3D_OK);

    DWORD blend = 5;
    D3DVIEWPORT9 viewport;
    DevicePtr<IDirect3DTexture9> bound;
    canvas->GetRenderState(D3DRS_ALPHABLENDENABLE, &blend);
    canvas->GetViewport(&viewport);
    canvas->GetTexture(0, bound.Receive());
    EXPECT_EQ(blend, 0u);
    EXPECT_EQ(viewport, (D3DVIEWPORT9{0, 0, 6, 5, 0, 1}));
    EXPECT_FALSE(bound);
    EXPECT_EQ(canvas->BeginScene(), D3D_OK);
    canvas->SetTexture(0, texture.Get());   // the managed pool survives with its contents
    canvas.Clear(0);
    canvas.FillAll(0xFFFFFFFF);
    EXPECT_EQ(canvas.Pixels().size(), 30u);
    EXPECT_EQ(canvas.Pixels()[0], Argb(255, 50, 60, 70));
}

TEST(Device, IsNotResetWhileDefaultPoolResourcesAreHeld) {
    Canvas canvas(4, 4);
    D3DPRESENT_PARAMETERS parameters = CanvasParameters(4, 4);
    DevicePtr<IDirect3DTexture9> texture;
    DevicePtr<IDirect3DVertexBuffer9> vertices;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    DevicePtr<IDirect3DSurface9> surface;
    const std::function<void()> kHolds[] = {
        [&] {
            canvas->CreateTexture(4, 4, 1, D3DUSAGE_RENDERTARGET, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT, texture.Receive());
        },
        [&] { canvas->CreateVertexBuffer(32, D3DUSAGE_DYNAMIC, 0, D3DPOOL_DEFAULT, vertices.Receive()); },
        [&] { canvas->CreateIndexBuffer(32, D3DUSAGE_DYNAMIC, D3DFMT_INDEX16, D3DPOOL_DEFAULT, indices.Receive()); },
        [&] { canvas->CreateRenderTarget(4, 4, D3DFMT_A8R8G8B8, 0, 0, FALSE, surface.Receive()); },
        [&] { canvas->GetBackBuffer(0, 0, 0, surface.Receive()); },
        [&] { canvas->GetDepthStencilSurface(surface.Receive()); }};
    for (const auto& hold : kHolds) {
        hold();
        EXPECT_EQ(canvas->Reset(&parameters), D3DERR_INVALIDCALL);
        EXPECT_EQ(canvas->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
        texture.Reset(), vertices.Reset(), indices.Reset(), surface.Reset();
        EXPECT_EQ(canvas->Reset(&parameters), D3D_OK);
    }
    // The managed pool does not count, nor does what only the device holds.
    canvas->CreateVertexBuffer(32, 0, 0, D3DPOOL_MANAGED, vertices.Receive());
    canvas->CreateRenderTarget(2, 2, D3DFMT_A8R8G8B8, 0, 0, FALSE, surface.Receive());
    canvas->SetRenderTarget(0, surface.Get());
    surface.Reset();
    EXPECT_EQ(canvas->Reset(&parameters), D3D_OK);
}

TEST(Device, RefusesWrongParameters) {
    Canvas canvas(4, 4);
    using P = D3DPRESENT_PARAMETERS;
    constexpr std::pair<void (*)(P&), HRESULT> kRows[] = {
        {[](P& p) { p.SwapEffect = 0; }, D3DERR_INVALIDCALL},
        {[](P& p) { p.FullScreen_RefreshRateInHz = 60; }, D3DERR_INVALIDCALL},                  // in a window
        {[](P& p) { p.PresentationInterval = D3DPRESENT_INTERVAL_TWO; }, D3DERR_INVALIDCALL},   // in a window
        {[](P& p) { p.SwapEffect = D3DSWAPEFFECT_COPY, p.BackBufferCount = 2; }, D3DERR_INVALIDCALL},
        {[](P& p) { p.MultiSampleType = 4; }, D3DERR_INVALIDCALL},   // flipped
        {[](P& p) { p.BackBufferFormat = D3DFMT_L8; }, D3DERR_NOTAVAILABLE},
        {[](P& p) { p.AutoDepthStencilFormat = D3DFMT_R5G6B5; }, D3DERR_NOTAVAILABLE},
        {[](P& p) { p.BackBufferWidth = 100000; }, D3DERR_INVALIDCALL},
        {[](P& p) { p.Windowed = FALSE; }, D3DERR_INVALIDCALL}};   // the size is no mode
    for (const auto& [change, result] : kRows) {
        D3DPRESENT_PARAMETERS parameters = CanvasParameters(4, 4);
        change(parameters);
        EXPECT_EQ(canvas->Reset(&parameters), result) << parameters.BackBufferFormat << parameters.MultiSampleType;
    }
    EXPECT_EQ(canvas->Reset(nullptr), D3DERR_INVALIDCALL);
}

TEST(Device, WithoutADepthBufferHasNoneToClearOrGive) {
    Canvas canvas(4, 4);
    D3DPRESENT_PARAMETERS parameters = CanvasParameters(4, 4);
    parameters.EnableAutoDepthStencil = FALSE;
    ASSERT_EQ(canvas->Reset(&parameters), D3D_OK);
    DevicePtr<IDirect3DSurface9> depth;
    DWORD enabled = 1;
    canvas->GetRenderState(D3DRS_ZENABLE, &enabled);
    EXPECT_EQ(enabled, 0u);
    EXPECT_EQ(canvas->GetDepthStencilSurface(depth.Receive()), D3DERR_NOTFOUND);
    EXPECT_EQ(canvas->Clear(0, nullptr, D3DCLEAR_ZBUFFER, 0, 1, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(canvas->Clear(0, nullptr, D3DCLEAR_TARGET, 0, 1, 0), D3D_OK);
}

TEST(Device, SaysWhyThereIsNone) {
    SDL_InitSubSystem(SDL_INIT_VIDEO);
    SDL_Window* window = SDL_CreateWindow("", 0, 0, 8, 8, SDL_WINDOW_HIDDEN);   // not one for OpenGL
    DevicePtr<IDirect3DDevice9> device;
    EXPECT_EQ(CreateDeviceOnWindow(window, CanvasParameters(4, 4), device.Receive()), D3DERR_NOTAVAILABLE);
    EXPECT_FALSE(device);
    EXPECT_EQ(std::string(Direct3DUnavailableReason()).rfind("OpenGL 4.5 is needed, but", 0), 0u);
    SDL_DestroyWindow(window);
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    const Canvas canvas(4, 4);
    EXPECT_STREQ(Direct3DUnavailableReason(), "");
}

class DeviceOnWindow : public testing::Test {
  protected:
    DeviceOnWindow() {
        KeepDriverLoaded();
        RegisterClassExA({DefWindowProcA, "DeviceTest"});
        window_ = CreateWindowExA("DeviceTest", "", 0, 0, 320, 200);
        UpdateWindow(window_);
        direct3d_ = DevicePtr(Direct3DCreate9(D3D_SDK_VERSION));
    }
    ~DeviceOnWindow() override {
        direct3d_.Reset();
        DestroyWindow(window_);
    }
    HRESULT Make(DWORD behaviour, D3DPRESENT_PARAMETERS parameters = CanvasParameters(0, 0)) {
        return direct3d_->CreateDevice(0, D3DDEVTYPE_HAL, window_, behaviour, &parameters, device_.Receive());
    }

    HWND window_ = nullptr;
    DevicePtr<IDirect3D9> direct3d_;
    DevicePtr<IDirect3DDevice9> device_;
};

TEST_F(DeviceOnWindow, DescribesTheAdapter) {
    EXPECT_EQ(Direct3DCreate9(31), nullptr);
    EXPECT_EQ(direct3d_->GetAdapterCount(), 1u);
    D3DADAPTER_IDENTIFIER9 identifier;
    EXPECT_EQ(direct3d_->GetAdapterIdentifier(0, 0, &identifier), D3D_OK);
    EXPECT_GT(std::string(identifier.Description).size(), 3u);
    EXPECT_EQ(direct3d_->GetAdapterIdentifier(1, 0, &identifier), D3DERR_INVALIDCALL);
    D3DDISPLAYMODE mode;
    EXPECT_EQ(direct3d_->GetAdapterDisplayMode(0, &mode), D3D_OK);
    EXPECT_EQ(mode.Format, D3DFMT_X8R8G8B8);
    EXPECT_GT(direct3d_->GetAdapterModeCount(0, D3DFMT_X8R8G8B8), 0u);
    EXPECT_EQ(direct3d_->GetAdapterModeCount(0, D3DFMT_L8), 0u);
    EXPECT_EQ(direct3d_->EnumAdapterModes(0, D3DFMT_L8, 0, &mode), D3DERR_NOTAVAILABLE);
    EXPECT_EQ(direct3d_->EnumAdapterModes(0, D3DFMT_R5G6B5, 10000, &mode), D3DERR_INVALIDCALL);
    EXPECT_EQ(direct3d_->EnumAdapterModes(0, D3DFMT_A8R8G8B8, 0, &mode), D3D_OK);
    EXPECT_EQ(mode.Format, D3DFMT_X8R8G8B8);
    D3DCAPS9 caps;
    EXPECT_EQ(direct3d_->GetDeviceCaps(0, D3DDEVTYPE_REF, &caps), D3D_OK);
    EXPECT_EQ(caps.MaxPointSize, 256.0f);
    EXPECT_EQ(caps.RasterCaps & D3DPRASTERCAPS_WBUFFER, 0u);
    EXPECT_EQ(caps.VertexShaderVersion, 0xFFFE0300u);
}

TEST_F(DeviceOnWindow, TellsWhichFormatsItHas) {
    constexpr std::pair<D3DFORMAT, const char*> kRows[] = {{D3DFMT_A8R8G8B8, "texture target "},
                                                           {D3DFMT_A4R4G4B4, "texture "},
                                                           {D3DFMT_R8G8B8, ""},
                                                           {D3DFMT_P8, ""},
                                                           {D3DFMT_D24S8, "depth "},
                                                           {D3DFMT_D32, "depth "},
                                                           {D3DFMT_D15S1, ""}};
    const auto check = [&](UINT adapter, DWORD usage, D3DFORMAT format) {
        return direct3d_->CheckDeviceFormat(adapter, D3DDEVTYPE_HAL, D3DFMT_X8R8G8B8, usage, D3DRTYPE_TEXTURE, format);
    };
    for (const auto& [format, wanted] : kRows) {
        std::string roles = check(0, 0, format) == D3D_OK ? "texture " : "";
        if (check(0, D3DUSAGE_RENDERTARGET, format) == D3D_OK) roles += "target ";
        if (check(0, D3DUSAGE_DEPTHSTENCIL, format) == D3D_OK) roles += "depth ";
        EXPECT_EQ(roles, wanted) << format;
    }
    EXPECT_EQ(check(1, 0, D3DFMT_A8), D3DERR_INVALIDCALL);
}

TEST_F(DeviceOnWindow, TakesTheSizeOfTheClientArea) {
    EXPECT_EQ(Make(D3DCREATE_MULTITHREADED), D3DERR_INVALIDCALL);   // neither software nor hardware nor mixed
    ASSERT_EQ(Make(D3DCREATE_SOFTWARE_VERTEXPROCESSING), D3D_OK);
    EXPECT_STREQ(Direct3DUnavailableReason(), "");
    RECT client;
    GetClientRect(window_, client);
    D3DVIEWPORT9 viewport;
    device_->GetViewport(&viewport);
    EXPECT_EQ(viewport.Width, static_cast<DWORD>(client.right));
    EXPECT_EQ(viewport.Height, static_cast<DWORD>(client.bottom));
    EXPECT_EQ(device_->SetSoftwareVertexProcessing(TRUE), D3D_OK);
    EXPECT_EQ(device_->SetSoftwareVertexProcessing(FALSE), D3DERR_INVALIDCALL);
    const auto texture = MakeTexture(*device_, 1, 1, {0});
    device_->SetTexture(0, texture.Get());
    device_.Reset();   // the texture goes after its device
}

TEST_F(DeviceOnWindow, AppliesTheGammaRampInFullScreen) {
    D3DDISPLAYMODE mode;
    ASSERT_EQ(direct3d_->EnumAdapterModes(0, D3DFMT_X8R8G8B8, 0, &mode), D3D_OK);
    D3DPRESENT_PARAMETERS parameters = CanvasParameters(mode.Width, mode.Height);
    parameters.Windowed = FALSE;
    ASSERT_EQ(Make(D3DCREATE_MIXED_VERTEXPROCESSING, parameters), D3D_OK);
    D3DGAMMARAMP ramp;
    for (int i = 0; i < 256; ++i) {
        ramp.red[i] = static_cast<WORD>(i * 257 / 2);
        ramp.green[i] = static_cast<WORD>(65535 - i * 257);
        ramp.blue[i] = static_cast<WORD>(i * 257);
    }
    device_->SetGammaRamp(0, D3DSGR_NO_CALIBRATION, &ramp);
    device_->Clear(0, nullptr, D3DCLEAR_TARGET, Argb(255, 200, 90, 30), 1, 0);
    ASSERT_EQ(device_->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
    const std::vector<D3DCOLOR> shown = ReadWindow(NativeWindow(window_));
    ASSERT_FALSE(shown.empty());
    EXPECT_TRUE(Near(ToRgb(shown[0]), Rgb{100, 165, 30}, 1)) << ToRgb(shown[0]);
    // The back buffer itself stays, and the next draw finds its states again.
    EXPECT_EQ(ReadBackBuffer(*device_)[0], Argb(255, 200, 90, 30));
}

TEST(Presenting, ShowsTheFirstRowOnTop) {
    Canvas canvas(6, 5);
    canvas.Clear(Argb(255, 10, 20, 30));
    canvas.Fill({0, 0, 6, 2}, Argb(255, 200, 100, 50));
    canvas->EndScene();
    ASSERT_EQ(canvas->Present(nullptr, nullptr, nullptr, nullptr), D3D_OK);
    std::vector<D3DCOLOR> shown = ReadWindow(canvas.Window());
    for (D3DCOLOR& pixel : shown) pixel |= 0xFF000000;
    EXPECT_EQ(shown, Box(6, 5, {0, 0, 6, 2}, Argb(255, 200, 100, 50), Argb(255, 10, 20, 30)));
}

}   // namespace
}   // namespace sparkrig
