// Effects from source on the recording device: their parameters, then what they send.
#include <bit>
#include <stdexcept>

#include "platform/d3dx/d3dx_effect.h"
#include "tests/support/held_states.h"
#include "tests/support/matrices.h"
#include "tests/support/recording.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

class EffectTest : public ::testing::Test {
  protected:
    std::string Write(const std::string& name, const std::string& text) const { return folder_.Write(name, text); }

    DevicePtr<ID3DXEffect> Load(const std::string& source, ID3DXEffectPool* pool = nullptr) {
        DevicePtr<ID3DXEffect> effect;
        DevicePtr<ID3DXBuffer> errors;
        const std::string path = Write("t.fx", source);
        const HRESULT result =
            D3DXCreateEffectFromFileA(device_.Get(), path.c_str(), 0, pool, effect.Receive(), errors.Receive());
        // Nothing can be asked of an effect that is not there.
        if (FAILED(result))
            throw std::runtime_error(errors ? static_cast<const char*>(errors->GetBufferPointer()) : "no effect");
        return effect;
    }

    /// What the vertex function was given last.
    std::vector<float> Globals() const {
        std::vector<float> values;
        const std::vector<DWORD> words = recording_.ArgumentsOf("SetVertexShaderGlobals").back();
        for (const DWORD word : words) values.push_back(std::bit_cast<float>(word));
        return values;
    }

    Recording recording_;   // before the device, which records to it
    DevicePtr<IDirect3DDevice9> device_ = recording_.MakeDevice();
    ScratchFolder folder_;
};

DWORD Bits(float value) { return std::bit_cast<DWORD>(value); }

constexpr const char* kDrawWith = R"(
float4 F(float4 p : POSITION) : POSITION { return USE; }
technique { pass { VertexShader = compile vs_1_1 F(); } })";

std::string Using(const std::string& declarations, const std::string& use) {
    return "#define USE " + use + "\n" + declarations + kDrawWith;
}

constexpr D3DXMATRIX kCounting = {{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}}};

TEST_F(EffectTest, HandlesFindWhatIsThere) {
    const auto effect = Load(R"(
float first : Alpha; struct S { float m; float2 n; } ; S s : Group; float4 second : ALPHA;
float third : Beta < string note = "hello"; float weight = 2.5; int count = 7; > ;
technique One < int priority = 3; > { pass A < string target = "back"; > { } pass B { } } technique Two { })");
    D3DXEFFECT_DESC desc;
    ASSERT_EQ(effect->GetDesc(&desc), D3D_OK);
    EXPECT_EQ(desc.Parameters, 4u);
    EXPECT_EQ(desc.Techniques, 2u);
    const D3DXHANDLE first = effect->GetParameter(nullptr, 0);
    EXPECT_EQ(effect->GetParameterByName(nullptr, "first"), first);
    EXPECT_EQ(effect->GetParameterByName(nullptr, "First"), nullptr);
    EXPECT_EQ(effect->GetParameterBySemantic(nullptr, "aLpHa"), first);
    EXPECT_EQ(effect->GetParameterBySemantic(nullptr, ""), nullptr);
    EXPECT_EQ(effect->GetParameter(nullptr, 4), nullptr);
    const D3DXHANDLE group = effect->GetParameterBySemantic(nullptr, "group");
    EXPECT_NE(effect->GetParameterByName(group, "n"), nullptr);
    EXPECT_EQ(effect->GetParameter(group, 1), effect->GetParameterByName(group, "n"));
    EXPECT_EQ(effect->GetParameterByName(nullptr, "n"), nullptr);

    const auto annotation = [&, third = effect->GetParameter(nullptr, 3)](const char* name) {
        return effect->GetAnnotationByName(third, name);
    };
    const char* text = nullptr;
    float weight = 0;
    INT count = 0;
    EXPECT_EQ(effect->GetString(annotation("note"), &text), D3D_OK);
    EXPECT_EQ(effect->GetFloat(annotation("weight"), &weight), D3D_OK);
    EXPECT_EQ(effect->GetInt(annotation("count"), &count), D3D_OK);
    EXPECT_EQ(std::make_tuple(std::string(text), weight, count), std::make_tuple("hello", 2.5f, 7));
    EXPECT_EQ(annotation("Note"), nullptr);
    EXPECT_EQ(effect->SetFloat(annotation("weight"), 1), D3DERR_INVALIDCALL);

    const D3DXHANDLE one = effect->GetTechnique(0);
    D3DXTECHNIQUE_DESC technique;
    ASSERT_EQ(effect->GetTechniqueDesc(one, &technique), D3D_OK);
    EXPECT_STREQ(technique.Name, "One");
    EXPECT_EQ(technique.Passes, 2u);
    EXPECT_NE(effect->GetAnnotationByName(one, "priority"), nullptr);
    EXPECT_NE(effect->GetAnnotationByName(effect->GetPass(one, 0), "target"), nullptr);
    EXPECT_EQ(effect->GetPass(one, 2), nullptr);
    EXPECT_EQ(effect->GetTechnique(2), nullptr);
    EXPECT_EQ(effect->GetTechniqueDesc(first, &technique), D3DERR_INVALIDCALL);
}

TEST_F(EffectTest, ValuesAreConvertedToTheParameter) {
    const auto effect =
        Load("float f; int i; bool b; float2 v; int3 w; bool4 m; float3x2 x; texture t; string s = \"q\";");
    const auto handle = [&](const char* name) { return effect->GetParameterByName(nullptr, name); };
    D3DXVECTOR4 vector;
    float number = 0;
    INT whole = 0;
    EXPECT_EQ(effect->SetInt(handle("f"), 3), D3D_OK);
    EXPECT_EQ(effect->GetFloat(handle("f"), &number), D3D_OK);
    EXPECT_EQ(number, 3.0f);
    EXPECT_EQ(effect->SetFloat(handle("i"), -2.6f), D3D_OK);
    EXPECT_EQ(effect->GetInt(handle("i"), &whole), D3D_OK);
    EXPECT_EQ(whole, -3);
    EXPECT_EQ(effect->SetFloat(handle("b"), 0.25f), D3D_OK);
    EXPECT_EQ(effect->GetInt(handle("b"), &whole), D3D_OK);
    EXPECT_EQ(whole, 1);
    const D3DXVECTOR4 given{1.5f, -2.5f, 0, 4};
    const std::pair<const char*, D3DXVECTOR4> kRows[] = {
        {"v", {1.5f, -2.5f, 0, 0}}, {"w", {2, -3, 0, 0}}, {"m", {1, 1, 0, 1}}};
    for (const auto& [name, kept] : kRows) {
        EXPECT_EQ(effect->SetVector(handle(name), &given), D3D_OK) << name;
        EXPECT_EQ(effect->GetVector(handle(name), &vector), D3D_OK) << name;
        EXPECT_EQ(vector, kept) << name;
    }
    EXPECT_EQ(effect->SetFloat(handle("t"), 1), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetFloat(nullptr, 1), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetVector(handle("x"), &given), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetMatrix(handle("v"), &kCounting), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetTexture(handle("f"), nullptr), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetFloat(reinterpret_cast<D3DXHANDLE>(&number), 1), D3DERR_INVALIDCALL);
}

TEST_F(EffectTest, GlobalsReachTheFunctionRowByRow) {
    const std::tuple<const char*, const char*, std::vector<float>> kRows[] = {
        // declaration, use, what it gets
        {"float4x4 m;", "mul(p, m)", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}},
        {"float4x3 m;", "float4(mul(p, m), 1)", {1, 2, 3, 0, 5, 6, 7, 0, 9, 10, 11, 0, 13, 14, 15, 0}},
        {"float2x2 m;", "mul(p.xy, m).xyxy", {1, 2, 0, 0, 5, 6, 0, 0}},
    };
    for (const auto& [declaration, use, globals] : kRows) {
        const auto effect = Load(Using(declaration, use));
        ASSERT_EQ(effect->SetMatrix(effect->GetParameter(nullptr, 0), &kCounting), D3D_OK);
        effect->Begin(nullptr, 0);
        ASSERT_EQ(effect->BeginPass(0), D3D_OK);
        EXPECT_EQ(Globals(), globals) << declaration;
        effect->End();
    }
}

TEST_F(EffectTest, ArraysTakeWhatFits) {
    const auto effect = Load(Using("float2 v[2] = {7, 7, 7, 7}; float2x2 m[2];", "v[1].xyxy + mul(p.xy, m[1]).xyxy"));
    const D3DXVECTOR4 vectors[3] = {{1, 2, 0, 0}, {3, 4, 0, 0}, {5, 6, 0, 0}};
    EXPECT_EQ(effect->SetVectorArray(effect->GetParameter(nullptr, 0), vectors, 1), D3D_OK);
    EXPECT_EQ(effect->SetMatrixArray(effect->GetParameter(nullptr, 1), &kCounting, 1), D3D_OK);
    effect->Begin(nullptr, 0);
    ASSERT_EQ(effect->BeginPass(0), D3D_OK);
    EXPECT_THAT(Globals(), ElementsAre(1, 2, 0, 0, 7, 7, 0, 0, 1, 2, 0, 0, 5, 6, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    effect->EndPass();
    EXPECT_EQ(effect->SetVectorArray(effect->GetParameter(nullptr, 0), vectors, 3), D3D_OK);   // the third is dropped
    ASSERT_EQ(effect->BeginPass(0), D3D_OK);   // sees what was set between the passes
    EXPECT_EQ(Globals()[4], 3);
    effect->End();
}

TEST_F(EffectTest, SharedOnesHaveOneValueInAPool) {
    DevicePtr<ID3DXEffectPool> pool;
    ASSERT_EQ(D3DXCreateEffectPool(pool.Receive()), D3D_OK);
    const char* const source = "shared float a = 2; float b = 3;";
    auto first = Load(source, pool.Get());
    const auto second = Load("shared float a = 9; shared float3 b = 9;", pool.Get());
    const auto outside = Load(source);
    const auto value = [](const DevicePtr<ID3DXEffect>& effect, const char* name) {
        float number = -1;
        effect->GetFloat(effect->GetParameterByName(nullptr, name), &number);
        return number;
    };
    EXPECT_EQ(value(second, "a"), 2.0f);   // the first effect's counts
    second->SetFloat(second->GetParameterByName(nullptr, "a"), 5);
    EXPECT_EQ(value(first, "a"), 5.0f);
    EXPECT_EQ(value(first, "b"), 3.0f);
    EXPECT_EQ(value(outside, "a"), 2.0f);
    first.Reset();
    EXPECT_EQ(value(second, "a"), 5.0f);
    EXPECT_EQ(value(Load("shared float3 a = 9; shared float b = 4;", pool.Get()), "b"), 4.0f);   // its user is gone
}

TEST_F(EffectTest, TexturesAreHeldUntilTheDeviceIsLost) {
    auto effect = Load("texture a; texture b;");
    DevicePtr<IDirect3DTexture9> lasting, passing;
    const int default_pool = recording_.LiveDefaultPoolObjects();
    device_->CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, lasting.Receive());
    device_->CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT, passing.Receive());
    const int without = recording_.LiveObjects() - 2;
    effect->SetTexture(effect->GetParameter(nullptr, 0), lasting.Get());
    effect->SetTexture(effect->GetParameter(nullptr, 1), passing.Get());
    lasting.Reset();
    passing.Reset();
    EXPECT_EQ(recording_.LiveObjects(), without + 2);
    EXPECT_EQ(effect->OnLostDevice(), D3D_OK);
    EXPECT_EQ(recording_.LiveDefaultPoolObjects(), default_pool);
    EXPECT_EQ(effect->OnResetDevice(), D3D_OK);
    EXPECT_EQ(recording_.LiveObjects(), without + 1);
    effect.Reset();
    EXPECT_EQ(recording_.LiveObjects(), without);
}

// ---- Drawing

constexpr const char* kEverything = R"(
float4x4 M; float4 C = float4(1, 0.5, 0, 1); int R = 0x12345678; float S = 0.25; texture T;
sampler2D Reader : register(s3) = sampler_state { Texture = <T>; MinFilter = LINEAR; };
float4 V(float4 p : POSITION) : POSITION { return mul(p, M); }
float4 P(float2 uv : TEXCOORD0) : COLOR { return tex2D(Reader, uv) * C; }
technique Draw {
    pass {
        CullMode = NONE; FogColor = C; AlphaRef = (S * 100 + 5); TextureFactor = R; FogStart = (-S); Ambient = 0x00112233;
        FogEnd = ((C - 0.5).wzyx / 2).y; FogDensity = (S / 0);
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

TEST_F(EffectTest, BeginPassAppliesStatesAndEndPutsTheDeviceBackExactly) {
    const auto effect = Load(kEverything);
    DevicePtr<IDirect3DTexture9> before_texture, texture;
    device_->CreateTexture(4, 4, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, before_texture.Receive());
    device_->CreateTexture(8, 8, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, texture.Receive());
    effect->SetTexture(effect->GetParameterByName(nullptr, "T"), texture.Get());
    effect->SetMatrix(effect->GetParameterByName(nullptr, "M"), &kCounting);
    DisturbStates(*device_, before_texture.Get());
    const std::vector<DWORD> before = HeldStates(*device_);
    UINT passes = 0;
    ASSERT_EQ(effect->Begin(&passes, 0), D3D_OK);
    ASSERT_EQ(passes, 2u);
    recording_.ForgetCalls();
    ASSERT_EQ(effect->BeginPass(0), D3D_OK);
    const std::pair<D3DRENDERSTATETYPE, DWORD> kRenderStates[] = {
        {D3DRS_CULLMODE, D3DCULL_NONE},    {D3DRS_FOGCOLOR, 0xFFFF8000},   {D3DRS_ALPHAREF, 30},
        {D3DRS_TEXTUREFACTOR, 0x12345678}, {D3DRS_FOGSTART, Bits(-0.25f)}, {D3DRS_AMBIENT, 0x00112233},
        {D3DRS_FOGEND, Bits(-0.25f)},      {D3DRS_FOGDENSITY, Bits(0)}};
    for (const auto& [state, value] : kRenderStates) EXPECT_THAT(recording_.Sent(state), ElementsAre(value)) << state;
    EXPECT_THAT(recording_.Sent(1, D3DTSS_COLOROP), ElementsAre(D3DTOP_ADD));
    for (const DWORD sampler : {3, 5})   // 3: the register of the pixel function's sampler
        EXPECT_THAT(recording_.Sent(sampler, D3DSAMP_MINFILTER), ElementsAre(D3DTEXF_LINEAR));
    D3DMATRIX held;
    for (const auto type : {D3DTS_WORLDMATRIX(1), D3DTS_VIEW}) {
        device_->GetTransform(type, &held);
        EXPECT_EQ(held, kCounting);
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

TEST_F(EffectTest, CallsOutOfOrderAreRefused) {
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

TEST_F(EffectTest, TechniquesAreValidatedOnThisDevice) {
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

TEST_F(EffectTest, CompilingLeavesNoFileBecauseItMakesNone) {
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before ? before : "";
    setenv("TMPDIR", "/none", 1);
    EXPECT_NO_THROW(Load("technique t { pass p { CullMode = NONE; } }"));
    before ? setenv("TMPDIR", kept.c_str(), 1) : unsetenv("TMPDIR");
}

TEST_F(EffectTest, ErrorsComeAsText) {
    const std::pair<std::string, std::string> kRows[] = {
        {Write("bad.fx", "float a\n;;\ntechnique { pas }"), "bad.fx(3): error X2000: "},
        {Write("bad.fxo", "SFXO\x01"), "bad.fxo(1): error X1000: the compiled effect is cut short"},
        {Write("old.fxo", std::string("SFXO\x07\0\0\0", 8)), "old.fxo(1): error X1000: a compiled effect of version 7"},
        {folder_.Path("none.fx"), "none.fx(1): error X1000: can not open the file"},
    };
    for (const auto& [file, part] : kRows) {
        DevicePtr<ID3DXEffect> effect;
        DevicePtr<ID3DXBuffer> errors;
        EXPECT_EQ(
            D3DXCreateEffectFromFileA(device_.Get(), file.c_str(), 0, nullptr, effect.Receive(), errors.Receive()),
            D3DXERR_INVALIDDATA);
        EXPECT_FALSE(effect);
        ASSERT_TRUE(errors);
        const std::string text = static_cast<const char*>(errors->GetBufferPointer());
        EXPECT_EQ(errors->GetBufferSize(), text.size() + 1);
        EXPECT_THAT(text, HasSubstr(part));
    }
    EXPECT_EQ(D3DXCreateEffectFromFileA(nullptr, "a.fx", 0, nullptr, nullptr, nullptr), D3DERR_INVALIDCALL);
}

}   // namespace
}   // namespace sparkrig
