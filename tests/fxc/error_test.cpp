#include <gmock/gmock.h>

#include "tests/fxc/fxc_run.h"
#include "tests/support/cases.h"

namespace sparkrig {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

std::string WithPass(const std::string& states) {
    return "texture T;\nfloat F;\ntechnique {\npass {\n" + states + "\n}\n}\n";
}

TEST(FxcErrors, NameFileLineAndCause) {
    std::vector<Case> rows = ReadCases("tests/fxc/errors.fx", "//// ");
    ASSERT_FALSE(rows.empty());
    rows.push_back({"t.fx(2): error X2000: unexpected '?' (column 1)", {'\n', '\0'}});
    for (const auto& [first_line, source] : rows) {
        const FxcResult result = CompileText(source);
        EXPECT_EQ(result.code, 1) << source;
        EXPECT_THAT(result.errors, StartsWith(first_line)) << source;
    }
}

TEST(FxcErrors, AreInTheIncludedFile) {
    const FxcFolder folder;
    folder.Write("main.fx", "float a;\n#include \"Part.fxh\"\nfloat c;\n");
    folder.Write("part.fxh", "float b;\n\nfloat b2 = ;\n");   // found whatever its letter case
    EXPECT_THAT(folder.Compile("main.fx").errors, StartsWith("part.fxh(3): error X2000: expected a value"));
}

TEST(FxcErrors, AreAllReportedWhereEachStandsForItself) {
    const FxcResult result = CompileText(WithPass("CulMode = CW;\nZEnabel = TRUE;\nZEnable = TRUE;"));
    EXPECT_THAT(result.errors, HasSubstr("t.fx(5): error X2000: unknown state 'CulMode'"));
    EXPECT_THAT(result.errors, HasSubstr("t.fx(6): error X2000: unknown state 'ZEnabel'"));
}

TEST(FxcErrors, WhatTheLayerCanNotRunIsAWarning) {
    const std::string pixel = WithPass("PixelShader = compile ps_3_0 P();");
    const struct {
        std::string source, message;
    } rows[] = {
        {"samplerCUBE s; float4 P(float3 d : TEXCOORD0) : COLOR { return texCUBE(s, d); }\n" + pixel,
         "t.fx(6): warning X4000: P: it samples a cube or volume texture (column 30)"},
        {"sampler s; float4 P(float3 d : TEXCOORD0) : COLOR { return tex3D(s, d); }\n" + pixel, "cube or volume"},
        {"void P(out float4 a : COLOR0, out float4 b : COLOR1) { a = 1; b = 0.5; }\n" + pixel, "more than one target"},
        {"sampler s; float4 V(float4 p : POSITION) : POSITION { return tex2Dlod(s, p); }\n" +
             WithPass("VertexShader = compile vs_3_0 V();"),
         "it samples a texture in the vertex stage"},
        {"float4 V(float4 p : POSITION) : POSITION { return p; }\n" + WithPass("VertexShader = compile vs_4_0 V();"),
         "the version 'vs_4_0' is unknown"},
        {WithPass("VertexShader = asm { vs.1.1 };"),
         "t.fx(5): warning X4000: asm: functions in assembly language are not supported (column 16)"},
    };
    for (const auto& row : rows) {
        const FxcResult result = CompileText(row.source);
        EXPECT_EQ(result.code, 0) << row.source;
        EXPECT_THAT(result.errors, HasSubstr(row.message)) << row.source;
        ASSERT_EQ(result.effect.functions.size(), 1u) << row.source;
        EXPECT_THAT(result.effect.functions[0].unsupported + "\n", HasSubstr(result.errors)) << row.source;
        EXPECT_EQ(result.effect.functions[0].code, ShaderCode()) << row.source;
    }
    const FxcResult inputs =
        CompileText("float4 V(float4 p : POSITION, float3 t : NORMAL1) : POSITION { return p + t.x; }\n" +
                    WithPass("VertexShader = compile vs_1_1 V();"));
    EXPECT_EQ(inputs.errors, "t.fx(6): warning X4000: V: no vertex has NORMAL1: it reads (0, 0, 0, 1) (column 31)\n");
    EXPECT_THAT(inputs.effect.warnings, HasSubstr(inputs.errors));
    const FxcResult states = CompileText("technique { pass { Wrap9 = 1; } pass { Wrap9 = 2; CullMode = CW; } }");
    EXPECT_EQ(states.errors, "t.fx(1): warning X4000: the state 'Wrap9' has no effect here (column 20)\n");
}

}   // namespace
}   // namespace sparkrig
