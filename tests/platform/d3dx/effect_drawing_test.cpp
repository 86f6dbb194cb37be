#include "tests/platform/d3dx/effect_fixture.h"
#include "tests/support/held_states.h"
#include "tests/support/matrices.h"

namespace sparkrig {
namespace {

using EffectDrawingTest = EffectTest;

constexpr const char* kEverything = R"(
float4x4 M; float4 C = float4(1, 0.5, 0, 1); int R = 0x12345678; float S = 0.25; texture T;
sampler2D Reader : register(s3) = sampler_state { Texture = <T>; MinFilter = LINEAR; };
float4 V(float4 p : POSITION) : POSITION { return mul(p, M); }
float4 P(float2 uv : TEXCOORD0) : COLOR { return tex2D(Reader, uv) * C; }
technique Draw {
    pass {
        CullMode = NONE; FogColor = C; AlphaRef = (S * 100 + 5); TextureFactor = R; FogStart = (-S); Ambient = 0x00112233;
        ColorOp[1] = ADD; MagFilter[2] = POINT; Texture[1] = <T>; Sampler[5] = <Reader>;
        WorldTransform[1] = <M>; ViewTransform = <M>; LightEnable[2] = TRUE; LightType[2] = POINT; LightDiffuse[2] = C;
        MaterialDiffuse = C; MaterialPower = 3;
        VertexShader = compile vs_1_1 V(); PixelShader = compile ps_2_0 P();
    }
    pass { VertexShader = NULL; CullMode = CW; }
})";

void DisturbStates(IDirect3DDevice9& device, IDirect3DTexture9* texture) {
    device.SetRenderState(D3DRS_CULLMODE, D3DCULL_CCW);
    for (const auto state : {D3DRS_FOGCOLOR, D3DRS_ALPHAREF, D3DRS_AMBIENT}) device.SetRenderState(state, 7u * state);
    device.SetTextureStageState(1, D3DTSS_COLOROP, D3DTOP_SUBTRACT);
    device.SetSamplerState(3, D3DSAMP_MINFILTER, D3DTEXF_ANISOTROPIC);
    const D3DMATRIX matrix = Translation(2, 3, 4);
    device.SetTransform(D3DTS_WORLDMATRIX(1), &matrix);
    D3DLIGHT9 light = {};
    light.Type = D3DLIGHT_SPOT;
    light.Range = 11;
    device.SetLight(2, &light);
    D3DMATERIAL9 material = {};
    material.Power = 12;
    device.SetMaterial(&material);
    for (DWORD i = 0; i < 6; ++i) device.SetTexture(i, texture);
}

TEST_F(EffectDrawingTest, BeginPassAppliesStatesAndEndPutsTheDeviceBackExactly) {
    const auto effect = Load(kEverything);
    const D3DXMATRIX matrix = {{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}}};
    DevicePtr<IDirect3DTexture9> before_texture, texture;
    device_->CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, before_texture.Receive());
    device_->CreateTexture(8, 8, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive());
    effect->SetTexture(effect->GetParameterByName(nullptr, "T"), texture.Get());
    effect->SetMatrix(effect->GetParameterByName(nullptr, "M"), &matrix);
    DisturbStates(*device_, before_texture.Get());
    const std::vector<DWORD> before = HeldStates(*device_);
    UINT passes = 0;
    ASSERT_EQ(effect->Begin(&passes, 0), D3D_OK);
    ASSERT_EQ(passes, 2u);
    recording_.ForgetCalls();
    ASSERT_EQ(effect->BeginPass(0), D3D_OK);
    const std::pair<D3DRENDERSTATETYPE, DWORD> kRenderStates[] = {
        {D3DRS_CULLMODE, D3DCULL_NONE},    {D3DRS_FOGCOLOR, 0xFFFF8000},   {D3DRS_ALPHAREF, 30},
        {D3DRS_TEXTUREFACTOR, 0x12345678}, {D3DRS_FOGSTART, Bits(-0.25f)}, {D3DRS_AMBIENT, 0x00112233}};
    for (const auto& [state, value] : kRenderStates) EXPECT_THAT(recording_.Sent(state), ElementsAre(value)) << state;
    EXPECT_THAT(recording_.Sent(1, D3DTSS_COLOROP), ElementsAre(D3DTOP_ADD));
    for (const DWORD sampler : {3, 5})   // 3: the register of the pixel function's sampler
        EXPECT_THAT(recording_.Sent(sampler, D3DSAMP_MINFILTER), ElementsAre(D3DTEXF_LINEAR));
    D3DMATRIX held;
    for (const auto type : {D3DTS_WORLDMATRIX(1), D3DTS_VIEW}) {
        device_->GetTransform(type, &held);
        EXPECT_EQ(held, matrix);
    }
    D3DLIGHT9 light;
    BOOL on = FALSE;
    D3DMATERIAL9 material;
    device_->GetLight(2, &light);
    device_->GetLightEnable(2, &on);
    device_->GetMaterial(&material);
    constexpr D3DCOLORVALUE kColour = {1, 0.5f, 0, 1};
    EXPECT_TRUE(light.Type == D3DLIGHT_POINT && light.Diffuse == kColour && on);
    EXPECT_TRUE(material.Diffuse == kColour && material.Power == 3.0f);
    for (const DWORD i : {1, 3, 5}) {
        DevicePtr<IDirect3DTexture9> bound;
        device_->GetTexture(i, bound.Receive());
        EXPECT_EQ(bound.Get(), texture.Get()) << i;
    }
    ASSERT_EQ(effect->EndPass(), D3D_OK);
    ASSERT_EQ(effect->BeginPass(1), D3D_OK);
    DevicePtr<IDirect3DVertexShader9> vertex;
    DevicePtr<IDirect3DPixelShader9> pixel;
    device_->GetVertexShader(vertex.Receive());
    device_->GetPixelShader(pixel.Receive());
    EXPECT_TRUE(!vertex && pixel);   // the one that is not mentioned stays
    ASSERT_EQ(effect->EndPass(), D3D_OK);
    ASSERT_EQ(effect->End(), D3D_OK);
    EXPECT_TRUE(HeldStates(*device_) == before);
}

TEST_F(EffectDrawingTest, CallsOutOfOrderAreRefused) {
    const auto effect = Load("technique { pass { } }");
    EXPECT_EQ(effect->BeginPass(0), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->Begin(nullptr, 0), D3D_OK);
    EXPECT_EQ(effect->Begin(nullptr, 0), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetTechnique(effect->GetTechnique(0)), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->BeginPass(1), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->BeginPass(0), D3D_OK);
    EXPECT_EQ(effect->BeginPass(0), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->EndPass(), D3D_OK);
    EXPECT_EQ(effect->End(), D3D_OK);
    EXPECT_EQ(effect->Begin(nullptr, 0), D3D_OK);
    effect->End();
    EXPECT_EQ(Load("float lonely;")->Begin(nullptr, 0), D3DERR_INVALIDCALL);
}

TEST_F(EffectDrawingTest, TechniquesAreValidatedOnThisDevice) {
    const char* const source = R"(
float4 V(float4 p : POSITION) : POSITION { return p; }
float4 P() : COLOR { return 1; }
technique Newest { pass { VertexShader = compile vs_4_0 V(); } }
technique Three { pass { PixelShader = compile ps_3_0 P(); } }
technique One { pass { VertexShader = compile vs_1_1 V(); PixelShader = NULL; } }
technique Fixed { pass { CullMode = NONE; } })";
    const auto validity = [&](const DevicePtr<ID3DXEffect>& effect) {
        std::string text;
        for (UINT i = 0; i < 4; ++i) text += SUCCEEDED(effect->ValidateTechnique(effect->GetTechnique(i))) ? '+' : '-';
        return text;
    };
    EXPECT_EQ(validity(Load(source)), "-+++");
    recording_.caps.PixelShaderVersion = 0xFFFF0200;
    EXPECT_EQ(validity(Load(source)), "--++");
    recording_.Fail("CreateVertexShader", D3DERR_INVALIDCALL);
    const auto broken = Load(source);
    EXPECT_EQ(validity(broken), "---+");
    EXPECT_EQ(broken->ValidateTechnique(nullptr), D3DERR_INVALIDCALL);   // the first one is current
    EXPECT_EQ(broken->SetTechnique(broken->GetTechnique(3)), D3D_OK);
    EXPECT_EQ(broken->ValidateTechnique(nullptr), D3D_OK);
    EXPECT_EQ(broken->ValidateTechnique(reinterpret_cast<D3DXHANDLE>(source)), D3DERR_INVALIDCALL);

    D3DXPASS_DESC desc;
    ASSERT_EQ(broken->GetPassDesc(broken->GetPass(broken->GetTechnique(2), 0), &desc), D3D_OK);
    EXPECT_NE(desc.pVertexShaderFunction, nullptr);
    EXPECT_EQ(desc.pPixelShaderFunction, nullptr);
}

TEST_F(EffectDrawingTest, CompilingLeavesNoFileBecauseItMakesNone) {
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    setenv("TMPDIR", "/none", 1);
    EXPECT_NO_THROW(Load("technique t { pass p { CullMode = NONE; } }"));
    before ? setenv("TMPDIR", kept.c_str(), 1) : unsetenv("TMPDIR");
}

TEST_F(EffectDrawingTest, ErrorsComeAsText) {
    const struct {
        std::string file, text;
    } rows[] = {
        {Write("bad.fx", "float a\n;;\ntechnique { pas }"), "bad.fx(3): error X2000: "},
        {Write("bad.fxo", "SFXO\x01"), "bad.fxo(1): error X1000: the compiled effect is cut short"},
        {Write("old.fxo", std::string("SFXO\x07\0\0\0", 8)), "old.fxo(1): error X1000: a compiled effect of version 7"},
        {folder_.Path("none.fx"), "none.fx(1): error X1000: can not open the file"},
    };
    for (const auto& row : rows) {
        DevicePtr<ID3DXEffect> effect;
        DevicePtr<ID3DXBuffer> errors;
        EXPECT_EQ(
            D3DXCreateEffectFromFileA(device_.Get(), row.file.c_str(), 0, nullptr, effect.Receive(), errors.Receive()),
            D3DXERR_INVALIDDATA);
        EXPECT_FALSE(effect);
        ASSERT_TRUE(errors);
        const std::string text = static_cast<const char*>(errors->GetBufferPointer());
        EXPECT_EQ(errors->GetBufferSize(), text.size() + 1);
        EXPECT_THAT(text, HasSubstr(row.text));
    }
    EXPECT_EQ(D3DXCreateEffectFromFileA(nullptr, "a.fx", 0, nullptr, nullptr, nullptr), D3DERR_INVALIDCALL);
}

}   // namespace
}   // namespace sparkrig
