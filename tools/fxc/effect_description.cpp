#include "tools/fxc/effect_description.h"

#include <algorithm>
#include <bit>

#include <fmt/format.h>

#include "tools/fxc/state_table.h"

namespace sparkrig::fxc {

namespace {

std::string TypeOf(const EffectVariable& variable) {
    constexpr const char* kNumbers[] = {"float", "int", "bool"};
    constexpr const char* kObjects[] = {"", "", "", "struct", "string", "texture", "sampler", "shader"};
    const char* const number = kNumbers[static_cast<std::size_t>(variable.number)];
    switch (variable.kind) {
        case VariableClass::Scalar: return number;
        case VariableClass::Vector: return fmt::format("{}{}", number, variable.columns);
        case VariableClass::Matrix: return fmt::format("{}{}x{}", number, variable.rows, variable.columns);
        default: return kObjects[static_cast<std::size_t>(variable.kind)];
    }
}

std::string NumberText(NumberType number, DWORD word) {
    if (number == NumberType::Float) return fmt::format("{}", std::bit_cast<float>(word));
    if (number == NumberType::Bool) return word != 0 ? "true" : "false";
    return fmt::format("{}", std::bit_cast<std::int32_t>(word));
}

std::string Declaration(const EffectVariable& variable) {
    std::string text = fmt::format("{} {}", TypeOf(variable), variable.name);
    if (variable.elements > 0 && !variable.name.ends_with(']')) text += fmt::format("[{}]", variable.elements);
    return text;
}

std::string ValueText(const EffectVariable& variable) {
    if (variable.kind == VariableClass::String) return fmt::format(" = \"{}\"", variable.text);
    if (variable.words.empty()) return {};
    std::string text;
    for (const DWORD word : variable.words) text += (text.empty() ? "" : ", ") + NumberText(variable.number, word);
    return " = " + (variable.words.size() == 1 ? text : "{" + text + "}");
}

std::string AnnotationsText(const std::vector<EffectVariable>& annotations) {
    std::string text;
    for (const EffectVariable& annotation : annotations)
        text += fmt::format("{}{}{};", text.empty() ? "" : " ", Declaration(annotation), ValueText(annotation));
    return text.empty() ? text : " <" + text + ">";
}

std::string Indented(int depth, const std::string& text) {
    return std::string(static_cast<std::size_t>(depth) * 4, ' ') + text + "\n";
}

std::string Named(const std::string& word, const std::string& name) { return name.empty() ? word : word + " " + name; }

class Describer {
  public:
    explicit Describer(const EffectFile& effect) : effect_(effect) {}

    std::string Run() {
        for (std::size_t i = 0; i < effect_.parameters.size(); ++i) Parameter(i);
        for (const EffectTechnique& technique : effect_.techniques) Technique(technique);
        return std::move(text_);
    }

  private:
    void Parameter(std::size_t index) {
        const EffectParameter& parameter = effect_.parameters[index];
        int depth = 0;
        for (std::int32_t parent = parameter.parent; parent >= 0; ++depth)
            parent = effect_.parameters[static_cast<std::size_t>(parent)].parent;
        std::string line = (parameter.shared ? "shared " : "") + Declaration(parameter.variable);
        if (!parameter.semantic.empty()) line += " : " + parameter.semantic;
        line += AnnotationsText(parameter.annotations) + ValueText(parameter.variable);
        if (parameter.function >= 0)
            line += " = " + effect_.functions[static_cast<std::size_t>(parameter.function)].call;
        text_ += Indented(depth, line);
        for (const StateAssignment& state : parameter.states) text_ += Indented(depth + 1, StateText(state, false));
    }

    void Technique(const EffectTechnique& technique) {
        text_ += Indented(0, Named("technique", technique.name) + AnnotationsText(technique.annotations));
        for (const std::string& reason : Reasons(technique)) text_ += Indented(1, "not valid: " + reason);
        for (const EffectPass& pass : technique.passes) {
            text_ += Indented(1, Named("pass", pass.name) + AnnotationsText(pass.annotations));
            for (const StateAssignment& state : pass.states) text_ += Indented(2, StateText(state, true));
        }
    }

    const EffectFunction* FunctionOf(const StateAssignment& state) const {
        if (state.value == ValueKind::Function) return &effect_.functions[state.reference];
        if (state.value != ValueKind::Parameter || effect_.parameters[state.reference].function < 0) return nullptr;
        return &effect_.functions[static_cast<std::size_t>(effect_.parameters[state.reference].function)];
    }

    std::vector<std::string> Reasons(const EffectTechnique& technique) const {
        std::vector<std::string> reasons;
        for (const EffectPass& pass : technique.passes)
            for (const StateAssignment& state : pass.states) {
                const EffectFunction* function = state.type == StateType::Shader ? FunctionOf(state) : nullptr;
                if (function && !function->unsupported.empty() &&
                    std::ranges::count(reasons, function->unsupported) == 0)
                    reasons.push_back(function->unsupported);
            }
        return reasons;
    }

    std::string StateText(const StateAssignment& state, bool indexed) const {
        const StateRow* row = FindState(state.group, state.state);
        const bool first = state.group == StateGroup::Transform && row;
        const DWORD index = first ? state.state - row->state : state.index;
        const bool many = indexed && row && IndexCount(row->group, row->state) > 1;
        return fmt::format("{}{} = {}", row ? row->name : "?", many ? fmt::format("[{}]", index) : "",
                           Value(state, row));
    }

    std::string Value(const StateAssignment& state, const StateRow* row) const {
        switch (state.value) {
            case ValueKind::Null: return "NULL";
            case ValueKind::Parameter:
                return "<" + effect_.parameters[state.reference].variable.name +
                       (state.expression.empty() ? "" : "[...]") + ">";
            case ValueKind::Function: return effect_.functions[state.reference].call;
            case ValueKind::Expression: return ExpressionText(state);
            default: return ConstantText(state, row);
        }
    }

    std::string ExpressionText(const StateAssignment& state) const {
        std::string names;
        for (const ExpressionStep& step : state.expression)
            if (step.code == ExpressionCode::Parameter || step.code == ExpressionCode::Element)
                names += (names.empty() ? "" : ", ") + effect_.parameters[step.parameter].variable.name;
        return "(of " + names + ")";
    }

    static std::string ConstantText(const StateAssignment& state, const StateRow* row) {
        const auto number = [](DWORD word) { return fmt::format("{}", std::bit_cast<float>(word)); };
        switch (state.type) {
            case StateType::Bool: return state.constant[0] != 0 ? "TRUE" : "FALSE";
            case StateType::Float: return number(state.constant[0]);
            case StateType::Colour: return fmt::format("0x{:08X}", state.constant[0]);
            case StateType::Vector:
                return fmt::format("{{{}, {}, {}, {}}}", number(state.constant[0]), number(state.constant[1]),
                                   number(state.constant[2]), number(state.constant[3]));
            case StateType::Matrix: {
                std::string text;
                for (const DWORD word : state.matrix) text += (text.empty() ? "" : ", ") + number(word);
                return "{" + text + "}";
            }
            default: break;
        }
        for (const NamedValue& value : row ? row->values : std::span<const NamedValue>())
            if (value.value == state.constant[0]) return value.name;
        return fmt::format("{}", state.constant[0]);
    }

    const EffectFile& effect_;
    std::string text_;
};

}   // namespace

std::string DescribeEffect(const EffectFile& effect) { return Describer(effect).Run(); }

}   // namespace sparkrig::fxc
