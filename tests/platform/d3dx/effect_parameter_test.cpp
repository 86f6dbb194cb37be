#include "tests/platform/d3dx/effect_fixture.h"

namespace sparkrig {
namespace {

using EffectParameterTest = EffectTest;

constexpr const char* kDrawWith = R"(
float4 F(float4 p : POSITION) : POSITION { return USE; }
technique { pass { VertexShader = compile vs_1_1 F(); } })";

std::string Using(const std::string& declarations, const std::string& use) {
    return "#define USE " + use + "\n" + declarations + kDrawWith;
}

constexpr D3DXMATRIX kCounting = {{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16}}};

TEST_F(EffectParameterTest, HandlesFindWhatIsThere) {
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

    const D3DXHANDLE third = effect->GetParameter(nullptr, 3);
    const char* text = nullptr;
    float weight = 0;
    INT count = 0;
    EXPECT_EQ(effect->GetString(effect->GetAnnotationByName(third, "note"), &text), D3D_OK);
    EXPECT_STREQ(text, "hello");
    EXPECT_EQ(effect->GetFloat(effect->GetAnnotationByName(third, "weight"), &weight), D3D_OK);
    EXPECT_EQ(weight, 2.5f);
    EXPECT_EQ(effect->GetInt(effect->GetAnnotationByName(third, "count"), &count), D3D_OK);
    EXPECT_EQ(count, 7);
    EXPECT_EQ(effect->GetAnnotationByName(third, "Note"), nullptr);
    EXPECT_EQ(effect->SetFloat(effect->GetAnnotationByName(third, "weight"), 1), D3DERR_INVALIDCALL);

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

TEST_F(EffectParameterTest, ValuesAreConvertedToTheParameter) {
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
    const struct {
        const char* name;
        D3DXVECTOR4 kept;
    } rows[] = {{"v", {1.5f, -2.5f, 0, 0}}, {"w", {2, -3, 0, 0}}, {"m", {1, 1, 0, 1}}};
    for (const auto& row : rows) {
        EXPECT_EQ(effect->SetVector(handle(row.name), &given), D3D_OK) << row.name;
        EXPECT_EQ(effect->GetVector(handle(row.name), &vector), D3D_OK) << row.name;
        EXPECT_EQ(vector, row.kept) << row.name;
    }
    EXPECT_EQ(effect->SetFloat(handle("t"), 1), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetFloat(nullptr, 1), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetVector(handle("x"), &given), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetMatrix(handle("v"), &kCounting), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetTexture(handle("f"), nullptr), D3DERR_INVALIDCALL);
    EXPECT_EQ(effect->SetFloat(reinterpret_cast<D3DXHANDLE>(&number), 1), D3DERR_INVALIDCALL);
}

TEST_F(EffectParameterTest, GlobalsReachTheFunctionRowByRow) {
    const struct {
        const char *declaration, *use;
        std::vector<float> globals;   // that the function gets
    } rows[] = {
        {"float4x4 m;", "mul(p, m)", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}},
        {"float4x3 m;", "float4(mul(p, m), 1)", {1, 2, 3, 0, 5, 6, 7, 0, 9, 10, 11, 0, 13, 14, 15, 0}},
        {"float2x2 m;", "mul(p.xy, m).xyxy", {1, 2, 0, 0, 5, 6, 0, 0}},
    };
    for (const auto& row : rows) {
        const auto effect = Load(Using(row.declaration, row.use));
        ASSERT_EQ(effect->SetMatrix(effect->GetParameter(nullptr, 0), &kCounting), D3D_OK);
        effect->Begin(nullptr, 0);
        ASSERT_EQ(effect->BeginPass(0), D3D_OK);
        EXPECT_EQ(Globals(), row.globals) << row.declaration;
        effect->End();
    }
}

TEST_F(EffectParameterTest, ArraysTakeWhatFits) {
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

TEST_F(EffectParameterTest, SharedOnesHaveOneValueInAPool) {
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

TEST_F(EffectParameterTest, TexturesAreHeldUntilTheDeviceIsLost) {
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

}   // namespace
}   // namespace sparkrig
