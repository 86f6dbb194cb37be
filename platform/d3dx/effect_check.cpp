#include "platform/d3dx/effect_check.h"

#include <algorithm>

#include "platform/d3d9/d3d9_constants.h"
#include "platform/d3dx/effect_expression.h"

namespace sparkrig {

namespace {

constexpr DWORD kLights = 8;

template <class Enum>
bool InRange(Enum value) {
    return value <= Enum::Last;
}

bool GoodVariable(const EffectVariable& variable) {
    const auto small = [](DWORD n) { return n >= 1 && n <= 4; };
    if (!InRange(variable.kind) || !InRange(variable.number)) return false;
    if (!small(variable.rows) || !small(variable.columns) || variable.elements > kMaxElements) return false;
    if (variable.kind != VariableClass::Matrix && variable.rows != 1) return false;
    if (variable.kind == VariableClass::Scalar && variable.columns != 1) return false;
    return variable.words.size() == (IsNumeric(variable.kind) ? variable.WordCount() : 0);
}

bool GoodAnnotations(const std::vector<EffectVariable>& annotations) {
    return std::ranges::all_of(annotations, [](const EffectVariable& annotation) {
        return GoodVariable(annotation) && (IsNumeric(annotation.kind) || annotation.kind == VariableClass::String);
    });
}

class EffectChecker {
  public:
    explicit EffectChecker(const EffectFile& effect) : effect_(effect) {}

    bool GoodParameter(std::size_t index) const {
        const EffectParameter& parameter = effect_.parameters[index];
        if (!GoodVariable(parameter.variable) || !GoodAnnotations(parameter.annotations)) return false;
        if (parameter.parent < -1 || parameter.parent >= static_cast<std::int64_t>(index)) return false;
        if (parameter.parent >= 0 && !CanBeParent(effect_.parameters[static_cast<std::size_t>(parameter.parent)]))
            return false;
        if (!ElementsFollow(index)) return false;
        if (parameter.function < -1 || parameter.function >= static_cast<std::int64_t>(effect_.functions.size()))
            return false;
        if (parameter.variable.kind != VariableClass::Sampler && !parameter.states.empty()) return false;
        return std::ranges::all_of(parameter.states, [this](const StateAssignment& state) {
            const bool belongs = state.group == StateGroup::SamplerState || state.group == StateGroup::Texture;
            return belongs && GoodState(state);
        });
    }

    bool GoodFunction(const EffectFunction& function) const {
        if (!InRange(function.stage) || function.code.globals_bytes > kMaxGlobalsBytes) return false;
        for (const GlobalBinding& binding : function.globals) {
            if (binding.parameter >= effect_.parameters.size()) return false;
            const EffectVariable& variable = effect_.parameters[binding.parameter].variable;
            if (!IsNumeric(variable.kind) || binding.offset % 4 != 0) return false;
            if (binding.offset > function.code.globals_bytes ||
                GlobalBytes(variable) > function.code.globals_bytes - binding.offset)
                return false;
        }
        return std::ranges::all_of(function.samplers, [this](const SamplerBinding& binding) {
            return binding.sampler < kSamplers && IsParameter(binding.parameter, VariableClass::Sampler);
        });
    }

    bool GoodTechnique(const EffectTechnique& technique) const {
        return GoodAnnotations(technique.annotations) &&
               std::ranges::all_of(technique.passes, [this](const EffectPass& pass) {
                   return GoodAnnotations(pass.annotations) &&
                          std::ranges::all_of(pass.states, [this](const auto& state) { return GoodState(state); });
               });
    }

  private:
    static bool IsObjectArray(const EffectVariable& variable) {
        return !IsNumeric(variable.kind) && variable.elements > 0;
    }
    static bool CanBeParent(const EffectParameter& parameter) {
        return parameter.variable.kind == VariableClass::Structure || IsObjectArray(parameter.variable);
    }
    /// The elements of an array of objects stand right behind it.
    bool ElementsFollow(std::size_t index) const {
        const EffectVariable& variable = effect_.parameters[index].variable;
        if (!IsObjectArray(variable) || variable.kind == VariableClass::Structure) return true;
        if (variable.elements > effect_.parameters.size() - index - 1) return false;
        for (std::size_t i = index + 1; i <= index + variable.elements; ++i)
            if (effect_.parameters[i].parent != static_cast<std::int32_t>(index) ||
                effect_.parameters[i].variable.kind != variable.kind || effect_.parameters[i].variable.elements > 0)
                return false;
        return true;
    }
    bool IsParameter(DWORD index, VariableClass kind) const {
        return index < effect_.parameters.size() && effect_.parameters[index].variable.kind == kind;
    }

    bool GoodState(const StateAssignment& state) const {
        return InRange(state.group) && InRange(state.type) && InRange(state.value) && GoodPlace(state) &&
               GoodType(state) && GoodValue(state);
    }

    static bool GoodPlace(const StateAssignment& state) {
        struct Limits {
            DWORD states, indices;
        };
        // clang-format off
        constexpr Limits kLimits[] = {
            {kRenderStateCount, 1}, {kStageStateCount, kTextureStages}, {kSamplerStateCount, kSamplers},
            {1, kSamplers},         {1, kSamplers},                     {256 + kWorldMatrices, 1},
            {static_cast<DWORD>(LightMember::Last) + 1, kLights},       {1, kLights},
            {static_cast<DWORD>(MaterialMember::Last) + 1, 1},          {1, 1}, {1, 1},
        };
        // clang-format on
        static_assert(std::size(kLimits) == static_cast<std::size_t>(StateGroup::Last) + 1);
        const Limits& limits = kLimits[static_cast<std::size_t>(state.group)];
        return state.state < limits.states && state.index < limits.indices;
    }

    /// The groups that hold objects hold nothing else.
    static bool GoodType(const StateAssignment& state) {
        switch (state.group) {
            case StateGroup::Texture: return state.type == StateType::Texture;
            case StateGroup::Sampler: return state.type == StateType::Sampler;
            case StateGroup::Transform: return state.type == StateType::Matrix;
            case StateGroup::VertexShader:
            case StateGroup::PixelShader: return state.type == StateType::Shader;
            default: return state.type <= StateType::Vector;
        }
    }

    bool GoodValue(const StateAssignment& state) const {
        switch (state.type) {
            case StateType::Matrix:
                if (state.value == ValueKind::Constant) return state.matrix.size() == 16;
                return RefersTo(state, VariableClass::Matrix);
            case StateType::Texture: return state.value == ValueKind::Null || RefersTo(state, VariableClass::Texture);
            case StateType::Sampler: return RefersTo(state, VariableClass::Sampler);
            case StateType::Shader:
                if (state.value == ValueKind::Function) return GoodFunctionReference(state);
                return state.value == ValueKind::Null ||
                       (RefersTo(state, VariableClass::Shader) &&
                        (state.expression.empty() || GoodExpression(state.expression)));
            default:
                return state.value == ValueKind::Constant ||
                       (state.value == ValueKind::Expression && GoodExpression(state.expression));
        }
    }

    bool RefersTo(const StateAssignment& state, VariableClass kind) const {
        return state.value == ValueKind::Parameter && IsParameter(state.reference, kind);
    }

    bool GoodFunctionReference(const StateAssignment& state) const {
        if (state.reference >= effect_.functions.size()) return false;
        const bool pixel = effect_.functions[state.reference].stage == FunctionStage::Pixel;
        return pixel == (state.group == StateGroup::PixelShader);
    }

    /// Leaves one value and never more than the evaluation has room for.
    bool GoodExpression(const std::vector<ExpressionStep>& steps) const {
        int depth = 0;
        for (const ExpressionStep& step : steps) {
            if (!InRange(step.code) || std::ranges::any_of(step.swizzle, [](BYTE c) { return c > 3; })) return false;
            if ((step.code == ExpressionCode::Parameter || step.code == ExpressionCode::Element) &&
                (step.parameter >= effect_.parameters.size() ||
                 !IsNumeric(effect_.parameters[step.parameter].variable.kind)))
                return false;
            depth -= OperandCount(step.code);
            if (depth < 0 || ++depth > static_cast<int>(kExpressionDepth)) return false;
        }
        return depth == 1;
    }

    const EffectFile& effect_;
};

}   // namespace

std::string FindEffectFault(const EffectFile& effect) {
    const EffectChecker checker(effect);
    for (std::size_t i = 0; i < effect.parameters.size(); ++i)
        if (!checker.GoodParameter(i)) return "parameter " + std::to_string(i) + " is out of range";
    for (std::size_t i = 0; i < effect.functions.size(); ++i)
        if (!checker.GoodFunction(effect.functions[i])) return "function " + std::to_string(i) + " is out of range";
    for (std::size_t i = 0; i < effect.techniques.size(); ++i)
        if (!checker.GoodTechnique(effect.techniques[i])) return "technique " + std::to_string(i) + " is out of range";
    return {};
}

}   // namespace sparkrig
