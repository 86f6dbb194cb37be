// Culling, depth, blending, filters, points, fog, lighting, alpha test, gamma: what is sent, and what is not sent
// again. Then matrices and the viewport.
#include <bit>
#include <set>

#include "gfx/states/modes.h"
#include "gfx/states/transforms.h"
#include "gfx/textures/texture.h"
#include "scene/camera.h"
#include "scene/light.h"
#include "tests/scene/near.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

DWORD Bits(float value) { return std::bit_cast<DWORD>(value); }

RecordedCall Render(D3DRENDERSTATETYPE state, DWORD value) { return {"SetRenderState", {DWORD(state), value}}; }
RecordedCall Sampler(D3DSAMPLERSTATETYPE type, DWORD value) { return {"SetSamplerState", {1, DWORD(type), value}}; }

DWORD HeldValue(IDirect3DDevice9& device, const RecordedCall& call) {
    DWORD value = 999;
    if (call.method == "SetRenderState")
        device.GetRenderState(D3DRENDERSTATETYPE(call.arguments[0]), &value);
    else
        device.GetSamplerState(call.arguments[0], D3DSAMPLERSTATETYPE(call.arguments[1]), &value);
    return value;
}

// A, B, C, the largest and the smallest size, the size, sprites, scaling
constexpr PointSpriteSettings kScaledPoints = {0.25f, 0.75f, 0.125f, 50, 3, 7, true, true};
constexpr PointSpriteSettings kPlainPoints = {0.25f, 0.75f, 0.125f, 1000, 3, 7, true, false};

TEST(States, AreSentOnceAndHeldAgainAfterAReset) {
    // clang-format off
    const std::tuple<const char*, void (*)(KRN_Gfx&), std::vector<RecordedCall>> kRows[] = {
        {"no culling", [](KRN_Gfx& gfx) { gfx.SetCullingMode(0); }, {Render(D3DRS_CULLMODE, D3DCULL_NONE)}},
        {"culling", [](KRN_Gfx& gfx) { gfx.SetCullingMode(1); }, {Render(D3DRS_CULLMODE, D3DCULL_CW)}},
        {"no depth test", [](KRN_Gfx& gfx) { gfx.SetZBufferMode(0); }, {Render(D3DRS_ZENABLE, 0)}},
        {"no depth write", [](KRN_Gfx& gfx) { gfx.SetZWrite(false); }, {Render(D3DRS_ZWRITEENABLE, 0)}},
        {"no lighting", [](KRN_Gfx& gfx) { gfx.SetLighting(false, nullptr); }, {Render(D3DRS_LIGHTING, 0)}},
        {"specular", [](KRN_Gfx& gfx) { gfx.SetSpecular(true); }, {Render(D3DRS_SPECULARENABLE, 1)}},
        {"normals", [](KRN_Gfx& gfx) { gfx.SetNormalizeNormals(false); }, {Render(D3DRS_NORMALIZENORMALS, 0)}},
        {"alpha test", [](KRN_Gfx& gfx) { gfx.SetAlphaTest(1, 0x30); },
         {Render(D3DRS_ALPHATESTENABLE, 1), Render(D3DRS_ALPHAFUNC, D3DCMP_GREATER), Render(D3DRS_ALPHAREF, 0x30)}},
        {"alpha of one value", [](KRN_Gfx& gfx) { gfx.SetAlphaTest(255, 0x31); },
         {Render(D3DRS_ALPHATESTENABLE, 255), Render(D3DRS_ALPHAFUNC, D3DCMP_EQUAL), Render(D3DRS_ALPHAREF, 0x31)}},
        {"magnify point", [](KRN_Gfx& gfx) { gfx.SetTextureFilter(2, 1); }, {Sampler(D3DSAMP_MAGFILTER, 1)}},
        {"magnify anisotropic", [](KRN_Gfx& gfx) { gfx.SetTextureFilter(6, 1); }, {Sampler(D3DSAMP_MAGFILTER, 3)}},
        {"minify point", [](KRN_Gfx& gfx) { gfx.SetTextureFilter(4, 1); }, {Sampler(D3DSAMP_MINFILTER, 1)}},
        {"minify anisotropic", [](KRN_Gfx& gfx) { gfx.SetTextureFilter(5, 1); }, {Sampler(D3DSAMP_MINFILTER, 3)}},
        {"clamp", [](KRN_Gfx& gfx) { gfx.SetTextureFilter(8, 1); },
         {Sampler(D3DSAMP_ADDRESSU, 3), Sampler(D3DSAMP_ADDRESSV, 3)}},
        {"mirror", [](KRN_Gfx& gfx) { gfx.SetTextureFilter(9, 1); },
         {Sampler(D3DSAMP_ADDRESSU, 2), Sampler(D3DSAMP_ADDRESSV, 2)}},
        {"mirror down", [](KRN_Gfx& gfx) { gfx.SetAddressModeV(D3DTADDRESS_MIRROR, 1); },
         {Sampler(D3DSAMP_ADDRESSV, 2)}},
        {"mip maps", [](KRN_Gfx& gfx) { gfx.SetMipmapMode(1, -0.5f, 1); },
         {Sampler(D3DSAMP_MIPFILTER, 1), Sampler(D3DSAMP_MIPMAPLODBIAS, Bits(-0.5f))}},
        {"points", [](KRN_Gfx& gfx) { gfx.SetPointSprite(kScaledPoints, false); },
         {Render(D3DRS_POINTSPRITEENABLE, 1), Render(D3DRS_POINTSCALEENABLE, 1), Render(D3DRS_POINTSIZE, Bits(7)),
          Render(D3DRS_POINTSIZE_MIN, Bits(3)), Render(D3DRS_POINTSIZE_MAX, Bits(50)),
          Render(D3DRS_POINTSCALE_A, Bits(0.25f)), Render(D3DRS_POINTSCALE_B, Bits(0.75f)),
          Render(D3DRS_POINTSCALE_C, Bits(0.125f))}},
        {"points of one size", [](KRN_Gfx& gfx) { gfx.SetPointSprite(kPlainPoints, false); },
         {Render(D3DRS_POINTSPRITEENABLE, 1), Render(D3DRS_POINTSCALEENABLE, 0), Render(D3DRS_POINTSIZE, Bits(7))}},
        {"lines, points kept", [](KRN_Gfx& gfx) { gfx.SetFillMode(2, &kScaledPoints); }, {Render(D3DRS_FILLMODE, 2)}},
        {"points by kept settings", [](KRN_Gfx& gfx) { gfx.SetFillMode(1, &kPlainPoints), gfx.SetFillMode(1, nullptr); },
         {Render(D3DRS_POINTSPRITEENABLE, 1), Render(D3DRS_POINTSCALEENABLE, 0), Render(D3DRS_POINTSIZE, Bits(7)),
          Render(D3DRS_FILLMODE, 1)}},
        {"linear fog", [](KRN_Gfx& gfx) { gfx.SetFog({0xFF204060, D3DFOG_LINEAR, true, 12, 345, 0.3f}); },
         {Render(D3DRS_FOGCOLOR, 0xFF204060), Render(D3DRS_FOGVERTEXMODE, 3), Render(D3DRS_FOGSTART, Bits(12)),
          Render(D3DRS_FOGEND, Bits(345))}},
        {"fog of pixels", [](KRN_Gfx& gfx) { gfx.SetFog({0xFF204060, D3DFOG_EXP2, false, 12, 345, 0.3f}); },
         {Render(D3DRS_FOGCOLOR, 0xFF204060), Render(D3DRS_FOGTABLEMODE, 2), Render(D3DRS_FOGDENSITY, Bits(0.3f))}},
    };
    // clang-format on
    for (const auto& [name, set, sent] : kRows) {
        RecordedGfx gfx;
        for (int i = 0; i < 2; ++i) set(*gfx);
        EXPECT_EQ(gfx.recording.Calls(), sent) << name;
        gfx->ResetDevice(nullptr, -1);
        for (const RecordedCall& call : sent) EXPECT_EQ(HeldValue(*gfx->Device(), call), call.arguments.back()) << name;
    }
}

TEST(States, GoBackToWhatTheyWereAtFirst) {
    RecordedGfx gfx;
    for (const int preset : {2, 1, 4, 3, 8, 7}) gfx->SetTextureFilter(preset, 1);
    for (const int mode : {0, -1}) gfx->SetCullingMode(mode);
    EXPECT_THAT(gfx.recording.Sent(1, D3DSAMP_MAGFILTER), ElementsAre(1, 2));
    EXPECT_THAT(gfx.recording.Sent(1, D3DSAMP_MINFILTER), ElementsAre(1, 2));
    EXPECT_THAT(gfx.recording.Sent(1, D3DSAMP_ADDRESSV), ElementsAre(3, 1));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_CULLMODE), ElementsAre(D3DCULL_NONE, D3DCULL_CCW));
}

TEST(States, ARefusedOneIsTriedAgain) {
    RecordedGfx gfx;
    gfx.recording.Fail("SetRenderState", D3DERR_INVALIDCALL);
    EXPECT_EQ(ErrorOf([&] { gfx->SetCullingMode(1); }),
              "KRN_Gfx:  SetRenderState (state 22, value: 2 failed: D3DERR_INVALIDCALL");
    gfx->SetCullingMode(1);
    EXPECT_THAT(gfx.recording.Sent(D3DRS_CULLMODE), ElementsAre(D3DCULL_CW, D3DCULL_CW));
    gfx->SetAddressModeU(D3DTADDRESS_MIRROR, 1);
    gfx.recording.Fail("SetSamplerState", D3DERR_INVALIDCALL);
    EXPECT_EQ(gfx->SetAddressModeU(D3DTADDRESS_CLAMP, 1), 0);
    EXPECT_EQ(gfx->SetAddressModeU(D3DTADDRESS_MIRROR, 1), 1);
    EXPECT_THAT(gfx.recording.Sent(1, D3DSAMP_ADDRESSU), ElementsAre(2, 3)) << "the cache still says mirror";
}

TEST(States, OtherNumbersAreErrorsOrNothing) {
    const std::pair<const char*, void (*)(KRN_Gfx&)> kRows[] = {
        {"Invalid culling mode", [](KRN_Gfx& gfx) { gfx.SetCullingMode(2); }},
        {"Wrong mipmap mode!", [](KRN_Gfx& gfx) { gfx.SetMipmapMode(3, 0, 0); }},
        {"Invalid stage: 8", [](KRN_Gfx& gfx) { gfx.SetTextureFilter(1, 8); }},
        {"Invalid stage: 7", [](KRN_Gfx& gfx) { gfx.SetBlendingMode(3, 80, 7); }},
        {"Invalid stage: -1", [](KRN_Gfx& gfx) { gfx.SetBlendingMode(3, 80, -1); }},
        {"Invalid Blending mode selected!", [](KRN_Gfx& gfx) { gfx.SetBlendingMode(0, 80, 0); }},
        {"Invalid Blending mode selected!", [](KRN_Gfx& gfx) { gfx.SetBlendingMode(8, 80, 0); }},
        {"Invalid Blending mode selected!", [](KRN_Gfx& gfx) { gfx.SetBlendingMode(18, 80, 0); }},
        {"Invalid Blending mode selected!", [](KRN_Gfx& gfx) { gfx.SetBlendingMode(-2, 80, 0); }},
        {"Invalid stage: 8", [](KRN_Gfx& gfx) { gfx.SetRenderSource(2, 8, 0); }},
        {"Invalid render source selected", [](KRN_Gfx& gfx) { gfx.SetRenderSource(4, 0, 0); }},
        {"Light index >7", [](KRN_Gfx& gfx) { gfx.SetLightEnable(8, true); }},
        {"Light index >7", [](KRN_Gfx& gfx) { gfx.SetLightEnable(-1, true); }},
    };
    RecordedGfx gfx;
    for (const auto& row : kRows) EXPECT_EQ(ErrorOf([&] { row.second(*gfx); }), std::string("KRN_Gfx: ") + row.first);
    EXPECT_EQ(gfx->SetTextureFilter(-1, 1), 1);
    EXPECT_EQ(gfx->SetTextureFilter(0, 1), 0);
    EXPECT_EQ(gfx->SetTextureFilter(10, 1), 0);
    EXPECT_THAT(gfx.recording.Calls(), IsEmpty());
    EXPECT_EQ(gfx->CullingMode(), -1);
}

TEST(States, FollowTheDevicesCapabilities) {
    RecordedGfx plain, able([](Recording&recording) { recording.caps.RasterCaps |= D3DPRASTERCAPS_WBUFFER; });
    for (RecordedGfx* gfx : {&plain, &able}) {
        (*gfx)->SetZBufferMode(0);
        (*gfx)->SetZBufferMode(2);
    }
    EXPECT_THAT(plain.recording.Sent(D3DRS_ZENABLE), ElementsAre(0, 1)) << "no depths of that kind";
    EXPECT_EQ(plain->ZBufferMode(), 1);
    EXPECT_THAT(able.recording.Sent(D3DRS_ZENABLE), ElementsAre(0, 2));

    RecordedGfx without([](Recording& recording) { recording.caps.TextureCaps = recording.caps.DevCaps = 0; });
    EXPECT_EQ(without->SetMipmapMode(1, 2.5f, 0), 0);
    EXPECT_THAT(without.recording.Calls(), IsEmpty());
    EXPECT_EQ(without->MipmapBias(), 2.5f) << "kept all the same";
    without->SetBlendingMode(12, 80, 2);
    EXPECT_THAT(without.recording.Sent(2, D3DTSS_COLOROP), IsEmpty()) << "vertices are processed in software";
}

TEST(States, OffNestsAndComesBackOnlyWhenItWasOn) {
    const std::tuple<D3DRENDERSTATETYPE, void (*)(KRN_Gfx&), void (KRN_Gfx::*)(), void (KRN_Gfx::*)()> kRows[] = {
        {D3DRS_ZENABLE, [](KRN_Gfx& gfx) { gfx.SetZBufferMode(0); }, &KRN_Gfx::PushZBufferOff, &KRN_Gfx::PopZBufferOff},
        {D3DRS_LIGHTING, [](KRN_Gfx& gfx) { gfx.SetLighting(false, nullptr); }, &KRN_Gfx::PushLightingOff,
         &KRN_Gfx::PopLightingOff}};
    for (const auto& [state, set_off, push, pop] : kRows) {
        RecordedGfx gfx;
        const auto call = [&gfx, state = state](std::initializer_list<void (KRN_Gfx::*)()> calls) {
            for (const auto& one : calls) ((*gfx).*one)();
            return gfx.recording.Sent(state);
        };
        EXPECT_THAT(call({push, push, pop}), ElementsAre(0));
        EXPECT_THAT(call({pop}), ElementsAre(0, 1));
        EXPECT_THAT(call({pop, push}), ElementsAre(0, 1, 0)) << "a pop too many is forgiven";
        call({pop});
        set_off(*gfx);
        EXPECT_THAT(call({push, pop}), ElementsAre(0, 1, 0, 1, 0)) << "what was off stays off";
    }
}

TEST(Blending, KeepsAModeAndAnAlphaAndUsesItsStage) {
    constexpr std::tuple<int, int, int> kRows[] = {
        // mode, the mode and the alpha that are kept, with 200 before
        {1, 1, 80},   {-1, 1, 80},  {2, 2, 255},   {3, 3, 255},   {4, 4, 255},   {5, 5, 255},
        {6, 6, 255},  {7, 7, 80},   {9, 9, 255},   {10, 7, 62},   {11, 11, 255}, {12, 12, 80},
        {13, 13, 80}, {17, 17, 80}, {14, 14, 200}, {15, 15, 200}, {16, 16, 200}};
    for (const auto& [mode, kept_mode, kept_alpha] : kRows) {
        RecordedGfx gfx;
        gfx->SetBlendingMode(3, 9, 0);
        gfx->SetBlendingMode(1, 200, 0);
        gfx.recording.ForgetCalls();
        gfx->SetBlendingMode(mode, 80, 2);
        EXPECT_EQ(gfx->BlendingMode(), kept_mode);
        EXPECT_EQ(gfx->BlendingAlpha(), kept_alpha) << mode;
        if (kept_mode == 1) {
            EXPECT_THAT(gfx.recording.Calls(), IsEmpty());
            continue;
        }
        std::set<DWORD> stages;
        for (const auto& call : gfx.recording.ArgumentsOf("SetTextureStageState")) stages.insert(call[0]);
        EXPECT_THAT(stages, mode == 14 ? testing::IsSubsetOf({3u}) : testing::IsSubsetOf({2u, 3u})) << mode;
        EXPECT_THAT(gfx.recording.Sent(3, D3DTSS_ALPHAOP), Each(DWORD{D3DTOP_DISABLE}));
        EXPECT_THAT(gfx.recording.Sent(3, D3DTSS_COLOROP), Each(DWORD{D3DTOP_DISABLE}));
    }
}

TEST(Points, TheLargestSizeIsLimited) {
    constexpr std::tuple<float, float, bool, float> kRows[] = {
        {256, 100, false, 64}, {32, 50, false, 32}, {256, 100, true, 100}, {80, 100, true, 80}};
    for (const auto& [device, wanted, device_limit, sent] : kRows) {
        RecordedGfx gfx([limit = device](Recording& recording) { recording.caps.MaxPointSize = limit; });
        Reports reports;
        PointSpriteSettings settings = kScaledPoints;
        settings.max_size = wanted;
        for (int i = 0; i < 2; ++i) gfx->SetPointSprite(settings, device_limit);
        EXPECT_THAT(gfx.recording.Sent(D3DRS_POINTSIZE_MAX), ElementsAre(Bits(sent)));
        EXPECT_EQ(reports.All().size(), sent < wanted ? 1u : 0u) << "once: nothing is new the second time";
    }
}

TEST(Fog, OfVerticesEndsThatOfPixelsWhichWouldGoBefore) {
    RecordedGfx gfx;
    for (const bool vertices : {false, true}) gfx->SetFog({0xFF204060, D3DFOG_EXP2, vertices, 12, 345, 0.3f});
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGTABLEMODE), ElementsAre(2, 0));
    EXPECT_EQ(HeldValue(*gfx->Device(), Render(D3DRS_RANGEFOGENABLE, 1)), 1u);
    EXPECT_EQ(gfx->Fog().end, 345.0f) << "kept all the same";
}

TEST(Lighting, ALockedMaterialIsOnlyKept) {
    RecordedGfx gfx;
    D3DMATERIAL9 material = {};
    for (const int lock : {0, 1}) {
        gfx.recording.ForgetCalls();
        material.Power = static_cast<float>(7 + lock);
        gfx->LockMaterial(lock, true);
        gfx->SetMaterial(material);
        EXPECT_EQ(gfx.recording.Count("SetMaterial"), 0);
        EXPECT_EQ(gfx->Material(), material);
        gfx->EndLightingOverride();
        EXPECT_EQ(gfx.recording.Count("SetMaterial"), 1) << "the device catches up";
    }
}

TEST(Lights, EnablingIsSentOnceAndAgainAfterAResetOrARefusal) {
    RecordedGfx gfx;
    for (int i = 0; i < 2; ++i) gfx->SetLightEnable(5, true);
    gfx->ResetDevice(nullptr, -1);
    gfx.recording.Fail("LightEnable", D3DERR_INVALIDCALL);
    EXPECT_EQ(ErrorOf([&] { gfx->SetLightEnable(2, true); }), "KRN_Gfx:  LightEnable failed: D3DERR_INVALIDCALL");
    gfx->SetLightEnable(2, true);
    const std::vector<DWORD> five = {5, 1}, two = {2, 1};
    EXPECT_THAT(gfx.recording.ArgumentsOf("LightEnable"), ElementsAre(five, five, two, two));
}

TEST(Lights, TakeTheNodesPlaceAtTheTime) {
    RecordedGfx gfx;
    KRN_Light light;
    EXPECT_EQ(gfx->SetLight(3, light, 0, false), 0);
    EXPECT_EQ(gfx.recording.Count("SetLight"), 0) << "it is off";
    light.off = false;
    light.record.Type = D3DLIGHT_SPOT;
    light.Tracks().position.Add(2, KeyInterpolation::Linear, {{4, 6, 8}, {}, {}});
    light.Tracks().position.Add(6, KeyInterpolation::Linear, {{8, 14, -4}, {}, {}});
    KRN_RotKeyData turn;   // a sixth about x: what looked down looks forwards
    turn.rotation = {0.5f, 0, 0, 0.8660254f};
    light.Tracks().rotation.Add(3, KeyInterpolation::Linear, turn);
    light.RebuildLookupTables();
    const std::tuple<double, bool, D3DXVECTOR3> kRows[] = {
        {3, true, {5, 8, 5}}, {5, false, {5, 8, 5}}, {5, true, {7, 12, -1}}, {5, true, {7, 12, -1}}};
    for (const auto& [time, evaluate, position] : kRows) {
        EXPECT_EQ(gfx->SetLight(3, light, time, evaluate), 1);
        D3DLIGHT9 sent = {};
        gfx->Device()->GetLight(3, &sent);
        EXPECT_EQ(sent.Type, D3DLIGHT_SPOT);
        ExpectNear(sent.Position, position);
        ExpectNear(sent.Direction, {0, 0.8660254f, -0.5f});
    }
}

TEST(Gamma, NeedsTheDevice) {
    D3DGAMMARAMP ramp = {};
    ramp.red[1] = 77;
    RecordedGfx gfx, calibrating([](Recording&recording) { recording.caps.Caps2 |= D3DCAPS2_CANCALIBRATEGAMMA; }),
        without([](Recording&recording) { recording.caps.Caps2 = 0; });
    EXPECT_TRUE(gfx->SetGammaRamp(&ramp, false));
    EXPECT_FALSE(gfx->SetGammaRamp(nullptr, true)) << "no calibration";
    EXPECT_THAT(gfx.recording.ArgumentsOf("SetGammaRamp"),
                ElementsAre(ElementsAre(0, D3DSGR_NO_CALIBRATION, 77, 0, 0),
                            ElementsAre(0, D3DSGR_NO_CALIBRATION, 257, 257, 65535)));
    EXPECT_TRUE(calibrating->SetGammaRamp(&ramp, true));
    EXPECT_EQ(calibrating.recording.ArgumentsOf("SetGammaRamp").at(0)[1], D3DSGR_CALIBRATE);
    EXPECT_TRUE(without->SetGammaRamp(&ramp, false));
    EXPECT_EQ(without.recording.Count("SetGammaRamp"), 0);
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
    EXPECT_EQ(gfx.Matrix(D3DTS_VIEW), view);
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
    EXPECT_EQ(gfx.Matrix(D3DTS_PROJECTION), expected);
    gfx->SetMirroredProjection();
    EXPECT_EQ(gfx->ProjectionMatrix().m[0][0], -expected.m[0][0]);
    EXPECT_EQ(gfx->CullingMode(), 1) << "turned over with it";
}

TEST(Transforms, AProjectionIsScaledToUnitDepth) {
    RecordedGfx gfx;
    gfx->SetTransform(D3DTS_PROJECTION, {{{2, 0, 0, 0}, {0, 6, 0, 0}, {0, 0, 3, 4}, {0, 0, -8, 0}}});
    const D3DXMATRIX expected = {{{0.5f, 0, 0, 0}, {0, 1.5f, 0, 0}, {0, 0, 0.75f, 1}, {0, 0, -2, 0}}};
    EXPECT_EQ(gfx->ProjectionMatrix(), expected);
    EXPECT_EQ(gfx.Matrix(D3DTS_PROJECTION), expected);
}

TEST(Transforms, WorldAndOthersGoToTheDevice) {
    RecordedGfx gfx;
    D3DXMATRIX world;
    D3DXMatrixTranslation(&world, 3, 5, 7);
    for (const D3DTRANSFORMSTATETYPE kind : {D3DTS_WORLD, D3DTS_WORLDMATRIX(4), D3DTS_TEXTUREn(2)}) {
        gfx->SetTransform(kind, world);
        EXPECT_EQ(gfx.Matrix(kind), world);
    }
    EXPECT_EQ(gfx->WorldMatrix(), world);
    for (int i = 0; i < 2; ++i) {
        gfx->ResetWorldTransform();
        EXPECT_EQ(gfx.Matrix(D3DTS_WORLD), kIdentityMatrix);
        EXPECT_EQ(gfx.recording.Count("SetTransform"), 4) << "the device holds it the second time";
    }
    gfx.recording.Fail("SetTransform", E_FAIL);
    for (const char* error : {"KRN_Gfx: SetTransform failed: E_FAIL", "no error"})
        EXPECT_EQ(ErrorOf([&] { gfx->SetTransform(D3DTS_WORLD, world); }), error);
    EXPECT_EQ(gfx.Matrix(D3DTS_WORLD), world);
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
