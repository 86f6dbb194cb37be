#include "gfx/states/transforms.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "gfx/textures/texture.h"
#include "scene/camera.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

D3DXMATRIX DeviceMatrix(RecordedGfx& gfx, D3DTRANSFORMSTATETYPE kind) {
    D3DXMATRIX matrix;
    gfx->Device()->GetTransform(kind, &matrix);
    return matrix;
}

/// Looking down from the side: no axis of the camera is one of the world.
void SetSkewedView(RecordedGfx& gfx) {
    KRN_Camera camera;
    camera.SetEye(30, 200, 100, false);
    camera.SetViewDirection(-0.3f, -0.9f, -0.4f, false);
    gfx->SetView(camera);
}

TEST(Transforms, TheViewComesFromTheCamera) {
    RecordedGfx gfx;
    SetSkewedView(gfx);
    const D3DXVECTOR3 position = gfx->CameraPosition();
    EXPECT_NEAR(position.x, 30, 1e-3);
    EXPECT_NEAR(position.y, 200, 1e-3);
    EXPECT_NEAR(position.z, 100, 1e-3);
    EXPECT_NEAR(gfx->DistanceToCamera({30, 203, 104}), 5, 1e-3);
    D3DXVECTOR3 ahead(30 - 0.3f, 200 - 0.9f, 100 - 0.4f);
    D3DXVec3TransformCoord(&ahead, &ahead, &gfx->ViewMatrix());
    EXPECT_NEAR(ahead.x, 0, 1e-3);
    EXPECT_NEAR(ahead.y, 0, 1e-3);
    EXPECT_GT(ahead.z, 0);
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_VIEW), gfx->ViewMatrix());
}

// What a modelling package calls right is right on the screen, and its counter-clockwise fronts stay so: culling mode
// 1, which effects are drawn with, keeps them.
TEST(Transforms, TheWorldIsSeenUnmirrored) {
    RecordedGfx gfx;
    KRN_Camera camera;
    camera.SetEye(3, 50, 2, false);
    camera.SetViewDirection(0, -1, 0, false);
    gfx->SetView(camera);
    const auto seen = [&](D3DXVECTOR3 point) {
        D3DXVec3TransformCoord(&point, &point, &gfx->ViewMatrix());
        return point;
    };
    EXPECT_EQ(seen({3 - 5, 50 - 11, 2 + 7}), D3DXVECTOR3(5, 7, 11));

    const D3DXVECTOR3 corner = seen({0, 0, 0}), first = seen({0, 0, 1}) - corner, second = seen({4, 0, 0}) - corner;
    EXPECT_GT(D3DXVec3Cross(first, second).z, 0)
        << "normal (0, 4, 0), towards the camera: counter-clockwise, y upwards";
    gfx->SetCullingMode(1);
    EXPECT_EQ(gfx.recording.Sent(D3DRS_CULLMODE).back(), DWORD{D3DCULL_CW});
}

TEST(Transforms, TheProjectionTakesTheViewportsAspect) {
    RecordedGfx gfx;
    gfx->SetProjection(2, 500, 0.9f, -1);
    D3DXMATRIX expected;
    D3DXMatrixPerspectiveFovLH(&expected, 0.9f, 640.0f / 480.0f, 2, 500);
    EXPECT_EQ(gfx->ProjectionMatrix(), expected);
    gfx->SetProjection(2, 500, 0.9f, 3.5f);
    D3DXMatrixPerspectiveFovLH(&expected, 0.9f, 3.5f, 2, 500);
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_PROJECTION), expected);
}

TEST(Transforms, AProjectionIsScaledToUnitDepth) {
    RecordedGfx gfx;
    D3DXMATRIX projection = {{{2, 0, 0, 0}, {0, 6, 0, 0}, {0, 0, 3, 4}, {0, 0, -8, 0}}};
    gfx->SetTransform(D3DTS_PROJECTION, projection);
    const D3DXMATRIX expected = {{{0.5f, 0, 0, 0}, {0, 1.5f, 0, 0}, {0, 0, 0.75f, 1}, {0, 0, -2, 0}}};
    EXPECT_EQ(gfx->ProjectionMatrix(), expected);
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_PROJECTION), expected);
}

TEST(Transforms, AMirroredProjectionTurnsCullingOver) {
    RecordedGfx gfx;
    gfx->SetProjection(2, 500, 0.9f, 1.5f);
    const float across = gfx->ProjectionMatrix().m[0][0];
    gfx->SetMirroredProjection();
    EXPECT_EQ(gfx->ProjectionMatrix().m[0][0], -across);
    EXPECT_EQ(gfx->CullingMode(), 1);
}

TEST(Transforms, WorldAndOthersGoToTheDevice) {
    RecordedGfx gfx;
    D3DXMATRIX world;
    D3DXMatrixTranslation(&world, 3, 5, 7);
    gfx->SetTransform(D3DTS_WORLD, world);
    gfx->SetTransform(D3DTS_WORLDMATRIX(4), world);
    gfx->SetTransform(D3DTS_TEXTUREn(2), world);
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_WORLDMATRIX(4)), world);
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_TEXTUREn(2)), world);
    EXPECT_EQ(gfx->WorldMatrix(), world);
    gfx->ResetWorldTransform();
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_WORLD), kIdentityMatrix);
    gfx.recording.ForgetCalls();
    gfx->ResetWorldTransform();
    EXPECT_EQ(gfx.recording.Count("SetTransform"), 0) << "the device holds it";
    gfx.recording.Fail("SetTransform", E_FAIL);
    for (const char* error : {"KRN_Gfx: SetTransform failed: E_FAIL", "no error"})
        EXPECT_EQ(ErrorOf([&] { gfx->SetTransform(D3DTS_WORLD, world); }), error);
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_WORLD), world);
}

TEST(Transforms, ANewTargetTakesTheViewportWithIt) {
    RecordedGfx gfx;
    KRN_Texture target;
    gfx->CreateTexture(&target, 1024, 512, 3, -1, 1);
    gfx->SetViewPort(10, 20, 110, 220, 0, 1);
    gfx->SetRenderTarget(target.GetSurfaceLevel(0).Get(), 0);
    gfx->SetViewPort(10, 20, 110, 220, 0, 1);
    D3DVIEWPORT9 viewport = {};
    gfx->Device()->GetViewport(&viewport);
    EXPECT_EQ(viewport, (D3DVIEWPORT9{10, 20, 100, 200, 0, 1}));
}

TEST(Transforms, APixelRayMeetsThePointThatIsDrawnThere) {
    RecordedGfx gfx;
    SetSkewedView(gfx);
    gfx->SetProjection(1, 2000, 0.7854f, -1);
    for (const auto& [x, y] : {std::pair{320, 240}, {0, 0}, {600, 37}, {15, 470}}) {
        const D3DXVECTOR3 point = gfx->CameraPosition() + gfx->PixelRay(x, y) * 300;
        D3DXVECTOR3 clip;
        D3DXMATRIX view_projection;
        D3DXMatrixMultiply(&view_projection, &gfx->ViewMatrix(), &gfx->ProjectionMatrix());
        D3DXVec3TransformCoord(&clip, &point, &view_projection);
        EXPECT_NEAR((clip.x + 1) * 320, x, 0.01);
        EXPECT_NEAR((1 - clip.y) * 240, y, 0.01);
        EXPECT_NEAR(gfx->DistanceToCamera(point), 300, 0.01);
    }
}

TEST(Transforms, WhatLiesBehindTheCameraIsOutOfView) {
    RecordedGfx gfx;
    SetSkewedView(gfx);
    gfx->SetProjection(1, 2000, 0.7854f, -1);
    const D3DXVECTOR3 ahead = gfx->CameraPosition() + gfx->PixelRay(320, 240) * 300;
    const D3DXVECTOR3 behind = gfx->CameraPosition() - gfx->PixelRay(320, 240) * 300;
    EXPECT_TRUE(gfx->SphereInView(ahead, 0));
    EXPECT_FALSE(gfx->SphereInView(behind, 290));
    EXPECT_TRUE(gfx->SphereInView(behind, 302)) << "reaches over the near plane";
    EXPECT_FALSE(gfx->SphereInView(gfx->CameraPosition() + gfx->PixelRay(320, 240) * 2100, 50))
        << "beyond the far plane";
}

TEST(Viewport, ARefusalIsAWarningInAWindowAndAnErrorInFullScreen) {
    RecordedGfx gfx;
    EXPECT_EQ(gfx->SetViewPort(10, 20, 110, 220, 0.25f, 0.75f), 1);
    EXPECT_EQ(gfx->Viewport(), (D3DVIEWPORT9{10, 20, 100, 200, 0.25f, 0.75f}));
    const Reports reports;
    EXPECT_EQ(gfx->SetViewPort(10, 20, 1000, 220, 0, 1), 0);
    EXPECT_EQ(reports.Last(), "warning KRN_Gfx: SetViewPort failed: D3DERR_INVALIDCALL");
    EXPECT_EQ(gfx->Viewport().Width, 100u);

    RecordedGfx refusing(RecordedGfx::State::Constructed);
    refusing.recording.Fail("SetViewport", D3DERR_INVALIDCALL);
    refusing.Init();
    EXPECT_EQ(refusing->ProjectionMatrix().m[0][0], refusing->ProjectionMatrix().m[1][1])
        << "square for want of a size";

    RecordedGfx full(RecordedGfx::State::Constructed);
    const D3DDISPLAYMODE mode = {800, 600, 85, D3DFMT_X8R8G8B8};
    full->InitDevice(FakeWindow(), 0, &mode, 16, 0, 1, 0, 0);
    EXPECT_EQ(ErrorOf([&] { full->SetViewPort(0, 0, 801, 600, 0, 1); }),
              "KRN_Gfx: SetViewPort failed: D3DERR_INVALIDCALL");
}

}   // namespace
}   // namespace sparkrig
