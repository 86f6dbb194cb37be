// Culling, depth, filters, points, fog, lighting, alpha test, gamma: what is sent, and what is not sent again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>

#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

DWORD Bits(float value) { return std::bit_cast<DWORD>(value); }

TEST(States, AreSentOnceAndAgainAfterAReset) {
    struct Row {
        const char* name;
        D3DRENDERSTATETYPE state;
        void (*set)(KRN_Gfx&);
        DWORD value;
    };
    const Row kRows[] = {
        {"culling", D3DRS_CULLMODE, [](KRN_Gfx& gfx) { gfx.SetCullingMode(1); }, D3DCULL_CW},
        {"z-write", D3DRS_ZWRITEENABLE, [](KRN_Gfx& gfx) { gfx.SetZWrite(false); }, 0},
        {"lighting", D3DRS_LIGHTING, [](KRN_Gfx& gfx) { gfx.SetLighting(false, nullptr); }, 0},
        {"specular", D3DRS_SPECULARENABLE, [](KRN_Gfx& gfx) { gfx.SetSpecular(true); }, 1},
        {"normals", D3DRS_NORMALIZENORMALS, [](KRN_Gfx& gfx) { gfx.SetNormalizeNormals(false); }, 0},
        {"blending", D3DRS_ALPHABLENDENABLE, [](KRN_Gfx& gfx) { gfx.SetBlendingMode(14, 9, 0); }, 1},
        {"alpha test", D3DRS_ALPHATESTENABLE, [](KRN_Gfx& gfx) { gfx.SetAlphaTest(7, 99); }, 7},
    };
    for (const Row& row : kRows) {
        RecordedGfx gfx;
        row.set(*gfx);
        row.set(*gfx);
        gfx->ResetDevice(nullptr, -1);
        EXPECT_THAT(gfx.recording.Sent(row.state), ElementsAre(row.value, row.value)) << row.name;
    }
}

TEST(States, ARefusedOneIsTriedAgain) {
    RecordedGfx gfx;
    gfx.recording.Fail("SetRenderState", D3DERR_INVALIDCALL);
    EXPECT_EQ(ErrorOf([&] { gfx->SetCullingMode(1); }),
              "KRN_Gfx:  SetRenderState (state 22, value: 2 failed: D3DERR_INVALIDCALL");
    gfx->SetCullingMode(1);
    EXPECT_THAT(gfx.recording.Sent(D3DRS_CULLMODE), ElementsAre(D3DCULL_CW, D3DCULL_CW));
}

TEST(Culling, NamesTheDevicesModes) {
    RecordedGfx gfx;
    for (const int mode : {0, 1, -1}) gfx->SetCullingMode(mode);
    EXPECT_THAT(gfx.recording.Sent(D3DRS_CULLMODE), ElementsAre(D3DCULL_NONE, D3DCULL_CW, D3DCULL_CCW));
    EXPECT_EQ(ErrorOf([&] { gfx->SetCullingMode(2); }), "KRN_Gfx: Invalid culling mode");
    EXPECT_EQ(gfx->CullingMode(), -1);
}

TEST(Depth, TheWBufferNeedsTheDevice) {
    RecordedGfx gfx;
    gfx->SetZBufferMode(0);
    gfx->SetZBufferMode(2);
    EXPECT_THAT(gfx.recording.Sent(D3DRS_ZENABLE), ElementsAre(0, 1));
    EXPECT_EQ(gfx->ZBufferMode(), 1);
    RecordedGfx other([](Recording& recording) { recording.caps.RasterCaps |= D3DPRASTERCAPS_WBUFFER; });
    other->SetZBufferMode(2);
    EXPECT_THAT(other.recording.Sent(D3DRS_ZENABLE), ElementsAre(2));
}

TEST(Depth, OffNests) {
    RecordedGfx gfx;
    gfx->PushZBufferOff();
    gfx->PushZBufferOff();
    gfx->PopZBufferOff();
    EXPECT_THAT(gfx.recording.Sent(D3DRS_ZENABLE), ElementsAre(0));
    gfx->PopZBufferOff();
    EXPECT_THAT(gfx.recording.Sent(D3DRS_ZENABLE), ElementsAre(0, 1));
    gfx->PopZBufferOff();
    gfx->PushZBufferOff();
    EXPECT_THAT(gfx.recording.Sent(D3DRS_ZENABLE), ElementsAre(0, 1, 0)) << "a pop too many is forgiven";

    RecordedGfx off;
    off->SetZBufferMode(0);
    off->PushZBufferOff();
    off->PopZBufferOff();
    EXPECT_THAT(off.recording.Sent(D3DRS_ZENABLE), ElementsAre(0)) << "what was off stays off";
}

TEST(Filters, Presets) {
    constexpr std::tuple<int, D3DSAMPLERSTATETYPE, DWORD> kRows[] = {
        {2, D3DSAMP_MAGFILTER, 1}, {1, D3DSAMP_MAGFILTER, 2}, {6, D3DSAMP_MAGFILTER, 3},
        {4, D3DSAMP_MINFILTER, 1}, {3, D3DSAMP_MINFILTER, 2}, {5, D3DSAMP_MINFILTER, 3},
        {8, D3DSAMP_ADDRESSU, 3},  {9, D3DSAMP_ADDRESSV, 2},  {7, D3DSAMP_ADDRESSU, 1},
    };
    RecordedGfx gfx;
    for (const auto& [preset, type, value] : kRows) {
        EXPECT_EQ(gfx->SetTextureFilter(preset, 1), 1);
        const std::vector<DWORD> sent = gfx.recording.Sent(1, type);
        ASSERT_FALSE(sent.empty()) << preset;
        EXPECT_EQ(sent.back(), value) << preset;
        EXPECT_EQ(gfx->SetTextureFilter(preset, 1), 1);
        EXPECT_EQ(gfx.recording.Sent(1, type).size(), sent.size()) << "sent once";
    }
    gfx.recording.ForgetCalls();
    EXPECT_EQ(gfx->SetTextureFilter(-1, 1), 1);
    EXPECT_EQ(gfx->SetTextureFilter(0, 1), 0);
    EXPECT_EQ(gfx->SetTextureFilter(10, 1), 0);
    EXPECT_THAT(gfx.recording.Calls(), IsEmpty());
    EXPECT_EQ(ErrorOf([&] { gfx->SetTextureFilter(1, 8); }), "KRN_Gfx: Invalid stage: 8");
}

TEST(Filters, AddressModesAreCachedUnlessRefused) {
    RecordedGfx gfx;
    EXPECT_EQ(gfx->SetAddressModeU(D3DTADDRESS_MIRROR, 1), 1);
    EXPECT_EQ(gfx->SetAddressModeU(D3DTADDRESS_MIRROR, 1), 1);
    gfx.recording.Fail("SetSamplerState", D3DERR_INVALIDCALL);
    EXPECT_EQ(gfx->SetAddressModeU(D3DTADDRESS_CLAMP, 1), 0);
    EXPECT_EQ(gfx->SetAddressModeU(D3DTADDRESS_MIRROR, 1), 1);
    EXPECT_THAT(gfx.recording.Sent(1, D3DSAMP_ADDRESSU), ElementsAre(2, 3)) << "the cache still says mirror";
}

TEST(Filters, Mipmaps) {
    RecordedGfx gfx;
    EXPECT_EQ(gfx->SetMipmapMode(1, -0.5f, 2), 1);
    EXPECT_THAT(gfx.recording.Sent(2, D3DSAMP_MIPFILTER), ElementsAre(1));
    EXPECT_THAT(gfx.recording.Sent(2, D3DSAMP_MIPMAPLODBIAS), ElementsAre(Bits(-0.5f)));
    EXPECT_EQ(gfx->MipmapMode(), 1);
    EXPECT_EQ(gfx->MipmapBias(), -0.5f);
    EXPECT_EQ(ErrorOf([&] { gfx->SetMipmapMode(3, 0, 0); }), "KRN_Gfx: Wrong mipmap mode!");

    RecordedGfx without([](Recording& recording) { recording.caps.TextureCaps = 0; });
    EXPECT_EQ(without->SetMipmapMode(1, 2.5f, 0), 0);
    EXPECT_THAT(without.recording.Calls(), IsEmpty());
    EXPECT_EQ(without->MipmapBias(), 2.5f) << "kept all the same";
}

PointSpriteSettings ScaledPoints() {
    PointSpriteSettings settings;
    settings.sprites = settings.scaling = true;
    settings.size = 7;
    settings.min_size = 3;
    settings.max_size = 50;
    settings.scale_a = 0.25f;
    settings.scale_b = 0.75f;
    settings.scale_c = 0.125f;
    return settings;
}

TEST(Points, SendWhatDiffers) {
    RecordedGfx gfx;
    for (int i = 0; i < 2; ++i) gfx->SetPointSprite(ScaledPoints(), false);
    const std::pair<D3DRENDERSTATETYPE, DWORD> kRows[] = {
        {D3DRS_POINTSPRITEENABLE, 1},      {D3DRS_POINTSCALEENABLE, 1},       {D3DRS_POINTSIZE, Bits(7)},
        {D3DRS_POINTSIZE_MIN, Bits(3)},    {D3DRS_POINTSIZE_MAX, Bits(50)},   {D3DRS_POINTSCALE_A, Bits(0.25f)},
        {D3DRS_POINTSCALE_B, Bits(0.75f)}, {D3DRS_POINTSCALE_C, Bits(0.125f)}};
    for (const auto& [state, value] : kRows) EXPECT_THAT(gfx.recording.Sent(state), ElementsAre(value)) << state;

    RecordedGfx unscaled;
    PointSpriteSettings settings = ScaledPoints();
    settings.scaling = false;
    settings.max_size = 1000;
    unscaled->SetPointSprite(settings, false);
    EXPECT_THAT(unscaled.recording.Sent(D3DRS_POINTSIZE_MAX), IsEmpty());
    EXPECT_THAT(unscaled.recording.Sent(D3DRS_POINTSIZE), ElementsAre(Bits(7)));
}

TEST(Points, TheLargestSizeIsLimited) {
    constexpr std::tuple<float, float, bool, float> kRows[] = {
        {256, 100, false, 64}, {32, 50, false, 32}, {256, 100, true, 100}, {80, 100, true, 80}};
    for (const auto& [device, wanted, device_limit, sent] : kRows) {
        RecordedGfx gfx([limit = device](Recording& recording) { recording.caps.MaxPointSize = limit; });
        Reports reports;
        PointSpriteSettings settings = ScaledPoints();
        settings.max_size = wanted;
        gfx->SetPointSprite(settings, device_limit);
        EXPECT_THAT(gfx.recording.Sent(D3DRS_POINTSIZE_MAX), ElementsAre(Bits(sent)));
        char warning[100];
        std::snprintf(warning, sizeof warning, "warning KRN_Gfx: Point size max adjusted from %f to %f",
                      static_cast<double>(wanted), static_cast<double>(sent));
        EXPECT_EQ(reports.Last(), sent < wanted ? warning : "");
        reports.Clear();
        gfx->SetPointSprite(settings, device_limit);
        EXPECT_EQ(reports.Last(), "");   // nothing new
    }
}

TEST(Points, FillModePointAppliesTheKeptSettings) {
    RecordedGfx gfx;
    const PointSpriteSettings settings = ScaledPoints();
    gfx->SetFillMode(2, &settings);
    EXPECT_THAT(gfx.recording.Sent(D3DRS_POINTSIZE), IsEmpty());
    gfx->SetFillMode(1, nullptr);
    EXPECT_THAT(gfx.recording.Sent(D3DRS_POINTSIZE), ElementsAre(Bits(7)));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FILLMODE), ElementsAre(2, 1));
}

TEST(Fog, SendsWhatItsModeNeeds) {
    RecordedGfx gfx;
    gfx->SetFog({0xFF204060, D3DFOG_LINEAR, true, 12.0f, 345.0f, 0.3f});
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGCOLOR), ElementsAre(0xFF204060));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGVERTEXMODE), ElementsAre(3));
    DWORD range = 0;
    gfx->Device()->GetRenderState(D3DRS_RANGEFOGENABLE, &range);
    EXPECT_EQ(range, 1u);
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGSTART), ElementsAre(Bits(12)));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGEND), ElementsAre(Bits(345)));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGDENSITY), IsEmpty());
    gfx.recording.ForgetCalls();
    gfx->SetFog({0xFF204060, D3DFOG_EXP2, false, 12.0f, 345.0f, 0.3f});
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGTABLEMODE), ElementsAre(2));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_RANGEFOGENABLE), IsEmpty());
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGDENSITY), ElementsAre(Bits(0.3f)));
    EXPECT_EQ(gfx->Fog().end, 345.0f) << "kept all the same";
    gfx->SetFog({0xFF204060, D3DFOG_EXP2, true, 12.0f, 345.0f, 0.3f});
    EXPECT_THAT(gfx.recording.Sent(D3DRS_FOGTABLEMODE), ElementsAre(2, 0)) << "which would go before the vertices' fog";
    gfx->SetFogEnable(true);
    EXPECT_TRUE(gfx->FogEnable());
}

TEST(Lighting, OffNestsAndComesBackOnlyWhenAskedFor) {
    RecordedGfx gfx;
    gfx->PushLightingOff();
    gfx->PushLightingOff();
    gfx->PopLightingOff();
    gfx->PopLightingOff();
    EXPECT_THAT(gfx.recording.Sent(D3DRS_LIGHTING), ElementsAre(0, 1));
    gfx->SetLighting(false, nullptr);
    gfx->PushLightingOff();
    gfx->PopLightingOff();
    EXPECT_THAT(gfx.recording.Sent(D3DRS_LIGHTING), ElementsAre(0, 1, 0));
}

TEST(Lighting, AColourStandsInWhileItIsOff) {
    RecordedGfx gfx;
    const D3DCOLOR colour = 0xFF336699;
    gfx->SetLighting(true, &colour);
    EXPECT_THAT(gfx.recording.Sent(D3DRS_AMBIENT), ElementsAre(colour)) << "while it is on it is the ambient light";
    gfx->SetTexture(nullptr, -1);
    gfx->SetLighting(false, &colour);
    gfx->SetTexture(nullptr, -1);
    gfx->EndLightingOverride();
    gfx->SetTexture(nullptr, -1);
    EXPECT_THAT(gfx.recording.Sent(0, D3DTSS_COLORARG2), ElementsAre(D3DTA_TFACTOR, D3DTA_DIFFUSE));
    EXPECT_THAT(gfx.recording.Sent(D3DRS_TEXTUREFACTOR), ElementsAre(colour));
    EXPECT_FALSE(gfx->Lighting());
}

TEST(Lighting, ALockedMaterialIsOnlyKept) {
    RecordedGfx gfx;
    D3DMATERIAL9 material = {};
    material.Ambient = {0.25f, 0.5f, 0.75f, 1};
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

TEST(AlphaTest, SendsItsPairOnce) {
    constexpr std::tuple<int, DWORD> kRows[] = {{1, D3DCMP_GREATER}, {255, D3DCMP_EQUAL}};
    for (const auto& [mode, function] : kRows) {
        RecordedGfx gfx;
        gfx->SetAlphaTest(mode, 0x30);
        gfx->SetAlphaTest(mode, 0x30);
        EXPECT_THAT(gfx.recording.Sent(D3DRS_ALPHATESTENABLE), ElementsAre(static_cast<DWORD>(mode)));
        EXPECT_THAT(gfx.recording.Sent(D3DRS_ALPHAFUNC), ElementsAre(function));
        EXPECT_THAT(gfx.recording.Sent(D3DRS_ALPHAREF), ElementsAre(0x30));
        gfx->SetAlphaTest(mode, 0x31);
        EXPECT_THAT(gfx.recording.Sent(D3DRS_ALPHAREF), ElementsAre(0x30, 0x31));
        gfx->SetAlphaTest(0, 0x31);
        EXPECT_EQ(gfx.recording.Sent(D3DRS_ALPHAREF).size(), 2u);
    }
}

TEST(Gamma, NeedsTheDevice) {
    D3DGAMMARAMP ramp = {};
    ramp.red[1] = 77;
    RecordedGfx gfx;
    EXPECT_TRUE(gfx->SetGammaRamp(&ramp, false));
    EXPECT_EQ(gfx.recording.Calls().back().arguments, (std::vector<DWORD>{0, D3DSGR_NO_CALIBRATION, 77, 0, 0}));
    EXPECT_FALSE(gfx->SetGammaRamp(nullptr, true)) << "no calibration";
    EXPECT_EQ(gfx.recording.Calls().back().arguments, (std::vector<DWORD>{0, D3DSGR_NO_CALIBRATION, 257, 257, 65535}));

    RecordedGfx calibrating([](Recording& recording) { recording.caps.Caps2 |= D3DCAPS2_CANCALIBRATEGAMMA; });
    EXPECT_TRUE(calibrating->SetGammaRamp(&ramp, true));
    EXPECT_EQ(calibrating.recording.Calls().back().arguments[1], D3DSGR_CALIBRATE);

    RecordedGfx without([](Recording& recording) { recording.caps.Caps2 = 0; });
    EXPECT_TRUE(without->SetGammaRamp(&ramp, false));
    EXPECT_EQ(without.recording.Count("SetGammaRamp"), 0);
}

}   // namespace
}   // namespace sparkrig
