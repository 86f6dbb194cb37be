#include <gmock/gmock.h>

#include <map>

#include "tests/fxc/fxc_run.h"

namespace sparkrig {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

std::string Technique(const std::string& target, const std::string& call) {
    const char* const state = target[0] == 'v' ? "VertexShader" : "PixelShader";
    return std::string("\ntechnique { pass { ") + state + " = compile " + target + " " + call + "; } }\n";
}

/// The first function of a source that must compile.
EffectFunction FirstFunction(const std::string& source) {
    const FxcResult result = CompileText(source);
    EXPECT_EQ(result.errors, "") << source;
    return result.effect.functions.empty() ? EffectFunction() : result.effect.functions[0];
}

TEST(FxcFunctions, VertexStagesMeetTheFixedPlaces) {
    const EffectFunction function = FirstFunction(R"(
struct In { float3 p : POSITION; float2 w : BLENDWEIGHT; int4 i : BLENDINDICES; float3 n : NORMAL; float s : PSIZE;
            float4 c[2] : COLOR; float uv[2] : TEXCOORD6; };
struct Out { float4 p : POSITION; float4 c : COLOR1; float2 uv : TEXCOORD0; float3x2 m : TEXCOORD2; float f : FOG;
             float s : PSIZE; };
Out main(In v) {
    Out o;
    o.p = float4(v.p, 1) * v.w.xyxy + v.i;
    o.c = v.c[0] + v.c[1] + v.s;
    o.uv = float2(v.uv[0], v.uv[1]);
    o.m[0] = v.n.xy; o.m[1] = v.n.yz; o.m[2] = v.n.zx;
    o.f = 0.25;
    o.s = 4;
    return o;
})" + Technique("vs_2_0", "main()"));
    EXPECT_EQ(function.version, 0x0200u);
    EXPECT_EQ(function.code.globals_bytes, 0u);
    EXPECT_TRUE(function.code.writes_point_size);
    constexpr DWORD kWritten =
        1u << kVaryingColor1 | 1u << kVaryingTexCoord0 | 7u << (kVaryingTexCoord0 + 2) | 1u << kVaryingFog;
    EXPECT_EQ(function.code.varyings, kWritten);
    const std::string& glsl = function.code.glsl;
    for (const int input :
         {int{kInputPosition}, int{kInputBlendWeight}, int{kInputBlendIndices}, int{kInputNormal}, int{kInputPointSize},
          int{kInputColor0}, int{kInputColor1}, kInputTexCoord0 + 6, kInputTexCoord0 + 7})
        EXPECT_THAT(glsl, HasSubstr("layout(location = " + std::to_string(input) + ") in vec4"));
    EXPECT_THAT(glsl, HasSubstr("gl_Position = "));
    EXPECT_THAT(glsl, HasSubstr("varying_1 = clamp("));   // a frame buffer's colours leave version 2
    EXPECT_EQ(glsl.find("void main()"), glsl.rfind("void main()"));
}

TEST(FxcFunctions, GlobalsLieAsTheValuesAreKept) {
    const FxcResult result = CompileText(R"(
float3 a; float b; float4x3 m; float s[2]; bool on; float2 v[2]; float3x3 n;
float4 F(float4 p : POSITION) : POSITION {
    return float4(mul(p, m) + mul(a, n), b) * s[1] * v[1].xyxy * (on ? 1 : 2);
})" + Technique("vs_1_1", "F()"));
    ASSERT_EQ(result.errors, "");
    const EffectFunction& function = result.effect.functions.at(0);
    const DWORD offsets[] = {0, 12, 16, 80, 112, 128, 160};
    ASSERT_EQ(function.globals.size(), std::size(offsets));
    for (std::size_t i = 0; i < std::size(offsets); ++i) {
        EXPECT_EQ(function.globals[i].parameter, i);
        EXPECT_EQ(function.globals[i].offset, offsets[i]) << i;
    }
    EXPECT_EQ(function.code.globals_bytes, 208u);
    // A column of the GLSL matrix is a row of ours: the product with the vector on the right is the row vector's.
    EXPECT_THAT(function.code.glsl, HasSubstr("mat4x3 m;"));
    EXPECT_THAT(function.code.glsl, HasSubstr("globals.m * "));
    EXPECT_THAT(function.code.glsl, Not(HasSubstr("row_major")));
}

TEST(FxcFunctions, SamplersHaveTheirRegisters) {
    const FxcResult result = CompileText(R"(
sampler2D unused; sampler2D second : register(s1); sampler plain; sampler1D line1 : register(s5); sampler2D fourth;
float4 Look(sampler s, float2 uv) { return tex2D(s, uv); }
float4 F(float2 uv : TEXCOORD3) : COLOR {
    return Look(plain, uv) + tex2D(second, uv) + tex1D(line1, uv.x) + tex2Dproj(fourth, uv.xyxy);
})" + Technique("ps_2_0", "F()"));
    ASSERT_EQ(result.errors, "");
    const EffectFunction& function = result.effect.functions.at(0);
    std::map<std::string, DWORD> samplers;
    for (const SamplerBinding& binding : function.samplers)
        samplers[result.effect.parameters[binding.parameter].variable.name] = binding.sampler;
    EXPECT_EQ(samplers, (std::map<std::string, DWORD>{{"plain", 0}, {"second", 1}, {"line1", 5}, {"fourth", 2}}))
        << ::testing::PrintToString(samplers);
    for (const char* const number : {"0", "1", "2", "5"})
        EXPECT_THAT(function.code.glsl,
                    HasSubstr(std::string("layout(binding = ") + number + ") uniform sampler2D sampler_" + number));
    EXPECT_EQ(function.code.varyings, 1u << (kVaryingTexCoord0 + 3));
}

}   // namespace
}   // namespace sparkrig
