// The stages of textures; the rules that need no device: formats, frames, matrices, the order of layers; then pixels,
// levels and layers of textures and surfaces.
#include <cmath>

#include "gfx/device/pixel_codec.h"
#include "gfx/device/surface.h"
#include "gfx/gfx.h"
#include "gfx/textures/stage_recipes.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/texture_format.h"
#include "gfx/textures/texture_sequence.h"
#include "gfx/textures/texture_stages.h"
#include "scene/texture_matrix.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

class TextureStagesTest : public testing::Test {
  protected:
    TextureStagesTest() { Create(0, MapKind::Diffuse); }

    void Create(int layer, MapKind kind, float amount = 1) {
        texture_.SelectLayer(layer, false);
        gfx_->CreateTexture(&texture_, 4, 4, 4, -1, 1);
        texture_.SetStageMap(layer, kind, amount);
        texture_.SelectLayer(0, false);
    }
    DWORD State(DWORD stage, D3DTEXTURESTAGESTATETYPE type) {
        DWORD value = 0;
        gfx_->Device()->GetTextureStageState(stage, type, &value);
        return value;
    }
    std::vector<DWORD> Colour(DWORD stage) {
        return {State(stage, D3DTSS_COLOROP), State(stage, D3DTSS_COLORARG1), State(stage, D3DTSS_COLORARG2)};
    }

    RecordedGfx gfx_;
    KRN_Texture texture_;
};

TEST_F(TextureStagesTest, IsBoundOnlyWhenItChangesOrWasRefused) {
    gfx_.recording.Fail("SetTexture", D3DERR_INVALIDCALL);
    EXPECT_EQ(ErrorOf([&] { gfx_->SetTexture(&texture_, -1); }), "KRN_Gfx: SetTexture failed: D3DERR_INVALIDCALL");
    EXPECT_EQ(ErrorOf([&] { gfx_->SetTexture(&texture_, 8); }), "KRN_Gfx: Invalid stage: 8");
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(gfx_.Bound(0), texture_.DeviceTexture());
    gfx_.recording.ForgetCalls();
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(gfx_.recording.Count("SetTexture"), 0);
    gfx_->ResetDevice(nullptr, -1);
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(gfx_.Bound(0), texture_.DeviceTexture());
}

TEST_F(TextureStagesTest, LayersMixByTheirKind) {
    // clang-format off
    const std::tuple<const char*, MapKind, MapKind, std::vector<DWORD>, std::vector<DWORD>> kRows[] = {
        {"diffuse", MapKind::Diffuse, MapKind::None,
         {D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_DIFFUSE}, {D3DTOP_DISABLE}},
        {"two add up", MapKind::Reflection, MapKind::Diffuse,
         {D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_DIFFUSE}, {D3DTOP_ADD, D3DTA_CURRENT, D3DTA_TEXTURE}},
        {"a bump moves the next", MapKind::Bump, MapKind::Light,
         {D3DTOP_BUMPENVMAP, D3DTA_TEXTURE, D3DTA_CURRENT}, {D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_CURRENT}},
        {"detail, decal", MapKind::Detail, MapKind::Decal,
         {D3DTOP_MODULATE2X, D3DTA_TEXTURE, D3DTA_DIFFUSE}, {D3DTOP_BLENDTEXTUREALPHA, D3DTA_TEXTURE, D3DTA_CURRENT}},
    };
    // clang-format on
    Create(1, MapKind::None);
    for (const auto& [name, first, second, first_colour, second_colour] : kRows) {
        texture_.SetStageMap(0, first, first == MapKind::Bump ? 0.25f : 0.5f);
        texture_.SetStageMap(1, second, 1);
        gfx_->SetTexture(&texture_, -1);
        EXPECT_EQ(Colour(0), first_colour) << name;
        EXPECT_EQ(State(1, D3DTSS_COLOROP), second_colour[0]) << name;
        const bool disabled = second == MapKind::None;   // the arguments do not count
        EXPECT_EQ(disabled ? second_colour : Colour(1), second_colour) << name;
        // The first diffuse layer's stage carries the alpha of the blending mode.
        const bool behind = second == MapKind::Diffuse;
        EXPECT_EQ(State(0, D3DTSS_ALPHAARG1), behind ? DWORD{D3DTA_DIFFUSE} : DWORD{D3DTA_TEXTURE}) << name;
        EXPECT_EQ(State(1, D3DTSS_ALPHAOP), behind ? DWORD{D3DTOP_SELECTARG1} : DWORD{D3DTOP_DISABLE}) << name;
        EXPECT_EQ(State(2, D3DTSS_COLOROP), DWORD{D3DTOP_DISABLE}) << name;
    }
    const std::pair<D3DTEXTURESTAGESTATETYPE, float> kBump[] = {
        {D3DTSS_BUMPENVMAT00, 0.25f}, {D3DTSS_BUMPENVMAT01, 0}, {D3DTSS_BUMPENVMAT10, 0}, {D3DTSS_BUMPENVMAT11, 0.25f}};
    for (const auto& [element, amount] : kBump) EXPECT_EQ(State(0, element), std::bit_cast<DWORD>(amount)) << element;
    texture_.SetStageMap(0, MapKind::Diffuse, 1);
    texture_.SetStageMap(1, MapKind::Reflection, 1);
    EXPECT_EQ(ErrorOf([&] { gfx_->SetTexture(&texture_, -1); }), "KRN_Gfx: Reflection map in stage other than zero!");
}

TEST_F(TextureStagesTest, NoTextureUnbindsAndShowsTheDiffuseColour) {
    Create(1, MapKind::Diffuse);
    gfx_->SetTexture(&texture_, -1);
    ASSERT_TRUE(gfx_.Bound(1));
    gfx_->SetTexture(nullptr, 1);
    EXPECT_FALSE(gfx_.Bound(1));
    EXPECT_TRUE(gfx_.Bound(0));
    KRN_Texture empty;
    gfx_->SetTexture(&empty, -1);
    EXPECT_FALSE(gfx_.Bound(0));
    EXPECT_EQ(State(0, D3DTSS_COLOROP), D3DTOP_SELECTARG2);
    EXPECT_EQ(State(0, D3DTSS_COLORARG2), D3DTA_DIFFUSE);
    EXPECT_EQ(State(0, D3DTSS_ALPHAOP), D3DTOP_SELECTARG1);
    EXPECT_EQ(State(0, D3DTSS_ALPHAARG1), D3DTA_DIFFUSE);
    EXPECT_EQ(State(1, D3DTSS_COLOROP), D3DTOP_DISABLE);
}

TEST_F(TextureStagesTest, TheColourOfUnlitDrawingStandsInForTheDiffuseOne) {
    const D3DCOLOR colour = 0x00123456;
    gfx_->SetLighting(true, &colour);
    EXPECT_THAT(gfx_.recording.Sent(D3DRS_AMBIENT), ElementsAre(colour))
        << "while lighting is on it is the ambient light";
    gfx_->SetBlendingMode(7, 0x90, 0);
    gfx_->SetLighting(false, &colour);
    for (KRN_Texture* texture : {&texture_, static_cast<KRN_Texture*>(nullptr)}) {
        gfx_->SetTexture(texture, -1);
        EXPECT_EQ(State(0, D3DTSS_COLORARG2), D3DTA_TFACTOR);
        DWORD factor = 0;
        gfx_->Device()->GetRenderState(D3DRS_TEXTUREFACTOR, &factor);
        EXPECT_EQ(factor, 0x90123456);
    }
    gfx_->EndLightingOverride();
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(State(0, D3DTSS_COLORARG2), D3DTA_DIFFUSE);
    EXPECT_FALSE(gfx_->Lighting());
    gfx_->SetLighting(true, nullptr);
    for (const auto& [source, argument] : {std::pair{2, D3DTA_DIFFUSE}, {3, D3DTA_TFACTOR}}) {
        gfx_->SetRenderSource(source, 0, 0xFF102030);
        gfx_->SetTexture(&texture_, -1);
        EXPECT_THAT(Colour(0), ElementsAre(D3DTOP_SELECTARG2, D3DTA_TEXTURE, argument)) << "the texture is left out";
    }
}

TEST_F(TextureStagesTest, OnlyTheStagesInUseAreSet) {
    Create(1, MapKind::Light);
    Create(2, MapKind::Decal);
    gfx_->SetTexture(&texture_, -1);
    EXPECT_FALSE(gfx_.Bound(2));
    gfx_->SetStagesInUse(3);
    gfx_->SetTexture(&texture_, -1);
    EXPECT_TRUE(gfx_.Bound(2));
    EXPECT_EQ(State(2, D3DTSS_COLOROP), D3DTOP_BLENDTEXTUREALPHA);
}

TEST_F(TextureStagesTest, AStageByItsNumberGetsItsLayerOrTheTextureInUse) {
    gfx_->SetTexture(&texture_, 0);
    gfx_->SetTexture(&texture_, 1);
    EXPECT_EQ(gfx_.Bound(1), texture_.DeviceTexture());
    Create(1, MapKind::Light);
    texture_.SelectLayer(1, true);
    EXPECT_EQ(gfx_.Bound(1), texture_.LayerTexture(1));
    EXPECT_NE(gfx_.Bound(1), gfx_.Bound(0));
}

TEST_F(TextureStagesTest, ALayersMatrixFollowsItsTracks) {
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(State(0, D3DTSS_TEXTURETRANSFORMFLAGS), D3DTTFF_DISABLE);
    KRN_TextMatrixAni animation;
    animation.constants = {0.25f, 0.5f, 2, 3, 0.75f};
    animation.offset_v.AddKey({.time = 2, .value = {0.125f}, .in = {0.5f}, .out = {0.375f}});
    animation.offset_v.AddKey({.time = 4, .value = {0.625f}, .in = {-0.25f}, .out = {0.875f}});
    animation.angle_w.SetMode(CurveMode::Linear);
    animation.angle_w.SetLoop(true, 4);
    animation.angle_w.AddKey(1, {0.25f});
    animation.angle_w.AddKey(3, {1.25f});
    texture_.SetLayerAnimation(0, animation);
    texture_.SetLayerAnimation(1, animation);   // has no picture
    const D3DXMATRIX at_start = texture_.LayerMatrix(1);
    const std::tuple<float, float, float> rows[] = {
        {0, 0.125f, 0.25f}, {2, 0.125f, 1.25f}, {3, 0.390625f, 0.25f}, {9.5f, 0.625f, 0.5f}};
    for (const auto& [t, offset_v, angle_w] : rows) {
        texture_.Update(t);
        gfx_->SetTexture(&texture_, -1);
        EXPECT_EQ(State(0, D3DTSS_TEXTURETRANSFORMFLAGS), D3DTTFF_COUNT2);
        EXPECT_EQ(gfx_.Matrix(D3DTS_TEXTURE0), BuildTextureMatrix({0.25f, offset_v, 2, 3, angle_w})) << t;
    }
    EXPECT_EQ(texture_.LayerMatrix(1), at_start);
    texture_.SetLayerMatrix(0, {0.25f, 0.5f, 2, 3, 0.75f});
    texture_.Update(3);
    EXPECT_EQ(texture_.LayerMatrix(0), BuildTextureMatrix({0.25f, 0.5f, 2, 3, 0.75f})) << "no tracks any more";
    texture_.SetLayerMatrix(0, {});
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(State(0, D3DTSS_TEXTURETRANSFORMFLAGS), D3DTTFF_DISABLE);
}

TEST_F(TextureStagesTest, TheTexturesFlagSwitchesTheAlphaTest) {
    gfx_->SetAlphaTest(0, 77);
    gfx_.recording.ForgetCalls();
    const auto set = [&](bool flag) {
        texture_.SetAlphaTest(flag);
        gfx_->SetTexture(&texture_, -1);
    };
    set(true);
    EXPECT_THAT(gfx_.recording.Sent(D3DRS_ALPHAREF), ElementsAre(77u));
    set(false);
    gfx_->SetAlphaTest(255, 78);
    set(false);
    set(true);
    EXPECT_THAT(gfx_.recording.Sent(D3DRS_ALPHATESTENABLE), ElementsAre(1u, 0u, 255u, 0u, 255u)) << "as it was";
}

TEST_F(TextureStagesTest, TheBlendingModeIsSetAgainWithTheAlphaThatItWasGiven) {
    constexpr std::tuple<int, int, D3DCOLOR> kRows[] = {{16, 64, 64}, {13, 90, 90u << 24}, {10, 128, 45u << 24}};
    gfx_->SetTextureFactor(0);
    for (const auto& [mode, alpha, factor] : kRows) {
        gfx_->SetBlendingMode(mode, alpha, 0);
        gfx_->SetTexture(&texture_, -1);
        EXPECT_EQ(gfx_.recording.Sent(D3DRS_TEXTUREFACTOR).back(), factor) << mode;
        gfx_->SetTextureFactor(0);
    }
}

TEST(TextureFormat, PowersOfTwo) {
    constexpr std::pair<UINT, UINT> kRows[] = {
        {0, 0}, {1, 1}, {2, 2}, {3, 4}, {300, 512}, {0x80000000, 0x80000000}, {0x80000001, 0}};
    for (const auto& [value, rounded] : kRows) {
        EXPECT_EQ(RoundUpToPowerOfTwo(value), rounded) << value;
        EXPECT_EQ(IsPowerOfTwo(value), value == rounded) << value;
    }
}

TEST(TextureFormat, IsChosenFromImageDisplayAndCompression) {
    constexpr D3DFORMAT k32 = D3DFMT_X8R8G8B8, k16 = D3DFMT_R5G6B5;   // displays
    // clang-format off
    const std::tuple<const char*, FormatQuestion, D3DFORMAT> rows[] = {
        {"kept on 32 bits",           {D3DFMT_X8R8G8B8, 256,   256,   k32, false, 65536}, D3DFMT_UNKNOWN},
        {"16-bit display",            {D3DFMT_X8R8G8B8, 256,   256,   k16, false, 65536}, D3DFMT_R5G6B5 },
        {"alpha on a 16-bit display", {D3DFMT_A8R8G8B8, 256,   256,   k16, false, 65536}, D3DFMT_UNKNOWN},
        {"555",                       {D3DFMT_X1R5G5B5, 4,     4,     k32, false, 65536}, D3DFMT_R5G6B5 },
        {"below the threshold",       {D3DFMT_A8R8G8B8, 256,   128,   k32, true,  65536}, D3DFMT_UNKNOWN},
        {"rounded to the threshold",  {D3DFMT_A8R8G8B8, 300,   100,   k32, true,  65536}, D3DFMT_DXT5   },
        {"1555",                      {D3DFMT_A1R5G5B5, 256,   256,   k32, true,  65536}, D3DFMT_DXT5   },
        {"4444",                      {D3DFMT_A4R4G4B4, 256,   256,   k32, true,  65536}, D3DFMT_DXT5   },
        {"compressed already",        {D3DFMT_DXT3,     256,   256,   k32, true,  65536}, D3DFMT_DXT3   },
        {"others, wide",              {D3DFMT_X8R8G8B8, 65536, 65536, k32, true,  65536}, D3DFMT_DXT1   },
    };
    // clang-format on
    for (const auto& [name, question, chosen] : rows) EXPECT_EQ(ChooseTextureFormat(question), chosen) << name;
}

TEST(PixelCodec, PacksAndUnpacks) {
    constexpr D3DCOLOR kColour = 0x93B5D7E9;
    // clang-format off
    const std::tuple<D3DFORMAT, int, DWORD, DWORD, D3DCOLOR> rows[] = {
        {D3DFMT_R8G8B8, 3, kColour, 0x12345678, 0x12345678},
        {D3DFMT_A8R8G8B8, 4, kColour, 0x12345678, 0x12345678},
        {D3DFMT_X8R8G8B8, 4, kColour, 0x12345678, 0x12345678},
        {D3DFMT_R5G6B5, 2, 0xB6BD, 0xABCD, 0xFFA87868},
        {D3DFMT_A1R5G5B5, 2, 0xDB5D, 0xABCD, 0xFF50F068},
        {D3DFMT_A1R5G5B5, 2, 0xDB5D, 0x2BCD, 0x0050F068},
        {D3DFMT_A4R4G4B4, 2, 0x9BDE, 0xABCD, 0xA0B0C0D0},
        {D3DFMT_A8, 1, 0x93, 0x6E, 0x6E000000},
        {D3DFMT_L8, 1, 0xD1, 0x6E, 0xFF6E6E6E},
        {D3DFMT_A8L8, 2, 0x93D1, 0xABCD, 0xABCDCDCD},
        {D3DFMT_D16, 2, kColour, 0xABCD, 0xABCD},
        {D3DFMT_DXT1, 0, kColour, 0xABCD, 0xABCD},
        {D3DFMT_DXT5, 0, kColour, 0xABCD, 0xABCD},
    };
    // clang-format on
    for (const auto& [format, bytes, packed, stored, unpacked] : rows) {
        const PixelCodec* codec = FindPixelCodec(format);
        ASSERT_TRUE(codec) << format;
        EXPECT_EQ(codec->bytes, bytes) << format;
        EXPECT_EQ(codec->pack(kColour), packed) << format;
        EXPECT_EQ(codec->unpack(stored), unpacked) << format;
    }
    for (const D3DFORMAT format : {D3DFMT_UNKNOWN, D3DFMT_X1R5G5B5, D3DFMT_P8, D3DFMT_V8U8, D3DFMT_D24S8})
        EXPECT_FALSE(FindPixelCodec(format)) << format;
}

TEST(PixelCodec, EverySixteenBitValueComesBack) {
    for (const D3DFORMAT format : {D3DFMT_R5G6B5, D3DFMT_A1R5G5B5, D3DFMT_A4R4G4B4, D3DFMT_A8L8, D3DFMT_D16}) {
        const PixelCodec& codec = *FindPixelCodec(format);
        for (DWORD value = 0; value < 65536; ++value) ASSERT_EQ(codec.pack(codec.unpack(value)), value) << format;
    }
}

TEST(TextureSequence, ShowsTheFrameOfTheTime) {
    constexpr float kStart = 2.0f, kDuration = 0.1f;
    const std::tuple<PlaybackMode, int, float, int> rows[] = {
        {PlaybackMode::Loop, 4, 0.05f, 0},      {PlaybackMode::Loop, 4, 0.35f, 3},
        {PlaybackMode::Loop, 4, 0.45f, 0},      {PlaybackMode::Loop, 4, -0.05f, 3},
        {PlaybackMode::Loop, 4, -0.45f, 3},     {PlaybackMode::Once, 4, -0.05f, 0},
        {PlaybackMode::Once, 4, 0.25f, 2},      {PlaybackMode::Once, 4, 9.0f, 3},
        {PlaybackMode::PingPong, 1, 0.55f, 0},  {PlaybackMode::PingPong, 4, 0.05f, 0},
        {PlaybackMode::PingPong, 4, 0.35f, 3},  {PlaybackMode::PingPong, 4, 0.45f, 3},
        {PlaybackMode::PingPong, 4, 0.75f, 0},  {PlaybackMode::PingPong, 4, 0.85f, 0},
        {PlaybackMode::PingPong, 4, -0.05f, 0}, {PlaybackMode::PingPong, 4, -0.35f, 3},
    };
    for (const auto& [mode, frames, since, frame] : rows)
        EXPECT_EQ(FrameAt({kStart, kDuration, mode}, frames, kStart + since), frame)
            << static_cast<int>(mode) << " " << frames << " " << since;
    for (const PlaybackMode mode : {PlaybackMode::Loop, PlaybackMode::PingPong, PlaybackMode::Once})
        for (const float duration : {0.0f, -1.0f, 1e-38f, 1e38f, NAN, INFINITY})
            for (const float t : {0.0f, -1e38f, 1e38f, NAN, INFINITY}) {
                const int frame = FrameAt({0, duration, mode}, 3, t);
                EXPECT_TRUE(frame >= 0 && frame < 3) << duration << " " << t;
            }
}

TEST(TextureMatrix, MovesTilesAndTurnsAboutTheMiddle) {
    // clang-format off
    const std::tuple<const char*, TextureMatrixValues, float, float, float, float> rows[] = {
        {"nothing", {}, 0.25f, 0.75f, 0.25f, 0.75f},
        {"tiling", {0, 0, 2, 3, 0}, 0.75f, 0.75f, 1.0f, 1.25f},
        {"offset, turned, tiled", {0.1f, 0.2f, 2, 1, 1.5707963f}, 0.75f, 0.5f, 0.9f, 0.35f},
    };
    // clang-format on
    for (const auto& [name, values, u, v, to_u, to_v] : rows) {
        const D3DXMATRIX m = BuildTextureMatrix(values);
        EXPECT_NEAR(u * m.m[0][0] + v * m.m[1][0] + m.m[2][0], to_u, 1e-6) << name;
        EXPECT_NEAR(u * m.m[0][1] + v * m.m[1][1] + m.m[2][1], to_v, 1e-6) << name;
    }
    EXPECT_EQ(BuildTextureMatrix({}), kIdentityMatrix);
}

TEST(StageRecipes, KindsStandWhereTheyMay) {
    constexpr char kReflection[] = "Reflection map in stage other than zero!";
    constexpr char kDiffuse[] = "More than one diffuse map requires a diffuse map at stage 0";
    const std::tuple<MapKind, int, MapKind, const char*> rows[] = {
        {MapKind::Diffuse, 0, MapKind::Diffuse, nullptr},
        {MapKind::Diffuse, 1, MapKind::Diffuse, nullptr},
        {MapKind::Diffuse, 1, MapKind::Reflection, nullptr},
        {MapKind::Diffuse, 1, MapKind::SphereReflection, nullptr},
        {MapKind::Diffuse, 1, MapKind::Bump, kDiffuse},
        {MapKind::Diffuse, 2, MapKind::None, kDiffuse},
        {MapKind::Reflection, 0, MapKind::Reflection, nullptr},
        {MapKind::Reflection, 1, MapKind::Diffuse, kReflection},
        {MapKind::Bump, 2, MapKind::Diffuse, nullptr},
        {MapKind::None, 1, MapKind::None, nullptr},
        {static_cast<MapKind>(77), 1, MapKind::None, nullptr},
    };
    for (const auto& [kind, stage, first, error] : rows) EXPECT_STREQ(WhyNotAtStage(kind, stage, first), error);
    EXPECT_EQ(RecipeOf(static_cast<MapKind>(77), 1, 1).operation, DWORD{D3DTOP_DISABLE});
}

class TextureSurface : public testing::Test {
  protected:
    void Create(UINT width, UINT height, D3DFORMAT format, int mode = 4, int levels = 1) {
        gfx_->CreateTexture(&texture_, width, height, mode, static_cast<int>(format), levels);
    }
    /// Does it while the texture is locked.
    template <class Action>
    void Locked(Action action) {
        texture_.Lock(nullptr, 0);
        action();
        texture_.Unlock();
    }

    RecordedGfx gfx_;
    KRN_Texture texture_;
};

TEST_F(TextureSurface, ReadsAndWritesPixelsOfTheLockedRectangle) {
    const std::pair<int, int> inside[] = {{2, 1}, {5, 4}}, outside[] = {{6, 4}, {1, 3}, {3, 5}, {4, 0}};
    for (const auto& [format, read] : {std::pair(D3DFMT_A8R8G8B8, 0xA1B2C3D4), {D3DFMT_A4R4G4B4, 0xA0B0C0D0}}) {
        Create(8, 6, format);
        const RECT rectangle = {2, 1, 6, 5};
        texture_.Lock(&rectangle, 0);
        for (const auto& [x, y] : inside) texture_.SetPixel(x, y, 0xA1B2C3D4);
        for (const auto& [x, y] : outside) texture_.SetPixel(x, y, 0xA1B2C3D4);
        for (const auto& [x, y] : outside) EXPECT_EQ(texture_.GetPixel(x, y), 0u) << format;
        texture_.Unlock();
        EXPECT_EQ(texture_.GetPixel(2, 1), 0u) << "without a lock";
        texture_.Lock(nullptr, 0);
        for (const auto& [x, y] : inside) EXPECT_EQ(texture_.GetPixel(x, y), read) << format;
        for (const auto& [x, y] : outside) EXPECT_NE(texture_.GetPixel(x, y), read) << format;
        texture_.Unlock();
    }
}

TEST_F(TextureSurface, LocksTheChosenLevel) {
    Create(12, 4, D3DFMT_A8R8G8B8, 4, 0);
    texture_.SetMipLevel(2);
    EXPECT_EQ(texture_.GetSize().x, 3);
    EXPECT_EQ(texture_.GetSize().y, 1);
    Locked([&] {
        texture_.SetPixel(2, 0, 0xFF102030);
        EXPECT_EQ(texture_.GetPixel(2, 0), 0xFF102030);
        EXPECT_EQ(texture_.GetPixel(3, 0), 0u);
    });
    texture_.SetMipLevel(3);
    EXPECT_EQ(texture_.GetSize().x, 1);
}

TEST_F(TextureSurface, ReportsWhatIsRefused) {
    EXPECT_EQ(ErrorOf([&] { texture_.Lock(nullptr, 0); }), "KRN_Texture: LockRect failed: D3DERR_INVALIDCALL");
    EXPECT_EQ(ErrorOf([&] { texture_.Unlock(); }), "KRN_Texture: UnlockRect failed: D3DERR_INVALIDCALL");
    Create(4, 4, D3DFMT_X1R5G5B5);
    EXPECT_EQ(ErrorOf([&] { texture_.GetSurfaceLevel(1); }), "KRN_Texture: GetSurfaceLevel failed: D3DERR_INVALIDCALL");
    Locked(
        [&] { EXPECT_EQ(ErrorOf([&] { texture_.GetPixel(1, 1); }), "KRN_Texture: Unsupported pixel format! (24)"); });
}

TEST_F(TextureSurface, Clears) {
    const RECT part = {1, 0, 3, 2};
    Create(4, 4, D3DFMT_A8R8G8B8);
    texture_.Clear(0xFF123456, nullptr);
    Locked([&] { EXPECT_EQ(texture_.GetPixel(3, 3), 0xFF123456); });
    EXPECT_EQ(ErrorOf([&] { texture_.Clear(0, &part); }),
              "KRN_Texture: Clear: rec only valid for D3DPOOL_DEFAULT surfaces");
    Create(4, 4, D3DFMT_A8R8G8B8, 3);
    texture_.Clear(0xFF123456, &part);
    EXPECT_EQ(gfx_.recording.Count("ColorFill"), 1);
    gfx_.recording.Fail("ColorFill", D3DERR_INVALIDCALL);
    EXPECT_EQ(ErrorOf([&] { texture_.Clear(0, nullptr); }), "KRN_Texture: ColorFill failed: D3DERR_INVALIDCALL");
}

TEST_F(TextureSurface, ReadsSinglePixelsOfCompressedBlocks) {
    // The colour half of the second block of the second row of blocks: red and blue, rows of the indices 0, 1, 2, 3.
    // The ends stand in the order of a three-colour block, which is read as four colours all the same.
    const BYTE colours[8] = {0x1F, 0x00, 0x00, 0xF8, 0xE4, 0xE4, 0xE4, 0xE4};
    for (const D3DFORMAT format : {D3DFMT_DXT1, D3DFMT_DXT5}) {
        Create(8, 8, format);
        Locked([&] {
            BYTE* block = static_cast<BYTE*>(texture_.Locked().pBits) + texture_.Locked().Pitch;
            block += format == D3DFMT_DXT1 ? 8 : 16;
            if (format == D3DFMT_DXT5) block[0] = 0x7B;
            std::copy_n(colours, 8, format == D3DFMT_DXT1 ? block : block + 8);
            const D3DCOLOR alpha = format == D3DFMT_DXT5 ? 0x7B000000 : 0xFF000000;
            const D3DCOLOR expected[] = {0x0000F8, 0xF80000, 0x5300A5, 0xA50053};
            D3DCOLOR colour = 0;
            for (int x = 0; x < 4; ++x) {
                EXPECT_TRUE(texture_.GetCompressedPix(4 + x, 6, colour));
                EXPECT_EQ(colour, alpha | expected[x]) << x;
            }
            EXPECT_FALSE(texture_.GetCompressedPix(8, 6, colour));
            EXPECT_EQ(colour, alpha | expected[3]) << "untouched";
        });
    }
    for (const D3DFORMAT format : {D3DFMT_DXT2, D3DFMT_DXT3, D3DFMT_DXT4}) {
        Create(8, 8, format);
        Locked([&] {
            D3DCOLOR colour;
            EXPECT_EQ(ErrorOf([&] { texture_.GetCompressedPix(1, 1, colour); }),
                      "KRN_Texture: Unsupported texture compression format for GetCompressedPix()");
        });
    }
}

TEST_F(TextureSurface, FindsPartialAlphaInItsSamples) {
    const std::tuple<const char*, D3DFORMAT, UINT, UINT, int, int, bool> rows[] = {
        // 4 samples an axis; of 8 pixels every second one from the first on, of 10 from 1 on.
        {"on a sample", D3DFMT_A8R8G8B8, 8, 8, 3, 5, true},  {"beside the samples", D3DFMT_A8R8G8B8, 8, 8, 2, 5, false},
        {"with a rest", D3DFMT_A8R8G8B8, 10, 8, 7, 1, true}, {"4444", D3DFMT_A4R4G4B4, 8, 8, 3, 3, true},
        {"small", D3DFMT_A8R8G8B8, 3, 2, 2, 1, true},        {"without alpha", D3DFMT_X8R8G8B8, 8, 8, 3, 3, false},
        {"another format", D3DFMT_A8L8, 8, 8, 3, 3, false},  {"many samples", D3DFMT_A8R8G8B8, 2048, 4, 16, 0, true},
    };
    for (const auto& [name, format, width, height, x, y, found] : rows) {
        Create(width, height, format);
        // 15 of 15 in four bits reads as 240, which counts as partial.
        texture_.Clear(format == D3DFMT_A4R4G4B4 ? 0 : x % 2 ? 0xFF000000 : 0x00FFFFFF, nullptr);
        texture_.AnalyseAlpha();
        EXPECT_FALSE(texture_.HasPartialAlpha()) << name;
        Locked([&, x = x, y = y] { texture_.SetPixel(x, y, 0x80000000); });
        texture_.AnalyseAlpha();
        EXPECT_EQ(texture_.HasPartialAlpha(), found) << name;
    }
}

TEST_F(TextureSurface, LayersAreChosenWithinBounds) {
    for (const int layer : {4, -1})
        EXPECT_EQ(ErrorOf([&] { texture_.SelectLayer(layer, false); }),
                  "KRN_Texture: Invalid texture stage selected: " + std::to_string(layer));
    EXPECT_EQ(ErrorOf([&] { texture_.SetStageMap(4, MapKind::Bump, 1); }), "KRN_Texture: Invalid texture stage: 4");
    Create(8, 4, D3DFMT_A8R8G8B8);
    texture_.SelectLayer(2, false);
    EXPECT_FALSE(texture_.HasSurface());
    Create(16, 4, D3DFMT_A8R8G8B8);
    EXPECT_EQ(texture_.Width(), 16.0f);
    texture_.SelectLayer(0, false);
    EXPECT_EQ(texture_.Width(), 8.0f);
}

TEST_F(TextureSurface, ASurfaceDoesTheSame) {
    Create(5, 3, D3DFMT_A8R8G8B8);
    KRN_Surface surface;
    EXPECT_FALSE(surface.HasSurface());
    EXPECT_EQ(ErrorOf([&] { surface.Lock(nullptr, 0); }), "KRN_Surface: LockRect failed: D3DERR_INVALIDCALL");
    surface.Wrap(texture_.GetSurfaceLevel(0).Get());
    RECT rectangle;
    surface.GetRect(rectangle);
    EXPECT_EQ(rectangle, (RECT{0, 0, 5, 3}));
    surface.Clear(*gfx_->Device(), 0xFF0A0B0C, nullptr);
    surface.Lock(nullptr, 0);
    EXPECT_EQ(surface.GetPixel(4, 2), 0xFF0A0B0C);
    surface.Unlock();
    EXPECT_EQ(ErrorOf([&] { surface.Clear(*gfx_->Device(), 0, &rectangle); }),
              "KRN_Surface: Clear: rec only valid for D3DPOOL_DEFAULT surfaces");
    surface.Wrap(nullptr);
    EXPECT_FALSE(surface.HasSurface());
}

}   // namespace
}   // namespace sparkrig
