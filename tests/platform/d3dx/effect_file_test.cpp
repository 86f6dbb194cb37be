#include "platform/d3dx/effect_file.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "platform/d3dx/effect_expression.h"

namespace sparkrig {
namespace {

/// One of everything.
EffectFile SampleEffect() {
    EffectFile effect;
    EffectParameter matrix;
    matrix.variable = {"Transform", VariableClass::Matrix, NumberType::Float, 4, 3, 2, std::vector<DWORD>(24, 7), ""};
    matrix.semantic = "WORLD";
    matrix.shared = true;
    matrix.annotations.push_back({"note", VariableClass::String, NumberType::Float, 1, 1, 0, {}, "text"});
    effect.parameters = {matrix, {}, {}, {}};
    effect.parameters[1].variable.kind = VariableClass::Texture;
    effect.parameters[2].variable.kind = VariableClass::Sampler;
    StateAssignment texture;
    texture.group = StateGroup::Texture;
    texture.type = StateType::Texture;
    texture.value = ValueKind::Parameter;
    texture.reference = 1;
    effect.parameters[2].states.push_back(texture);
    effect.parameters[3].variable.words = {5};

    EffectFunction function;
    function.version = 0x0101;
    function.code = {"void main() {}", 112, 5, true};
    function.globals = {{0, 0 + 16}};
    function.code.globals_bytes = 144;
    function.samplers = {{2, 15}};
    effect.functions = {function};

    StateAssignment computed;
    computed.group = StateGroup::Render;
    computed.state = 24;
    computed.value = ValueKind::Expression;
    computed.expression.resize(3);
    computed.expression[0].code = ExpressionCode::Parameter;
    computed.expression[0].parameter = 3;
    computed.expression[1].constant = {2, 3, 4, 5};
    computed.expression[2].code = ExpressionCode::Multiply;
    StateAssignment shader;
    shader.group = StateGroup::VertexShader;
    shader.type = StateType::Shader;
    shader.value = ValueKind::Function;
    effect.techniques = {{"T", {matrix.annotations[0]}, {{"P", {}, {computed, shader}}}}};
    return effect;
}

bool Reads(const std::vector<BYTE>& bytes, EffectFile& effect) {
    std::string error;
    const bool good = ReadEffectFile(bytes, effect, error);
    EXPECT_EQ(good, error.empty());
    return good;
}

TEST(EffectFile, ReadsWhatWasWritten) {
    const std::vector<BYTE> bytes = WriteEffectFile(SampleEffect());
    EffectFile effect;
    ASSERT_TRUE(Reads(bytes, effect));
    EXPECT_EQ(WriteEffectFile(effect), bytes);
    EXPECT_EQ(effect.parameters[0].variable.rows, 4u);
    EXPECT_EQ(effect.functions[0].code, SampleEffect().functions[0].code);
    EXPECT_EQ(effect.techniques[0].passes[0].states[0].expression[1].constant[3], 5.0f);
}

TEST(EffectFile, ReadsTheSmallestRecords) {   // the fewest bytes of an element are not more than it takes
    EffectFile smallest;
    smallest.parameters.resize(1);
    smallest.parameters[0].variable.words = {0};
    smallest.parameters[0].annotations.resize(1);
    smallest.parameters[0].annotations[0].kind = VariableClass::String;
    smallest.functions.resize(1);
    smallest.techniques.resize(1);
    smallest.techniques[0].passes.resize(1);
    smallest.techniques[0].passes[0].states.resize(1);
    smallest.techniques[0].passes[0].states[0].value = ValueKind::Constant;
    EffectFile effect;
    EXPECT_TRUE(Reads(WriteEffectFile(smallest), effect));
    for (std::size_t kept = 0; kept < 3; ++kept) {
        EffectFile one = smallest;
        if (kept != 0) one.parameters.clear();
        if (kept != 1) one.functions.clear();
        if (kept != 2) one.techniques.clear();
        EXPECT_TRUE(Reads(WriteEffectFile(one), effect)) << kept;
    }
}

TEST(EffectFile, RefusesEveryCut) {
    const std::vector<BYTE> bytes = WriteEffectFile(SampleEffect());
    EffectFile effect;
    for (std::size_t length = 0; length < bytes.size(); ++length)
        EXPECT_FALSE(Reads({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)}, effect)) << length;
    std::vector<BYTE> longer = bytes;
    longer.push_back(1);
    EXPECT_FALSE(Reads(longer, effect));
}

TEST(EffectFile, SurvivesEveryChangedByte) {
    const std::vector<BYTE> bytes = WriteEffectFile(SampleEffect());
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
        [](EffectFile& e) { e.parameters[0].variable.rows = 5; },
        [](EffectFile& e) { e.parameters[0].variable.columns = 0; },
        [](EffectFile& e) { e.parameters[0].variable.words.pop_back(); },
        [](EffectFile& e) { e.parameters[0].variable.elements = kMaxElements + 1; },
        [](EffectFile& e) { e.parameters[3].variable.kind = static_cast<VariableClass>(99); },
        [](EffectFile& e) { e.parameters[1].variable.elements = 1; },   // the element behind it is no texture
        [](EffectFile& e) { e.parameters[3].parent = 3; },
        [](EffectFile& e) { e.parameters[3].parent = 0; },
        [](EffectFile& e) { e.parameters[3].function = 1; },
        [](EffectFile& e) { e.parameters[2].states[0].reference = 4; },
        [](EffectFile& e) { e.parameters[2].states[0].group = StateGroup::Render; },
        [](EffectFile& e) { e.functions[0].code.globals_bytes = 143; },
        [](EffectFile& e) { e.functions[0].globals[0].offset = 0xFFFFFFF0; },
        [](EffectFile& e) { e.functions[0].globals[0].offset = 14; },
        [](EffectFile& e) { e.functions[0].globals[0].parameter = 4; },
        [](EffectFile& e) { e.functions[0].samplers[0].sampler = 16; },
        [](EffectFile& e) { e.functions[0].samplers[0].parameter = 1; },
        [&](EffectFile& e) { state(e).state = 256; },
        [&](EffectFile& e) { state(e).index = 1; },
        [&](EffectFile& e) { state(e).type = StateType::Matrix; },
        [&](EffectFile& e) { state(e).value = ValueKind::Null; },
        [&](EffectFile& e) { state(e).expression[0].parameter = 1; },
        [&](EffectFile& e) { state(e).expression.pop_back(); },
        [&](EffectFile& e) { state(e).expression.erase(state(e).expression.begin()); },
        [&](EffectFile& e) { state(e).expression[1].swizzle[2] = 4; },
        [&](EffectFile& e) { state(e).expression.insert(state(e).expression.begin(), kExpressionDepth, {}); },
        [](EffectFile& e) { e.techniques[0].passes[0].states[1].reference = 1; },
        [](EffectFile& e) { e.techniques[0].passes[0].states[1].group = StateGroup::PixelShader; },
        [](EffectFile& e) { e.techniques[0].annotations[0].kind = VariableClass::Texture; },
    };
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        EffectFile changed = SampleEffect(), effect;
        changes[i](changed);
        EXPECT_FALSE(Reads(WriteEffectFile(changed), effect)) << "change " << i;
    }
}

TEST(EffectExpression, EvaluatesInPostfixOrder) {
    std::vector<ExpressionStep> steps(6);   // (P - (1, 2, 3, 4)).wzyx / 2
    steps[0].code = ExpressionCode::Parameter;
    steps[0].parameter = 9;
    steps[1].constant = {1, 2, 3, 4};
    steps[2].code = ExpressionCode::Subtract;
    steps[3].code = ExpressionCode::Swizzle;
    steps[3].swizzle = {3, 2, 1, 0};
    steps[4].constant = {2, 2, 0, 2};
    steps[5].code = ExpressionCode::Divide;
    const auto load = [](DWORD parameter) {
        const float value = static_cast<float>(parameter);
        return ExpressionValue{value, value * 2, value * 3, value * 4};
    };
    const auto no_element = [](DWORD, float) { return ExpressionValue{}; };
    EXPECT_EQ(EvaluateExpression(steps, load, no_element), (ExpressionValue{16, 12, 0, 4}));   // division by 0 gives 0
}

}   // namespace
}   // namespace sparkrig
