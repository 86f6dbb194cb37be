// Render targets, copies between surfaces, and the calls that are refused.
#include <gtest/gtest.h>

#include <tuple>

#include "tests/support/canvas.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kBack = Argb(255, 10, 20, 30), kFront = Argb(255, 200, 100, 50);

DevicePtr<IDirect3DSurface9> MakeTarget(Canvas& canvas, UINT width, UINT height, DWORD samples = 0) {
    DevicePtr<IDirect3DSurface9> target;
    EXPECT_EQ(canvas->CreateRenderTarget(width, height, D3DFMT_A8R8G8B8, samples, 0, FALSE, target.Receive()), D3D_OK);
    return target;
}

DevicePtr<IDirect3DTexture9> MakeTargetTexture(Canvas& canvas, DWORD usage = 0) {
    DevicePtr<IDirect3DTexture9> texture;
    const UINT levels = usage == 0 ? 1 : 0;
    usage |= D3DUSAGE_RENDERTARGET;
    canvas->CreateTexture(4, 4, levels, usage, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT, texture.Receive());
    return texture;
}

DevicePtr<IDirect3DSurface9> Level0(IDirect3DTexture9& texture) {
    DevicePtr<IDirect3DSurface9> surface;
    texture.GetSurfaceLevel(0, surface.Receive());
    return surface;
}

TEST(Targets, ATextureDrawnIntoIsReadWithItsFirstRowOnTop) {
    Canvas canvas(4, 4);
    const auto texture = MakeTargetTexture(canvas);
    DevicePtr<IDirect3DSurface9> back;
    canvas->GetRenderTarget(0, back.Receive());
    ASSERT_EQ(canvas->SetRenderTarget(0, Level0(*texture).Get()), D3D_OK);
    canvas.Clear(kBack);
    canvas.Fill({0, 0, 4, 1}, kFront);
    canvas->SetRenderTarget(0, back.Get());
    canvas.Clear(0);
    canvas->SetTexture(0, texture.Get());
    canvas.FillAll(0xFFFFFFFF);
    EXPECT_EQ(canvas.Pixels(), Box(4, 4, {0, 0, 4, 1}, kFront, kBack));
}

TEST(Targets, SettingOneMakesTheViewportItsSizeAndKeepsDepthWorking) {
    Canvas canvas(8, 8);
    // Smaller, larger and multisampled: the depth buffer of the back buffer fits the first one only.
    for (const auto& [width, height, samples] : {std::tuple<UINT, UINT, DWORD>{5, 3, 0}, {16, 12, 0}, {6, 6, 4}}) {
        const auto target = MakeTarget(canvas, width, height, samples);
        ASSERT_EQ(canvas->SetRenderTarget(0, target.Get()), D3D_OK);
        D3DVIEWPORT9 viewport;
        canvas->GetViewport(&viewport);
        EXPECT_EQ(viewport, (D3DVIEWPORT9{0, 0, width, height, 0.0f, 1.0f}));
        canvas.Clear(kBack, 0.5f);
        const auto plain = MakeTarget(canvas, width, height);
        for (const float z : {0.75f, 0.25f}) {   // behind and before
            const RECT all = {-1, -1, static_cast<LONG>(width) + 1, static_cast<LONG>(height) + 1};
            canvas.Fill(all, kFront, 0, z);
            ASSERT_EQ(canvas->StretchRect(target.Get(), nullptr, plain.Get(), nullptr, D3DTEXF_NONE), D3D_OK);
            EXPECT_EQ(ReadTarget(canvas.Device(), *plain),
                      std::vector<D3DCOLOR>(std::size_t{width} * height, z > 0.5f ? kBack : kFront));
        }
    }
}

TEST(Targets, StretchRectCopiesScalesAndConverts) {
    Canvas canvas(8, 8);
    const auto source = MakeTarget(canvas, 4, 2), scaled = MakeTarget(canvas, 8, 4);
    canvas->SetRenderTarget(0, source.Get());
    canvas.Clear(kBack);
    canvas.Fill({2, 0, 4, 1}, kFront);
    ASSERT_EQ(canvas->StretchRect(source.Get(), nullptr, scaled.Get(), nullptr, D3DTEXF_POINT), D3D_OK);
    EXPECT_EQ(ReadTarget(canvas.Device(), *scaled), Box(8, 4, {4, 0, 8, 2}, kFront, kBack));
    DevicePtr<IDirect3DSurface9> small;
    canvas->CreateRenderTarget(2, 1, D3DFMT_R5G6B5, 0, 0, TRUE, small.Receive());
    const RECT from = {2, 0, 4, 1};
    ASSERT_EQ(canvas->StretchRect(source.Get(), &from, small.Get(), nullptr, D3DTEXF_NONE), D3D_OK);
    D3DLOCKED_RECT locked;
    ASSERT_EQ(small->LockRect(&locked, nullptr, D3DLOCK_READONLY), D3D_OK);
    const WORD pixel = static_cast<const WORD*>(locked.pBits)[1];
    EXPECT_NEAR(pixel >> 11, 24, 1);   // 200, 100, 50 in five, six, five bits
    EXPECT_NEAR(pixel >> 5 & 63, 25, 1);
    EXPECT_NEAR(pixel & 31, 6, 1);
    small->UnlockRect();
}

TEST(Targets, StretchRectGivesAnAlphaThatTheSourceLacks) {
    Canvas canvas(8, 8);
    const auto target = MakeTarget(canvas, 4, 4);
    canvas->ColorFill(target.Get(), nullptr, kBack & 0x00FFFFFF);
    canvas.Clear(kFront & 0x40FFFFFF);   // the back buffer has no alpha
    DevicePtr<IDirect3DSurface9> back_buffer;
    canvas->GetBackBuffer(0, 0, 0, back_buffer.Receive());
    const RECT from = {0, 0, 2, 2}, to = {1, 1, 3, 3};
    ASSERT_EQ(canvas->StretchRect(back_buffer.Get(), &from, target.Get(), &to, D3DTEXF_NONE), D3D_OK);
    EXPECT_EQ(ReadTarget(canvas.Device(), *target), Box(4, 4, to, kFront, kBack & 0x00FFFFFF));
}

TEST(Targets, StretchRectCopiesWithinASurfaceWhatLiesApartAndColorFillReachesItsRectangleOnly) {
    Canvas canvas(8, 8);
    const auto texture = MakeTargetTexture(canvas);
    const auto target = Level0(*texture);
    const D3DVIEWPORT9 viewport = {3, 3, 1, 1, 0, 1};
    canvas->SetViewport(&viewport);   // has no effect on it
    const RECT left = {0, 0, 2, 4}, right = {2, 0, 4, 4}, middle = {1, 0, 3, 4};
    canvas->ColorFill(target.Get(), nullptr, kBack);
    canvas->ColorFill(target.Get(), &left, kFront);
    EXPECT_EQ(ReadTarget(canvas.Device(), *target), Box(4, 4, left, kFront, kBack));
    EXPECT_EQ(canvas->StretchRect(target.Get(), &left, target.Get(), &middle, D3DTEXF_NONE), D3DERR_INVALIDCALL);
    ASSERT_EQ(canvas->StretchRect(target.Get(), &left, target.Get(), &right, D3DTEXF_NONE), D3D_OK);
    EXPECT_EQ(ReadTarget(canvas.Device(), *target), std::vector<D3DCOLOR>(16, kFront));
}

TEST(Targets, UpdateTextureCopiesEveryLevel) {
    Canvas canvas(4, 4);
    DevicePtr<IDirect3DTexture9> source, destination;
    canvas->CreateTexture(4, 2, 2, 0, D3DFMT_A8R8G8B8, D3DPOOL_SYSTEMMEM, source.Receive());
    canvas->CreateTexture(4, 2, 2, 0, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT, destination.Receive());
    FillLevel(*source, 0, std::vector<D3DCOLOR>(8, kBack).data());
    FillLevel(*source, 1, std::vector<D3DCOLOR>(2, kFront).data());
    ASSERT_EQ(canvas->UpdateTexture(source.Get(), destination.Get()), D3D_OK);
    canvas->SetTexture(0, destination.Get());
    for (DWORD level = 0; level < 2; ++level) {
        canvas->SetSamplerState(0, D3DSAMP_MAXMIPLEVEL, level);
        canvas.FillAll(0xFFFFFFFF);
        EXPECT_EQ(canvas.PixelArgb(1, 1), level == 0 ? kBack : kFront);
    }
}

TEST(Targets, MakeTheSmallerLevelsOfATextureThatAsksForThem) {
    Canvas canvas(4, 4);
    DevicePtr<IDirect3DTexture9> texture;
    canvas->CreateTexture(2, 2, 0, D3DUSAGE_AUTOGENMIPMAP, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive());
    EXPECT_EQ(texture->GetLevelCount(), 1u);
    constexpr D3DCOLOR kLeft = Argb(255, 40, 80, 120), kRight = Argb(255, 60, 120, 200);
    constexpr D3DCOLOR kTexels[] = {kLeft, kRight, kLeft, kRight};
    FillLevel(*texture, 0, kTexels);
    canvas->SetTexture(0, texture.Get());
    canvas->SetSamplerState(0, D3DSAMP_MIPFILTER, D3DTEXF_POINT);
    canvas->SetSamplerState(0, D3DSAMP_MAXMIPLEVEL, 1);
    canvas.FillAll(0xFFFFFFFF);
    EXPECT_TRUE(Near(canvas.Pixel(1, 1), Rgb{50, 100, 160}, 1)) << canvas.Pixel(1, 1);

    texture = MakeTargetTexture(canvas, D3DUSAGE_AUTOGENMIPMAP);
    DevicePtr<IDirect3DSurface9> back_buffer;
    canvas->GetBackBuffer(0, 0, 0, back_buffer.Receive());
    for (const D3DCOLOR colour : {kFront, kBack}) {   // drawn into for the first time, and again
        canvas->SetTexture(0, nullptr);
        canvas->SetRenderTarget(0, Level0(*texture).Get());
        canvas.Clear(colour);
        canvas->SetRenderTarget(0, back_buffer.Get());
        canvas->SetTexture(0, texture.Get());
        canvas.FillAll(0xFFFFFFFF);
        EXPECT_EQ(canvas.PixelArgb(1, 1), colour);
    }
}

TEST(Targets, RefuseWhatTheRulesForbid) {
    Canvas canvas(8, 8);
    const auto target = MakeTarget(canvas, 4, 4), other = MakeTarget(canvas, 4, 4),
               samples = MakeTarget(canvas, 4, 4, 4);
    DevicePtr<IDirect3DSurface9> system, wrong_size, plain, made;
    canvas->CreateOffscreenPlainSurface(4, 4, D3DFMT_A8R8G8B8, D3DPOOL_SYSTEMMEM, system.Receive());
    canvas->CreateOffscreenPlainSurface(4, 5, D3DFMT_A8R8G8B8, D3DPOOL_SYSTEMMEM, wrong_size.Receive());
    canvas->CreateOffscreenPlainSurface(4, 4, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT, plain.Receive());
    const RECT outside = {0, 0, 5, 4}, half = {0, 0, 2, 2};
    IDirect3DDevice9& device = canvas.Device();
    const std::pair<const char*, HRESULT> kRefused[] = {
        {"null target", device.SetRenderTarget(0, nullptr)},
        {"second target", device.SetRenderTarget(1, target.Get())},
        {"system surface as target", device.SetRenderTarget(0, system.Get())},
        {"lockable multisampled target", device.CreateRenderTarget(4, 4, D3DFMT_A8R8G8B8, 4, 0, TRUE, made.Receive())},
        {"target of a texture format", device.CreateRenderTarget(4, 4, D3DFMT_L8, 0, 0, FALSE, made.Receive())},
        {"managed plain surface",
         device.CreateOffscreenPlainSurface(4, 4, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, made.Receive())},
        {"copy from system memory", device.StretchRect(system.Get(), nullptr, target.Get(), nullptr, D3DTEXF_NONE)},
        {"copy onto itself", device.StretchRect(target.Get(), nullptr, target.Get(), &half, D3DTEXF_NONE)},
        {"copy into a plain surface", device.StretchRect(target.Get(), nullptr, plain.Get(), nullptr, D3DTEXF_NONE)},
        {"copy from outside", device.StretchRect(target.Get(), &outside, other.Get(), nullptr, D3DTEXF_NONE)},
        {"copy with a filter for nothing", device.StretchRect(target.Get(), nullptr, other.Get(), nullptr, 3)},
        {"copy into samples", device.StretchRect(target.Get(), nullptr, samples.Get(), nullptr, D3DTEXF_NONE)},
        {"stretched resolve", device.StretchRect(samples.Get(), nullptr, other.Get(), &half, D3DTEXF_NONE)},
        {"fill in system memory", device.ColorFill(system.Get(), nullptr, 0)},
        {"fill outside", device.ColorFill(target.Get(), &outside, 0)},
        {"read of another size", device.GetRenderTargetData(target.Get(), wrong_size.Get())},
        {"read into the default pool", device.GetRenderTargetData(target.Get(), plain.Get())},
        {"read of samples", device.GetRenderTargetData(samples.Get(), system.Get())},
        {"back buffer 1", device.GetBackBuffer(0, 1, 0, made.Receive())},
        {"clear with a count alone", device.Clear(1, nullptr, D3DCLEAR_TARGET, 0, 0, 0)},
        {"clear of nothing", device.Clear(0, nullptr, 0, 0, 0, 0)},
        {"clear of a stencil that is not there", device.Clear(0, nullptr, D3DCLEAR_STENCIL, 0, 0, 0)},
        {"clear to a depth outside", device.Clear(0, nullptr, D3DCLEAR_ZBUFFER, 0, 1.5f, 0)},
    };
    for (const auto& [call, result] : kRefused) EXPECT_EQ(result, D3DERR_INVALIDCALL) << call;
    EXPECT_EQ(device.ColorFill(plain.Get(), nullptr, kFront), D3D_OK);
    D3DLOCKED_RECT locked;
    ASSERT_EQ(plain->LockRect(&locked, nullptr, D3DLOCK_READONLY), D3D_OK);
    EXPECT_EQ(*static_cast<D3DCOLOR*>(locked.pBits), kFront);
    plain->UnlockRect();
    EXPECT_EQ(target->LockRect(&locked, nullptr, 0), D3DERR_INVALIDCALL);   // was not asked to be lockable
    const D3DVIEWPORT9 bad[] = {{0, 0, 9, 8, 0, 1}, {8, 0, 1, 1, 0, 1}, {0, 0, 0, 4, 0, 1}, {~0u, 0, 2, 2, 0, 1}};
    for (const D3DVIEWPORT9& viewport : bad) EXPECT_EQ(device.SetViewport(&viewport), D3DERR_INVALIDCALL);
}

}   // namespace
}   // namespace sparkrig
