#include <gmock/gmock.h>

#include "tests/fxc/fxc_run.h"

namespace sparkrig {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

std::string WithPass(const std::string& states) {
    return "texture T;\nfloat F;\ntechnique {\npass {\n" + states + "\n}\n}\n";
}

TEST(FxcErrors, NameFileLineAndCause) {
    const struct {
        std::string source, first_line;
    } rows[] = {
        // Reading and preprocessing
        {"\n#include \"none.fxh\"\n", "t.fx(2): error X1000: can not open 'none.fxh'"},
        {"float a;\n\n/* open", "t.fx(3): error X1000: the comment is not closed (column 1)"},
        {"string s = \"open\n;", "t.fx(1): error X1000: the string is not closed (column 12)"},
        {"#if 1\nfloat a;\n", "t.fx(1): error X1000: the condition has no #endif (column 1)"},
        {"\n#endif\n", "t.fx(2): error X1000: #endif without #if (column 2)"},
        {"#if 1\n#else\n#else\n#endif\n", "t.fx(3): error X1000: a second #else (column 2)"},
        {"#if 1 / 0\n#endif", "t.fx(1): error X1000: the condition is not an expression of whole numbers"},
        {"#unheard of\n", "t.fx(1): error X1000: unknown directive '#unheard'"},
        {"\n#error stop here\n", "t.fx(2): error X1000: #error stop here"},
        {"#define F(a, b) a\nfloat x = F(1);", "t.fx(2): error X1000: macro 'F' takes 2 arguments, not 1"},
        {"#define F(a) a\nfloat x = F(1;", "t.fx(2): error X1000: the arguments of 'F' do not end"},
        // Parameters
        {"float4 a\nfloat b;", "t.fx(2): error X2000: expected ';' after 'a' before 'float' (column 1)"},
        {std::string("\n\0", 2), "t.fx(2): error X2000: unexpected '?' (column 1)"},
        {"\nflaot4 a;", "t.fx(2): error X2000: unknown type 'flaot4' (column 1)"},
        {"float4 a = {1, 2, 3};", "t.fx(1): error X2000: 'a' takes 4 values, not 3"},
        {"float a = b;", "t.fx(1): error X2000: unknown name 'b' (column 11)"},
        {"float a; int a;", "t.fx(1): error X2000: 'a' stands for another parameter already"},
        {"float a[0];", "t.fx(1): error X2000: the size of an array is a constant from 1 to 4096"},
        {"texture a[a];", "t.fx(1): error X2000: unknown name 'a' (column 11)"},
        {"float a <float b;> = 1;", "t.fx(1): error X2000: expected '=' before the value of the annotation"},
        {"texture t < texture b = 1; >;", "t.fx(1): error X2000: an annotation is a number or a string"},
        {"sampler s = sampler_state { CullMode = 1; };", "t.fx(1): error X2000: 'CullMode' is no state of a sampler"},
        {"sampler s = sampler_state { Texture = <gone>; };", "t.fx(1): error X2000: 'gone' is not a texture"},
        {"sampler s : register(s16);", "t.fx(1): error X2000: a sampler register is s0 to s15"},
        // Techniques
        {"technique { pass { }", "t.fx(1): error X2000: expected '}' after the passes before the end of the file"},
        {WithPass("CullMode = CW"), "t.fx(6): error X2000: expected ';' after the value of 'CullMode' before '}'"},
        {WithPass("CulMode = CW;"), "t.fx(5): error X2000: unknown state 'CulMode' (column 1)"},
        {WithPass("CullMode = CWW;"), "t.fx(5): error X2000: unknown name 'CWW' (column 12)"},
        {WithPass("ColorWriteEnable = RED | PURPLE;"), "t.fx(5): error X2000: unknown name 'PURPLE' (column 26)"},
        {WithPass("ColorOp[8] = ADD;"), "t.fx(5): error X2000: 'ColorOp' has no index 8 (column 1)"},
        {WithPass("Texture[0] = <F>;"), "t.fx(5): error X2000: 'F' is not a texture (column 15)"},
        {WithPass("AlphaRef = T;"), "t.fx(5): error X2000: 'T' is no number (column 12)"},
        {WithPass("VertexShader = compile ps_2_0 V();"), "t.fx(5): error X2000: 'ps_2_0' is not a target"},
        {WithPass("VertexShader = compile vs_1_1 None();"), "t.fx(5): error X3000: None: there is no function 'None'"},
        // Functions
        {"float4 V(float4 p : POSITION) : POSITION\n{\n    return q;\n}\n" +
             WithPass("VertexShader = compile vs_1_1 V();"),
         "t.fx(3): error X3000: 'q' : unknown variable (column 12)"},
        {"void V(float4) { }", "t.fx(1): error X2000: expected the name of a parameter before ')'"},
        {"float4 V(float4 p : POSITION, uniform float s) : POSITION { return p * s; }\n" +
             WithPass("VertexShader = compile vs_1_1 V(1, 2);"),
         "t.fx(6): error X3000: V: 'V' has 1 uniform parameters, not 2 (column 31)"},
        {"float4 V(float4 p : POSITION) : POSITION\n{ return p * ; }\n" +
             WithPass("VertexShader = compile vs_1_1 V();"),
         "t.fx(2): error X3000: expected a value before ';' (column 14)"},
        {"float F(float a) { return F(a - 1); } float4 V() : POSITION { return F(1); }\n" +
             WithPass("VertexShader = compile vs_1_1 V();"),
         "t.fx(6): error X3000: V: a function calls itself (column 31)"},
        {"float4 V() : POSITION\n{ return F(1)(2)[; }\n" + WithPass("VertexShader = compile vs_1_1 V();"),
         "t.fx(2): error X3000: "},
        {"float4 V(float4 p) : POSITION { return p; }\n" + WithPass("VertexShader = compile vs_1_1 V();"),
         "t.fx(6): error X3000: V: the input 'p' has no semantic"},
        {"void P(out float4 p : NORMAL) { p = 1; }\n" + WithPass("PixelShader = compile ps_2_0 P();"),
         "t.fx(6): error X3000: P: the output 'p' can not have the semantic NORMAL"},
    };
    for (const auto& row : rows) {
        const FxcResult result = CompileText(row.source);
        EXPECT_EQ(result.code, 1) << row.source;
        EXPECT_THAT(result.errors, StartsWith(row.first_line)) << row.source;
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
        CompileText("float4 V(float4 p : POSITION, float3 t : TANGENT) : POSITION { return p + t.x; }\n" +
                    WithPass("VertexShader = compile vs_1_1 V();"));
    EXPECT_EQ(inputs.errors, "t.fx(6): warning X4000: V: no vertex has TANGENT0: it reads (0, 0, 0, 1) (column 31)\n");
    const FxcResult states = CompileText("technique { pass { Wrap9 = 1; } pass { Wrap9 = 2; CullMode = CW; } }");
    EXPECT_EQ(states.errors, "t.fx(1): warning X4000: the state 'Wrap9' has no effect here (column 20)\n");
}

}   // namespace
}   // namespace sparkrig
