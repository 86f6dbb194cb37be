#include "gfx/textures/texture_stages.h"

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
    IDirect3DTexture9* Bound(DWORD stage) {
        DevicePtr<IDirect3DTexture9> texture;
        gfx_->Device()->GetTexture(stage, texture.Receive());
        return texture.Get();   // the device holds it
    }
    D3DXMATRIX SentMatrix() {
        D3DXMATRIX matrix;
        gfx_->Device()->GetTransform(D3DTS_TEXTURE0, &matrix);
        return matrix;
    }

    RecordedGfx gfx_;
    KRN_Texture texture_;
};

TEST_F(TextureStagesTest, IsBoundOnlyWhenItChangesOrWasRefused) {
    gfx_.recording.Fail("SetTexture", D3DERR_INVALIDCALL);
    EXPECT_EQ(ErrorOf([&] { gfx_->SetTexture(&texture_, -1); }), "KRN_Gfx: SetTexture failed: D3DERR_INVALIDCALL");
    EXPECT_EQ(ErrorOf([&] { gfx_->SetTexture(&texture_, 8); }), "KRN_Gfx: Invalid stage: 8");
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(Bound(0), texture_.DeviceTexture());
    gfx_.recording.ForgetCalls();
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(gfx_.recording.Count("SetTexture"), 0);
    gfx_->ResetDevice(nullptr, -1);
    gfx_->SetTexture(&texture_, -1);
    EXPECT_EQ(Bound(0), texture_.DeviceTexture());
}

TEST_F(TextureStagesTest, LayersMixByTheirKind) {
    // clang-format off
    const struct { const char* name; MapKind first, second; std::vector<DWORD> first_colour, second_colour; } kRows[] = {
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
    for (const auto& row : kRows) {
        texture_.SetStageMap(0, row.first, row.first == MapKind::Bump ? 0.25f : 0.5f);
        texture_.SetStageMap(1, row.second, 1);
        gfx_->SetTexture(&texture_, -1);
        EXPECT_EQ(Colour(0), row.first_colour) << row.name;
        EXPECT_EQ(State(1, D3DTSS_COLOROP), row.second_colour[0]) << row.name;
        const bool disabled = row.second == MapKind::None;   // the arguments do not count
        EXPECT_EQ(disabled ? row.second_colour : Colour(1), row.second_colour) << row.name;
        // The first diffuse layer's stage carries the alpha of the blending mode.
        const bool behind = row.second == MapKind::Diffuse;
        EXPECT_EQ(State(0, D3DTSS_ALPHAARG1), behind ? DWORD{D3DTA_DIFFUSE} : DWORD{D3DTA_TEXTURE}) << row.name;
        EXPECT_EQ(State(1, D3DTSS_ALPHAOP), behind ? DWORD{D3DTOP_SELECTARG1} : DWORD{D3DTOP_DISABLE}) << row.name;
        EXPECT_EQ(State(2, D3DTSS_COLOROP), DWORD{D3DTOP_DISABLE}) << row.name;
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
    ASSERT_TRUE(Bound(1));
    gfx_->SetTexture(nullptr, 1);
    EXPECT_FALSE(Bound(1));
    EXPECT_TRUE(Bound(0));
    KRN_Texture empty;
    gfx_->SetTexture(&empty, -1);
    EXPECT_FALSE(Bound(0));
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
    EXPECT_FALSE(Bound(2));
    gfx_->SetStagesInUse(3);
    gfx_->SetTexture(&texture_, -1);
    EXPECT_TRUE(Bound(2));
    EXPECT_EQ(State(2, D3DTSS_COLOROP), D3DTOP_BLENDTEXTUREALPHA);
}

TEST_F(TextureStagesTest, AStageByItsNumberGetsItsLayerOrTheTextureInUse) {
    gfx_->SetTexture(&texture_, 0);
    gfx_->SetTexture(&texture_, 1);
    EXPECT_EQ(Bound(1), texture_.DeviceTexture());
    Create(1, MapKind::Light);
    texture_.SelectLayer(1, true);
    EXPECT_EQ(Bound(1), texture_.LayerTexture(1));
    EXPECT_NE(Bound(1), Bound(0));
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
        EXPECT_EQ(SentMatrix(), BuildTextureMatrix({0.25f, offset_v, 2, 3, angle_w})) << t;
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

}   // namespace
}   // namespace sparkrig
