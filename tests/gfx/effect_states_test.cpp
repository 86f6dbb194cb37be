// What is set while shader effects are begun stands when they have ended, whatever they changed and however they ended.

#include <random>

#include "gfx/gfx.h"
#include "gfx/shaders/shader_effect_passes.h"
#include "gfx/textures/texture.h"
#include "platform/d3dx/d3dx_math.h"
#include "scene/light.h"
#include "tests/support/held_states.h"
#include "tests/support/recorded_gfx.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

const std::string kStates =
    "AlphaBlendEnable = TRUE; SrcBlend = ONE; ZEnable = FALSE; ZWriteEnable = FALSE;"
    "Lighting = FALSE; SpecularEnable = TRUE; FogEnable = TRUE; FogColor = 0x00112233; TextureFactor = 0x01020304;"
    "AlphaTestEnable = TRUE; AlphaRef = 9; Ambient = 0x00445566; PointSize = 5; MaterialPower = 3;"
    "MaterialDiffuse = {1, 0.5, 0.25, 1}; ColorOp[0] = ADD; AlphaOp[0] = ADD; ColorOp[1] = MODULATE;"
    "MinFilter[0] = POINT; AddressU[0] = CLAMP; Texture[0] = NULL; LightType[2] = POINT; LightEnable[2] = TRUE;"
    "LightEnable[1] = FALSE; WorldTransform[0] = <World>;";

const std::string kMatrix = "float4x4 World = {2,0,0,0, 0,2,0,0, 0,0,2,0, 0,0,0,1};";

/// Two devices that are told the same; one of them also draws with effects.
class EffectStates : public TemporaryFolder {
  protected:
    struct Side {
        RecordedGfx gfx;
        KRN_Texture textures[2];
        KRN_Light light;
        KRN_VertexListTemp<KRN_LVertex> list;
        Side() {
            for (KRN_Texture& texture : textures) gfx->CreateTexture(&texture, 4, 4, 4, -1, 1);
            gfx->CreateVertexList(&list, 3, 0, false);
            light.off = false;
            light.record.Type = D3DLIGHT_POINT;
            gfx->BeginScene();
        }
        ~Side() { gfx->EndScene(); }
    };

    EffectStates() {
        constexpr const char* kOwn[2][3] = {{"", "CW", "SRCALPHA"},
                                            {"< string RenderTarget = \"ScreenBuffer1\"; >", "NONE", "INVSRCALPHA"}};
        for (int i = 0; const auto& [target, culling, blend] : kOwn) {
            const std::string name = std::to_string(i) + ".fx";
            std::string text = kMatrix + "technique { pass " + target + " { CullMode = ";
            text += std::string(culling) + "; DestBlend = " + blend + ";" + kStates + " } pass { } }";
            WriteFile(name, text);
            with_.gfx->LoadShaderEffect(effects_[i++], name.c_str(), true, 0, false);
        }
    }

    /// Tells both devices one thing, chosen by `what`, with the value `n`.
    void Set(unsigned what, unsigned n) {
        for (Side* side : {&with_, &without_}) SetOn(*side, what, n);
    }
    static void SetOn(Side& side, unsigned what, unsigned n) {
        KRN_Gfx& gfx = *side.gfx;
        const int small = static_cast<int>(n % 3);
        const bool on = n % 2 != 0;
        const D3DCOLOR colour = n * 0x010305u;
        D3DMATERIAL9 material = {};
        material.Power = side.light.record.Range = static_cast<float>(small);
        D3DXMATRIX matrix;
        D3DXMatrixScaling(&matrix, static_cast<float>(1 + small), 1, 1);
        switch (what) {
            case 0: gfx.SetCullingMode(small - 1); break;
            case 1: gfx.SetBlendingMode(small == 0 ? 1 : small == 1 ? 7 : 3, 100 + small, 0); break;
            case 2: gfx.SetZBufferMode(on); break;
            case 3: gfx.SetZWrite(on); break;
            case 4: gfx.SetLighting(on, nullptr); break;
            case 5: gfx.SetSpecular(on); break;
            case 6: gfx.SetFogEnable(on); break;
            case 7: gfx.SetFog({.colour = colour, .mode = 1 + n % 3, .vertex_fog = on}); break;
            case 8: gfx.SetAlphaTest(small, 8 + small); break;
            case 9: gfx.SetAmbient(colour); break;
            case 10: gfx.SetMaterial(material); break;
            case 11: gfx.SetTransform(on ? D3DTS_WORLD : D3DTS_VIEW, matrix); break;
            case 12: gfx.SetTexture(small == 2 ? nullptr : &side.textures[small], -1); break;
            case 13: gfx.SetTextureFilter(1 + static_cast<int>(n % 9), 0); break;
            case 14: gfx.SetRenderSource(1 + small, 0, colour); break;
            case 15: gfx.SetLightEnable(small, on); break;
            case 16: gfx.SetLight(small, side.light, 0, false); break;
            case 17: gfx.SetFillMode(2 + static_cast<int>(n % 2), nullptr); break;
            default: gfx.DrawTriangleList(side.list, 0, 1); break;
        }
    }
    static constexpr unsigned kSettings = 19;

    /// Begins, goes on with, ends or interrupts an effect of the one device.
    void Draw(unsigned what) {
        const unsigned act = what % 8;
        const bool begun = !open_.empty();
        const std::size_t chosen = begun ? open_.back() : what / 8 % 2;
        KRN_ShaderEffect& effect = effects_[chosen];
        if (act < 2 && open_.size() < 2) {   // one inside of the other, if one is begun
            open_.push_back(begun ? 1 - chosen : chosen);
            effects_[open_.back()].Begin();
        } else if ((act == 2 || act == 3) && begun && !effect.InPass()) {
            effect.BeginPass(static_cast<int>(what / 16 % 2));
        } else if (act == 4 && begun && effect.InPass()) {
            effect.EndPass();
        } else if ((act == 5 || act == 6) && begun) {
            act == 5 ? effect.End() : effect.Abandon();
            open_.pop_back();
        } else if (act == 7 && !begun) {
            with_.gfx->SetShaderEffect(&effect);
            if (what / 16 % 2) with_.gfx.recording.Fail("DrawPrimitive", E_FAIL, 1 + what / 32 % 2);
            ErrorOf([&] { with_.gfx->DrawTriangleList(with_.list, 0, 1); });
            with_.gfx->SetShaderEffect(nullptr);
            without_.gfx->DrawTriangleList(without_.list, 0, 1);
        }
    }

    static std::vector<DWORD> HeldBy(Side& side) {
        side.gfx.recording.ForgetCalls();
        return HeldStates(*side.gfx->Device(), {side.textures[0].DeviceTexture(), side.textures[1].DeviceTexture()});
    }

    Side with_, without_;
    KRN_ShaderEffect effects_[2];
    std::vector<std::size_t> open_;   // begun effects, the innermost last
};

TEST_F(EffectStates, WhatWasSetInBetweenStands) {
    std::mt19937 random(11);
    std::string story;
    for (const unsigned light : {0u, 1u, 2u}) Set(16, light);   // one that the device never had cannot be put back
    for (int step = 0; step < 6000 && !HasFailure(); ++step) {
        const unsigned what = random() % (kSettings + 9), number = random() % 1000;
        story += " " + std::to_string(what) + ":" + std::to_string(number);
        if (what < kSettings)
            Set(what, number);
        else
            Draw(number);
        if (!open_.empty()) continue;
        EXPECT_EQ(HeldBy(with_), HeldBy(without_)) << "step " << step << ":" << story;
        story.clear();
    }
}

}   // namespace
}   // namespace sparkrig
