#include <gmock/gmock.h>

#include <bit>

#include "platform/d3d9/d3d9_constants.h"
#include "tests/fxc/fxc_run.h"

namespace sparkrig {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

DWORD Bits(float value) { return std::bit_cast<DWORD>(value); }

/// The last parameter of a source that must compile.
EffectParameter LastParameter(const std::string& source) {
    const FxcResult result = CompileText(source);
    EXPECT_EQ(result.errors, "") << source;
    return result.effect.parameters.empty() ? EffectParameter() : result.effect.parameters.back();
}

TEST(FxcSyntax, ReadsTypesAndInitialValues) {
    using enum VariableClass;
    constexpr NumberType Float = NumberType::Float, Int = NumberType::Int, Bool = NumberType::Bool;
    const struct {
        std::string source;
        VariableClass kind;
        NumberType number;
        DWORD rows, columns, elements;
        std::vector<DWORD> words;
    } rows[] = {
        {"float a;", Scalar, Float, 1, 1, 0, {0}},
        {"half a = 1.5h;", Scalar, Float, 1, 1, 0, {Bits(1.5f)}},
        {"double2 a = 2;", Vector, Float, 1, 2, 0, {Bits(2), Bits(2)}},
        {"int a = -7;", Scalar, Int, 1, 1, 0, {static_cast<DWORD>(-7)}},
        {"dword a = 0xFF804020;", Scalar, Int, 1, 1, 0, {0xFF804020}},
        {"bool3 a = {0, 5, false};", Vector, Bool, 1, 3, 0, {0, 1, 0}},
        {"float2x3 a = {1, 2, 3, 4, 5, 6};",
         Matrix,
         Float,
         2,
         3,
         0,
         {Bits(1), Bits(2), Bits(3), Bits(4), Bits(5), Bits(6)}},
        {"vector a;", Vector, Float, 1, 4, 0, {0, 0, 0, 0}},
        {"texture a = NULL;", Texture, Float, 1, 1, 0, {}},
        {"samplerCUBE a;", Sampler, Float, 1, 1, 0, {}},
        {"PixelShader a = NULL;", Shader, Float, 1, 1, 0, {}},
        {"float x, y : Y, a = 3;", Scalar, Float, 1, 1, 0, {Bits(3)}},
    };
    for (const auto& row : rows) {
        const EffectVariable variable = LastParameter(row.source).variable;
        EXPECT_EQ(variable.name, "a") << row.source;
        EXPECT_EQ(variable.kind, row.kind) << row.source;
        EXPECT_EQ(variable.number, row.number) << row.source;
        EXPECT_EQ(variable.rows, row.rows) << row.source;
        EXPECT_EQ(variable.columns, row.columns) << row.source;
        EXPECT_EQ(variable.elements, row.elements) << row.source;
        EXPECT_EQ(variable.words, row.words) << row.source;
    }
}

TEST(FxcSyntax, KeepsSemanticsUsagesAndAnnotations) {
    const EffectParameter parameter = LastParameter(
        "shared float4 a : register(c3) : VParam2 < string ResourceName = \"dir\\new\" \".tga\"; float step = 0.5;"
        " int3 n = {4, 5, 6}; > = 1;");
    EXPECT_TRUE(parameter.shared);
    EXPECT_EQ(parameter.semantic, "VParam2");
    ASSERT_EQ(parameter.annotations.size(), 3u);
    EXPECT_EQ(parameter.annotations[0].text, "dir\\new.tga");
    EXPECT_THAT(parameter.annotations[1].words, ElementsAre(Bits(0.5f)));
    EXPECT_THAT(parameter.annotations[2].words, ElementsAre(4, 5, 6));
}

TEST(FxcSyntax, HidesStaticsAndListsMembers) {
    const FxcResult result = CompileText(
        "static float hidden = 2; struct Inner { float2 b[3]; }; struct S { float4 a; Inner inner; }; S s; int last;");
    EXPECT_EQ(result.errors, "");
    std::vector<std::string> names;
    std::vector<int> parents;
    for (const EffectParameter& parameter : result.effect.parameters) {
        names.push_back(parameter.variable.name);
        parents.push_back(parameter.parent);
    }
    EXPECT_THAT(names, ElementsAre("s", "a", "inner", "b", "last"));
    EXPECT_THAT(parents, ElementsAre(-1, 0, 0, 2, -1));
}

TEST(FxcSyntax, Preprocesses) {
    const struct {
        std::string source;
        DWORD value;
    } rows[] = {
        {"#define V 3\nfloat a = V;", Bits(3)},
        {"#define ADD(x, y) ((x) + (y))\nfloat a = ADD(1, ADD(2, 3));", Bits(6)},
        {"#define JOIN(x, y) x##y\nfloat a = JOIN(1, 5);", Bits(15)},
        {"#define SELF SELF + 0\n#define A 4\n#undef A\nfloat A = 4, a = 4;", Bits(4)},
        {"#define EMPTY()\nfloat a EMPTY() = 5;", Bits(5)},
        {"#if defined(X) || !defined Y && (2 * 3 >> 1) == 3\nfloat a = 6;\n#else\nsyntax error\n#endif", Bits(6)},
        {"#ifdef X\n#error no\n#elif 0\n#if 1\nbad\n#endif\n#elif 1 << 2 > 3\nfloat a = 7;\n#else\nbad\n#endif",
         Bits(7)},
        {"\xEF\xBB\xBF#pragma once\r\nfloat a\\\n = 8;   // ends here \\\n not here", Bits(8)},
        {"#define LATE(x) x\nfloat a = LATE\n(9);", Bits(9)},
    };
    for (const auto& row : rows)
        EXPECT_THAT(LastParameter(row.source).variable.words, ElementsAre(row.value)) << row.source;
    EXPECT_EQ(LastParameter("#define TEXT(x) #x\nstring s = TEXT(two  words);").variable.text, "two words");
}

TEST(FxcSyntax, ReadsSamplerStates) {
    const EffectParameter sampler = LastParameter(
        "texture T; sampler s = sampler_state { texture = (T); MinFilter = linear; AddressU[3] = CLAMP;"
        " BorderColor = 0x80102030; MipMapLodBias = -0.5; AddressU = MIRROR; };");
    ASSERT_EQ(sampler.states.size(), 5u);
    EXPECT_EQ(sampler.states[0].group, StateGroup::Texture);
    EXPECT_EQ(sampler.states[0].reference, 0u);
    const struct {
        DWORD state, value;
    } rows[] = {{D3DSAMP_MINFILTER, D3DTEXF_LINEAR},
                {D3DSAMP_BORDERCOLOR, 0x80102030},
                {D3DSAMP_MIPMAPLODBIAS, Bits(-0.5f)},
                {D3DSAMP_ADDRESSU, D3DTADDRESS_MIRROR}};
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(sampler.states[i + 1].state, rows[i].state) << i;
        EXPECT_EQ(sampler.states[i + 1].constant[0], rows[i].value) << i;
    }
}

TEST(FxcSyntax, ReadsConstantStates) {
    using enum StateGroup;
    const struct {
        std::string assignment;
        StateGroup group;
        DWORD state, index, value;
    } rows[] = {
        {"CullMode = cCw", Render, D3DRS_CULLMODE, 0, D3DCULL_CCW},
        {"ZENABLE = USEW", Render, D3DRS_ZENABLE, 0, D3DZB_USEW},
        {"ZWriteEnable = false", Render, D3DRS_ZWRITEENABLE, 0, 0},
        {"AlphaRef = 0x7F", Render, D3DRS_ALPHAREF, 0, 127},
        {"FogStart = 2", Render, D3DRS_FOGSTART, 0, Bits(2)},
        {"DepthBias = -1 * 0.25", Render, D3DRS_DEPTHBIAS, 0, Bits(-0.25f)},
        {"TextureFactor = float4(1, 0.5, 0, 0.2)", Render, D3DRS_TEXTUREFACTOR, 0, 0x33FF8000},
        {"ColorWriteEnable = RED | ALPHA", Render, D3DRS_COLORWRITEENABLE, 0, 9},
        {"VertexBlend = 2WEIGHTS", Render, D3DRS_VERTEXBLEND, 0, D3DVBF_2WEIGHTS},
        {"Wrap3 = U | V", Render, D3DRS_WRAP0 + 3, 0, 3},
        {"ColorArg1[2] = TEXTURE | COMPLEMENT", TextureStage, D3DTSS_COLORARG1, 2, D3DTA_TEXTURE | D3DTA_COMPLEMENT},
        {"TexCoordIndex[1] = 3 | CAMERASPACENORMAL", TextureStage, D3DTSS_TEXCOORDINDEX, 1,
         3 | D3DTSS_TCI_CAMERASPACENORMAL},
        {"BumpEnvMat01[7] = 0.5", TextureStage, D3DTSS_BUMPENVMAT01, 7, Bits(0.5f)},
        {"MagFilter[15] = POINT", SamplerState, D3DSAMP_MAGFILTER, 15, D3DTEXF_POINT},
        {"LightEnable[4] = TRUE", LightEnable, 0, 4, 1},
        {"LightType[4] = SPOT", Light, static_cast<DWORD>(LightMember::Type), 4, D3DLIGHT_SPOT},
        {"MaterialPower = 12.5", Material, static_cast<DWORD>(MaterialMember::Power), 0, Bits(12.5f)},
        {"MaterialDiffuse = {0.75}", Material, static_cast<DWORD>(MaterialMember::Diffuse), 0, Bits(0.75f)},
    };
    for (const auto& row : rows) {
        const FxcResult result = CompileText("technique { pass { CullMode = NONE; " + row.assignment + "; } }");
        ASSERT_EQ(result.errors, "") << row.assignment;
        const StateAssignment& state = result.effect.techniques[0].passes[0].states.back();
        EXPECT_EQ(state.group, row.group) << row.assignment;
        EXPECT_EQ(state.state, row.state) << row.assignment;
        EXPECT_EQ(state.index, row.index) << row.assignment;
        EXPECT_EQ(state.value, ValueKind::Constant) << row.assignment;
        EXPECT_EQ(state.constant[0], row.value) << row.assignment;
    }
}

TEST(FxcSyntax, TheLaterAssignmentOfAStateCounts) {
    const FxcResult result = CompileText(
        "technique A <int n = 2;> { pass First <string s = \"t\";> { ZEnable = 1; CullMode = CW; ZEnable = 0; } pass { "
        "} }"
        "TECHNIQUE { Pass Last { Texture[1] = NULL; } }");
    ASSERT_EQ(result.errors, "");
    const EffectTechnique& technique = result.effect.techniques.at(0);
    EXPECT_EQ(technique.name, "A");
    EXPECT_EQ(technique.annotations.at(0).name, "n");
    ASSERT_EQ(technique.passes.size(), 2u);
    EXPECT_EQ(technique.passes[0].name, "First");
    EXPECT_EQ(technique.passes[0].annotations.at(0).text, "t");
    ASSERT_EQ(technique.passes[0].states.size(), 2u);
    EXPECT_EQ(technique.passes[0].states[1].constant[0], 0u);
    EXPECT_EQ(result.effect.techniques.at(1).passes.at(0).states.at(0).value, ValueKind::Null);
}

}   // namespace
}   // namespace sparkrig
