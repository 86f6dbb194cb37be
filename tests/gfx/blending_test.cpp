#include "gfx/states/blending.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kStage = 2, kAlpha = 0x50;
constexpr DWORD kNone = 0xFFFF;

/// The last value sent to a state of the stage, kNone when there was none.
DWORD Last(const RecordedGfx& gfx, DWORD stage, D3DTEXTURESTAGESTATETYPE type) {
    const std::vector<DWORD> sent = gfx.recording.Sent(stage, type);
    return sent.empty() ? kNone : sent.back();
}

TEST(Blending, EveryModeSendsItsRow) {
    // clang-format off
    constexpr struct {
        int mode, kept_mode, kept_alpha;   // with 200 kept before
        DWORD alpha_op, alpha_1, alpha_2, colour_op, colour_1, colour_2, factor, source, destination;
    } kRows[] = {
        {  2,  2, 255, 2, 2, kNone, kNone, kNone, kNone, kNone,      2,  4},
        {  3,  3, 255, 4, 2, 0,     kNone, kNone, kNone, kNone,      5,  2},
        {  4,  4, 255, 2, 2, kNone, kNone, kNone, kNone, kNone,      10, 4},
        {  5,  5, 255, 4, 2, 0,     kNone, kNone, kNone, kNone,      1,  4},
        {  6,  6, 255, 2, 2, kNone, kNone, kNone, kNone, kNone,      1,  3},
        {  7,  7, 80,  4, 3, 2,     kNone, kNone, kNone, 0x50123456, 5,  6},
        {  9,  9, 255, 4, 2, 0,     kNone, kNone, kNone, 0x50123456, 5,  6},
        { 10,  7, 62,  4, 3, 2,     kNone, kNone, kNone, 0x3E123456, 5,  6},
        { 11, 11, 255, 2, 2, kNone, kNone, kNone, kNone, kNone,      1,  4},
        { 12, 12, 80,  4, 3, 2,     4,     2,     0,     0x50123456, 5,  2},
        { 13, 13, 80,  2, 3, kNone, kNone, kNone, kNone, 0x50123456, 5,  6},
        { 14, 14, 200, kNone, kNone, kNone, kNone, kNone, kNone, kNone, 1, 2},
        { 15, 15, 200, 2, 3, kNone, 2,     2,     kNone, 0x50123456, 2,  1},
        { 16, 16, 200, 2, 3, kNone, 2,     2,     kNone, 0x00000050, 2,  2},
        { 17, 17, 80,  4, 3, 2,     kNone, kNone, kNone, 0x50123456, 1,  4},
    };
    // clang-format on
    for (const auto& row : kRows) {
        SCOPED_TRACE(row.mode);
        RecordedGfx gfx;
        gfx->SetTextureFactor(0xFF123456);
        gfx->SetBlendingMode(1, 200, kStage);
        gfx.recording.ForgetCalls();
        EXPECT_EQ(gfx->SetBlendingMode(row.mode, kAlpha, kStage), 1);
        EXPECT_EQ(gfx->BlendingMode(), row.kept_mode);
        EXPECT_EQ(gfx->BlendingAlpha(), row.kept_alpha);
        EXPECT_THAT(gfx.recording.Sent(D3DRS_ALPHABLENDENABLE), ElementsAre(1));
        EXPECT_EQ(Last(gfx, kStage, D3DTSS_ALPHAOP), row.alpha_op);
        EXPECT_EQ(Last(gfx, kStage, D3DTSS_ALPHAARG1), row.alpha_1);
        EXPECT_EQ(Last(gfx, kStage, D3DTSS_ALPHAARG2), row.alpha_2);
        EXPECT_EQ(Last(gfx, kStage, D3DTSS_COLOROP), row.colour_op);
        EXPECT_EQ(Last(gfx, kStage, D3DTSS_COLORARG1), row.colour_1);
        EXPECT_EQ(Last(gfx, kStage, D3DTSS_COLORARG2), row.colour_2);
        const std::vector<DWORD> factor = gfx.recording.Sent(D3DRS_TEXTUREFACTOR);
        EXPECT_EQ(factor.empty() ? kNone : factor.back(), row.factor);
        EXPECT_THAT(gfx.recording.Sent(D3DRS_SRCBLEND), ElementsAre(row.source));
        EXPECT_THAT(gfx.recording.Sent(D3DRS_DESTBLEND), ElementsAre(row.destination));
        EXPECT_EQ(Last(gfx, kStage + 1, D3DTSS_ALPHAOP), DWORD{D3DTOP_DISABLE});
        EXPECT_EQ(Last(gfx, kStage + 1, D3DTSS_COLOROP), row.mode == 12 ? DWORD{D3DTOP_DISABLE} : kNone);
    }
}

TEST(Blending, NoneSwitchesOffAndDoesNothingElse) {
    for (const int mode : {1, -1}) {
        RecordedGfx gfx;
        gfx->SetBlendingMode(3, 9, 0);
        gfx.recording.ForgetCalls();
        gfx->SetBlendingMode(mode, 77, 0);
        EXPECT_THAT(gfx.recording.ArgumentsOf("SetRenderState"), ElementsAre(ElementsAre(D3DRS_ALPHABLENDENABLE, 0)));
        EXPECT_EQ(gfx.recording.Calls().size(), 1u);
        EXPECT_EQ(gfx->BlendingMode(), 1);
        EXPECT_EQ(gfx->BlendingAlpha(), 77);
    }
}

TEST(Blending, SoftwareProcessingLeavesTheColourOfMode12) {
    RecordedGfx gfx([](Recording& recording) { recording.caps.DevCaps = 0; });
    gfx->SetBlendingMode(12, 80, kStage);
    EXPECT_THAT(gfx.recording.Sent(kStage, D3DTSS_COLOROP), IsEmpty());
}

TEST(Blending, UnknownModesAreErrors) {
    RecordedGfx gfx;
    for (const int mode : {0, 8, 18, -2}) {
        EXPECT_EQ(ErrorOf([&] { gfx->SetBlendingMode(mode, 80, 0); }), "KRN_Gfx: Invalid Blending mode selected!");
    }
    for (const int stage : {-1, 7}) {
        EXPECT_EQ(ErrorOf([&] { gfx->SetBlendingMode(3, 80, stage); }),
                  "KRN_Gfx: Invalid stage: " + std::to_string(stage));
    }
}

TEST(RenderSource, SetsTheColourOfItsStage) {
    const std::tuple<int, D3DCOLOR, DWORD, DWORD> kRows[] = {{-1, 0, D3DTOP_MODULATE, D3DTA_DIFFUSE},
                                                             {3, 0x12345678, D3DTOP_SELECTARG2, D3DTA_TFACTOR},
                                                             {2, 0x99999999, D3DTOP_SELECTARG2, D3DTA_DIFFUSE}};
    RecordedGfx gfx;
    for (const auto& [source, colour, operation, argument] : kRows) {
        gfx->SetRenderSource(source, 3, colour);
        EXPECT_EQ(Last(gfx, 3, D3DTSS_COLOROP), operation) << source;
        EXPECT_EQ(Last(gfx, 3, D3DTSS_COLORARG2), argument) << source;
    }
    EXPECT_EQ(Last(gfx, 3, D3DTSS_COLORARG1), D3DTA_TEXTURE);
    EXPECT_THAT(gfx.recording.Sent(D3DRS_TEXTUREFACTOR), ElementsAre(0x12345678));
    EXPECT_EQ(ErrorOf([&] { gfx->SetRenderSource(2, 8, 0); }), "KRN_Gfx: Invalid stage: 8");
    EXPECT_EQ(ErrorOf([&] { gfx->SetRenderSource(4, 0, 0); }), "KRN_Gfx: Invalid render source selected");
}

}   // namespace
}   // namespace sparkrig
