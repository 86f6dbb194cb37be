#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scene/light.h"
#include "tests/scene/near.h"
#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

TEST(Lights, EnablingIsSentOnce) {
    RecordedGfx gfx;
    for (int i = 0; i < 2; ++i) gfx->SetLightEnable(5, true);
    EXPECT_EQ(gfx.recording.Count("LightEnable"), 1);
    EXPECT_EQ(gfx.recording.Calls().back().arguments, (std::vector<DWORD>{5, 1}));
    gfx->ResetDevice(nullptr, -1);
    EXPECT_EQ(gfx.recording.Count("LightEnable"), 2);
    for (const int index : {8, -1}) {
        EXPECT_EQ(ErrorOf([&] { gfx->SetLightEnable(index, true); }), "KRN_Gfx: Light index >7");
    }
    gfx.recording.Fail("LightEnable", D3DERR_INVALIDCALL);
    EXPECT_EQ(ErrorOf([&] { gfx->SetLightEnable(2, true); }), "KRN_Gfx:  LightEnable failed: D3DERR_INVALIDCALL");
    gfx->SetLightEnable(2, true);
    EXPECT_EQ(gfx.recording.Count("LightEnable"), 4) << "the refused call is tried again";
}

TEST(Lights, TheRecordTakesTheNodesPlace) {
    RecordedGfx gfx;
    KRN_Light light;
    EXPECT_EQ(gfx->SetLight(3, light, 0, false), 0);
    EXPECT_EQ(gfx.recording.Count("SetLight"), 0) << "it is off";
    light.off = false;
    light.record.Type = D3DLIGHT_SPOT;
    light.record.Diffuse = {0.5f, 0.25f, 0.75f, 1};
    light.SetPosition(3, 5, 7, true);
    EXPECT_EQ(gfx->SetLight(3, light, 0, true), 1);
    D3DLIGHT9 sent = {};
    gfx->Device()->GetLight(3, &sent);
    EXPECT_EQ(sent.Type, D3DLIGHT_SPOT);
    EXPECT_EQ(sent.Position, (D3DVECTOR{3, 5, 7}));
    EXPECT_EQ(sent.Direction, (D3DVECTOR{0, 0, -1})) << "down its own z axis";

    light.SetEye(4, 6, 8, false);
    light.SetViewDirection(0, 3, 4, false);
    gfx->SetLight(3, light, 0, false);
    gfx->Device()->GetLight(3, &sent);
    EXPECT_EQ(sent.Position, (D3DVECTOR{4, 6, 8}));
    ExpectNear(sent.Direction, {0, 0.6f, 0.8f});
}

TEST(Lights, EvaluatingMovesALightAlongItsTracks) {
    RecordedGfx gfx;
    KRN_Light light;
    light.off = false;
    light.record.Type = D3DLIGHT_POINT;
    light.Tracks().position.Add(2, KeyInterpolation::Linear, {{4, 6, 8}, {}, {}});
    light.Tracks().position.Add(6, KeyInterpolation::Linear, {{8, 14, -4}, {}, {}});
    KRN_RotKeyData turn;   // a sixth about x: what looked down looks forwards
    turn.rotation = {0.5f, 0, 0, 0.8660254f};
    light.Tracks().rotation.Add(3, KeyInterpolation::Linear, turn);
    light.RebuildLookupTables();
    const std::tuple<double, bool, D3DXVECTOR3> rows[] = {
        {3, true, {5, 8, 5}}, {5, false, {5, 8, 5}}, {5, true, {7, 12, -1}}, {5, true, {7, 12, -1}}};
    for (const auto& [time, evaluate, position] : rows) {
        gfx->SetLight(3, light, time, evaluate);
        D3DLIGHT9 sent = {};
        gfx->Device()->GetLight(3, &sent);
        ExpectNear(sent.Position, position);
        ExpectNear(sent.Direction, {0, 0.8660254f, -0.5f});
    }
}

}   // namespace
}   // namespace sparkrig
