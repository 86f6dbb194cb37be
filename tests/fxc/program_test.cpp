#include <gtest/gtest.h>

#include <filesystem>

#include "tests/fxc/fxc_run.h"

namespace sparkrig {
namespace {

constexpr const char* kSample = R"(
#define HALF 0.5
float4x4 Transform : WORLDVIEWPROJECTION;
texture Picture < string ResourceName = "textures\a.tga"; >;
sampler2D Reader = sampler_state { Texture = <Picture>; MinFilter = LINEAR; };
void Vertex(float4 p : POSITION, uniform float size, out float4 position : POSITION, out float2 uv : TEXCOORD0) {
    position = mul(p, Transform) * size;
    uv = p.xy * HALF;
}
float4 Pixel(float2 uv : TEXCOORD0) : COLOR { return tex2D(Reader, uv); }
technique Draw { pass Only { CullMode = NONE; VertexShader = compile vs_1_1 Vertex(2); PixelShader = compile ps_2_0 Pixel(); } }
)";

TEST(FxcProgram, SaysHowItEnded) {
    const FxcFolder folder;
    folder.Write("good.fx", std::string("\xEF\xBB\xBF#pragma once\r\n") + kSample + '\x1A');
    folder.Write("bad.fx", "technique {");
    const std::string good = "'" + folder.Path() + "good.fx'", bad = "'" + folder.Path() + "bad.fx'";
    const std::string out = "'" + folder.Path() + "x.fxo'";
    const struct {
        std::string arguments;
        int code;
    } rows[] = {{good + " -o " + out, 0},
                {"-o " + out + " -- " + good, 0},
                {good + " -o -", 0},
                {"--info " + good, 0},
                {"--help", 0},
                {bad + " -o " + out, 1},
                {"--info " + bad, 1},
                {"missing.fx -o " + out, 1},
                {good + " -o /no/such/folder/x.fxo", 1},
                {"'" + folder.Path() + "' -o " + out, 1},
                {"", 2},
                {good, 2},
                {good + " --info -o " + out, 2},
                {"--unknown " + good + " -o " + out, 2}};
    for (const auto& row : rows) EXPECT_EQ(folder.Run(row.arguments).code, row.code) << row.arguments;
}

TEST(FxcProgram, DescribesEffects) {
    const FxcFolder folder;
    std::vector<std::filesystem::path> sources;
    for (const char* shelf : {"tests/fxc/info", "shader"})
        for (const auto& entry : std::filesystem::directory_iterator(shelf))
            if (entry.path().extension() == ".fx") sources.push_back(entry.path());
    for (const std::filesystem::path& source : sources) {
        const FxcResult result = folder.Run("--info " + source.string());
        EXPECT_EQ(result.output, ReadFile("tests/fxc/info/" + source.stem().string() + ".txt")) << source;
        folder.Run(source.string() + " -o '" + folder.Path() + "x.fxo'");
        EXPECT_EQ(folder.Run("--info '" + folder.Path() + "x.fxo'").output,
                  result.output);   // compiled, it says the same
    }
}

TEST(FxcProgram, LeavesNoOutputAfterErrors) {
    std::string large = "#define TEXT \"" + std::string(1 << 20, 'x') + "\"\n";
    for (int i = 0; i < 65; ++i) large += "string s" + std::to_string(i) + " = TEXT;\n";
    const FxcFolder folder;
    folder.Write("bad.fx", "float4 x = ;");
    folder.Write("large.fx", large + "technique t { pass p { CullMode = NONE; } }\n");
    EXPECT_EQ(folder.Compile("bad.fx").code, 1);
    const FxcResult result = folder.Compile("large.fx");
    EXPECT_EQ(result.code, 1);
    EXPECT_NE(result.errors.find("are more than the 67108864 that an effect may have"), std::string::npos)
        << result.errors;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        EXPECT_NE(entry.path().extension(), ".fxo") << entry.path();
}

TEST(FxcProgram, CompilesTheSame) {
    const FxcFolder folder;
    folder.Write("a.fx", kSample);
    EXPECT_EQ(WriteEffectFile(folder.Compile("a.fx").effect), WriteEffectFile(folder.Compile("a.fx").effect));
}

TEST(FxcProgram, EndsOnEverySourceThatIsCutShort) {
    const std::string sample = kSample;
    for (std::size_t length = 0; length < sample.size(); length += 7) {
        const FxcResult result = CompileText(sample.substr(0, length));
        EXPECT_LE(result.code, 1) << length << result.errors;
        EXPECT_EQ(result.code == 1, result.errors.starts_with("t.fx(")) << length << result.errors;
    }
}

TEST(FxcProgram, EndsOnSourcesThatGrow) {
    std::string doubling = "#define M0 x x\n";
    for (int i = 1; i < 60; ++i)
        doubling +=
            "#define M" + std::to_string(i) + " M" + std::to_string(i - 1) + " M" + std::to_string(i - 1) + "\n";
    std::string arguments = "#define F(a) a a a a\n";
    std::string call = "x";
    for (int i = 0; i < 40; ++i) call = "F(" + call + ")";
    std::string structures = "struct S0 { float a, b, c, d; };\n";
    for (int i = 1; i < 15; ++i) {
        const std::string member = "S" + std::to_string(i - 1);
        structures += "struct S" + std::to_string(i) + " { " + member + " a, b, c, d, e, f, g, h; };\n";
    }
    const std::string nested(100000, '(');
    const std::string rows[] = {doubling + "M59",
                                arguments + call,
                                structures + "S14 huge;",
                                "float a = " + nested,
                                "#if " + nested + "\n#endif\n",
                                "#include \"t.fx\"\n",
                                "float4x4 a[4096] = {" + std::string(300000, '{')};
    for (const std::string& source : rows) {
        const FxcResult result = CompileText(source);
        EXPECT_EQ(result.code, 1) << source.substr(0, 60);
        EXPECT_NE(result.errors.find("error X"), std::string::npos) << source.substr(0, 60) << result.errors;
        EXPECT_EQ(result.errors.find("bad_alloc"), std::string::npos) << source.substr(0, 60);   // a limit of its own
    }
}

}   // namespace
}   // namespace sparkrig
