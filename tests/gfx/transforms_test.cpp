#include "gfx/states/transforms.h"

#include "gfx/textures/texture.h"
#include "scene/camera.h"
#include "tests/scene/near.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

D3DXMATRIX DeviceMatrix(RecordedGfx& gfx, D3DTRANSFORMSTATETYPE kind) {
    D3DXMATRIX matrix;
    gfx->Device()->GetTransform(kind, &matrix);
    return matrix;
}
D3DXVECTOR3 Carried(D3DXVECTOR3 point, const D3DXMATRIX& matrix) {
    return *D3DXVec3TransformCoord(&point, &point, &matrix);
}
void SetView(RecordedGfx& gfx, const D3DXVECTOR3& eye, const D3DXVECTOR3& direction) {
    KRN_Camera camera;
    camera.SetEye(eye.x, eye.y, eye.z, false);
    camera.SetViewDirection(direction.x, direction.y, direction.z, false);
    gfx->SetView(camera);
}

// What a modelling package calls right is right on the screen, and its counter-clockwise fronts stay so: culling mode
// 1, which effects are drawn with, keeps them.
TEST(Transforms, TheWorldIsSeenUnmirrored) {
    RecordedGfx gfx;
    SetView(gfx, {3, 50, 2}, {0, -1, 0});
    const D3DXMATRIX& view = gfx->ViewMatrix();
    EXPECT_EQ(Carried({3 - 5, 50 - 11, 2 + 7}, view), D3DXVECTOR3(5, 7, 11));
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_VIEW), view);
    const D3DXVECTOR3 corner = Carried({0, 0, 0}, view);
    EXPECT_GT(D3DXVec3Cross(Carried({0, 0, 1}, view) - corner, Carried({4, 0, 0}, view) - corner).z, 0)
        << "normal (0, 4, 0), towards the camera: counter-clockwise, y upwards";
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
    gfx->SetMirroredProjection();
    EXPECT_EQ(gfx->ProjectionMatrix().m[0][0], -expected.m[0][0]);
    EXPECT_EQ(gfx->CullingMode(), 1) << "turned over with it";
}

TEST(Transforms, AProjectionIsScaledToUnitDepth) {
    RecordedGfx gfx;
    gfx->SetTransform(D3DTS_PROJECTION, {{{2, 0, 0, 0}, {0, 6, 0, 0}, {0, 0, 3, 4}, {0, 0, -8, 0}}});
    const D3DXMATRIX expected = {{{0.5f, 0, 0, 0}, {0, 1.5f, 0, 0}, {0, 0, 0.75f, 1}, {0, 0, -2, 0}}};
    EXPECT_EQ(gfx->ProjectionMatrix(), expected);
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_PROJECTION), expected);
}

TEST(Transforms, WorldAndOthersGoToTheDevice) {
    RecordedGfx gfx;
    D3DXMATRIX world;
    D3DXMatrixTranslation(&world, 3, 5, 7);
    for (const D3DTRANSFORMSTATETYPE kind : {D3DTS_WORLD, D3DTS_WORLDMATRIX(4), D3DTS_TEXTUREn(2)}) {
        gfx->SetTransform(kind, world);
        EXPECT_EQ(DeviceMatrix(gfx, kind), world);
    }
    EXPECT_EQ(gfx->WorldMatrix(), world);
    for (int i = 0; i < 2; ++i) {
        gfx->ResetWorldTransform();
        EXPECT_EQ(DeviceMatrix(gfx, D3DTS_WORLD), kIdentityMatrix);
        EXPECT_EQ(gfx.recording.Count("SetTransform"), 4) << "the device holds it the second time";
    }
    gfx.recording.Fail("SetTransform", E_FAIL);
    for (const char* error : {"KRN_Gfx: SetTransform failed: E_FAIL", "no error"})
        EXPECT_EQ(ErrorOf([&] { gfx->SetTransform(D3DTS_WORLD, world); }), error);
    EXPECT_EQ(DeviceMatrix(gfx, D3DTS_WORLD), world);
}

TEST(Transforms, APixelRayMeetsThePointThatIsDrawnThere) {
    RecordedGfx gfx;
    SetView(gfx, {30, 200, 100}, {-0.3f, -0.9f, -0.4f});   // no axis of the camera is one of the world
    gfx->SetProjection(1, 2000, 0.7854f, -1);
    ExpectNear(gfx->CameraPosition(), {30, 200, 100}, 1e-3f);
    D3DXMATRIX view_projection;
    D3DXMatrixMultiply(&view_projection, &gfx->ViewMatrix(), &gfx->ProjectionMatrix());
    for (const auto& [x, y] : {std::pair{320, 240}, {0, 0}, {600, 37}, {15, 470}}) {
        const D3DXVECTOR3 point = gfx->CameraPosition() + gfx->PixelRay(x, y) * 300;
        const D3DXVECTOR3 clip = Carried(point, view_projection);
        EXPECT_NEAR((clip.x + 1) * 320, x, 0.01);
        EXPECT_NEAR((1 - clip.y) * 240, y, 0.01);
        EXPECT_NEAR(gfx->DistanceToCamera(point), 300, 0.01);
    }
    constexpr std::tuple<const char*, float, float, bool> kSpheres[] = {// along the ray of the middle
                                                                        {"ahead", 300, 0, true},
                                                                        {"behind", -300, 290, false},
                                                                        {"over the near plane", -300, 302, true},
                                                                        {"too far", 2100, 50, false}};
    for (const auto& [what, distance, radius, visible] : kSpheres)
        EXPECT_EQ(gfx->SphereInView(gfx->CameraPosition() + gfx->PixelRay(320, 240) * distance, radius), visible)
            << what;
}

TEST(Viewport, ANewTargetTakesItAlong) {
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
