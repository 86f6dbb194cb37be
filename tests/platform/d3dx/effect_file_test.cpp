#include "platform/d3dx/effect_file.h"

#include <gtest/gtest.h>

#include <functional>

#include "platform/d3dx/effect_compiler.h"
#include "platform/d3dx/effect_expression.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

/// One of everything, compiled.
std::vector<BYTE> SampleBytes() {
    const ScratchFolder folder;
    std::vector<BYTE> bytes;
    std::string errors;
    EXPECT_TRUE(CompileEffect(folder.Write("t.fx", R"(
float4 Tint; shared float4x3 Transform[2] : WORLD < string note = "text"; >; texture Picture;
sampler Reader : register(s15) = sampler_state { Texture = <Picture>; }; float Number = 5;
float4 V(float4 p : POSITION) : POSITION { return float4(mul(p, Transform[1]), 1) * Tint; }
float4 P(float2 uv : TEXCOORD0) : COLOR { return tex2D(Reader, uv); }
technique T < string note = "text"; > {
    pass { AlphaRef = (Number * 3); VertexShader = compile vs_1_1 V(); PixelShader = compile ps_2_0 P(); }
})"),
                              bytes, errors))
        << errors;
    return bytes;
}

bool Reads(const std::vector<BYTE>& bytes, EffectFile& effect) {
    std::string error;
    const bool good = ReadEffectFile(bytes, effect, error);
    EXPECT_EQ(good, error.empty());
    return good;
}

TEST(EffectFile, RefusesEveryCut) {
    const std::vector<BYTE> bytes = SampleBytes();
    EffectFile effect;
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_FALSE(Reads({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)}, effect)) << length;
    std::vector<BYTE> longer = bytes;
    longer.push_back(1);
    EXPECT_FALSE(Reads(longer, effect));
}

TEST(EffectFile, SurvivesEveryChangedByte) {
    const std::vector<BYTE> bytes = SampleBytes();
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
            std::vector<BYTE> changed = bytes;
            changed[at] = static_cast<BYTE>(value);
            EffectFile effect, again;
            if (!Reads(changed, effect)) continue;
            EXPECT_TRUE(Reads(WriteEffectFile(effect), again)) << at;
        }
    }
}

TEST(EffectFile, RefusesWhatIsOutOfRange) {
    using Change = std::function<void(EffectFile&)>;
    const auto state = [](EffectFile& effect) -> StateAssignment& { return effect.techniques[0].passes[0].states[0]; };
    const Change changes[] = {
        [](EffectFile& e) { e.parameters[1].variable.rows = 5; },
        [](EffectFile& e) { e.parameters[1].variable.columns = 0; },
        [](EffectFile& e) { e.parameters[1].variable.words.pop_back(); },
        [](EffectFile& e) { e.parameters[1].variable.elements = kMaxElements + 1; },
        [](EffectFile& e) { e.parameters[4].variable.kind = static_cast<VariableClass>(99); },
        [](EffectFile& e) { e.parameters[2].variable.elements = 1; },   // the element behind it is no texture
        [](EffectFile& e) { e.parameters[4].parent = 4; },
        [](EffectFile& e) { e.parameters[4].parent = 1; },
        [](EffectFile& e) { e.parameters[4].function = 2; },
        [](EffectFile& e) { e.parameters[3].states[0].reference = 5; },
        [](EffectFile& e) { e.parameters[3].states[0].group = StateGroup::Render; },
        [](EffectFile& e) { e.functions[0].code.globals_bytes = 143; },
        [](EffectFile& e) { e.functions[0].globals[1].offset = 0xFFFFFFF0; },
        [](EffectFile& e) { e.functions[0].globals[1].offset = 14; },
        [](EffectFile& e) { e.functions[0].globals[0].parameter = 5; },
        [](EffectFile& e) { e.functions[1].samplers[0].sampler = 16; },
        [](EffectFile& e) { e.functions[1].samplers[0].parameter = 2; },
        [&](EffectFile& e) { state(e).state = 256; },
        [&](EffectFile& e) { state(e).index = 1; },
        [&](EffectFile& e) { state(e).type = StateType::Matrix; },
        [&](EffectFile& e) { state(e).value = ValueKind::Null; },
        [&](EffectFile& e) { state(e).expression[0].parameter = 2; },
        [&](EffectFile& e) { state(e).expression.pop_back(); },
        [&](EffectFile& e) { state(e).expression.erase(state(e).expression.begin()); },
        [&](EffectFile& e) { state(e).expression[1].swizzle[2] = 4; },
        [&](EffectFile& e) { state(e).expression.insert(state(e).expression.begin(), kExpressionDepth, {}); },
        [](EffectFile& e) { e.techniques[0].passes[0].states[1].reference = 2; },
        [](EffectFile& e) { e.techniques[0].passes[0].states[1].group = StateGroup::PixelShader; },
        [](EffectFile& e) { e.techniques[0].annotations[0].kind = VariableClass::Texture; },
    };
    const std::vector<BYTE> bytes = SampleBytes();
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        EffectFile changed, effect;
        ASSERT_TRUE(Reads(bytes, changed));
        EXPECT_EQ(WriteEffectFile(changed), bytes);
        changes[i](changed);
        EXPECT_FALSE(Reads(WriteEffectFile(changed), effect)) << "change " << i;
    }
}

}   // namespace
}   // namespace sparkrig
