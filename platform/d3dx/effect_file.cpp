#include "platform/d3dx/effect_file.h"

#include "platform/d3dx/effect_archive.h"
#include "platform/d3dx/effect_check.h"

namespace sparkrig {

namespace {

// Each walk names the fields of a record in the order of the file. The constants are the fewest bytes that an element
// of a list takes: those of its numbers, and the counts of its texts and lists.
constexpr std::size_t kWordBytes = 4, kVariableBytes = 26, kStepBytes = 25, kStateBytes = 39, kParameterBytes = 47,
                      kBindingBytes = 8, kFunctionBytes = 38, kPassBytes = 12, kTechniqueBytes = 12;

constexpr auto kWalkWord = [](auto& archive, DWORD& word) { archive.Number(word); };

constexpr auto kWalkVariable = [](auto& archive, EffectVariable& variable) {
    AllFields(archive, variable.name, variable.kind, variable.number, variable.rows, variable.columns,
              variable.elements, variable.text);
    archive.List(variable.words, kWordBytes, kWalkWord);
};

constexpr auto kWalkStep = [](auto& archive, ExpressionStep& step) {
    AllFields(archive, step.code, step.parameter, step.constant, step.swizzle);
};

constexpr auto kWalkState = [](auto& archive, StateAssignment& state) {
    AllFields(archive, state.group, state.state, state.index, state.type, state.value, state.constant, state.reference);
    archive.List(state.expression, kStepBytes, kWalkStep);
    archive.List(state.matrix, kWordBytes, kWalkWord);
};

constexpr auto kWalkParameter = [](auto& archive, EffectParameter& parameter) {
    kWalkVariable(archive, parameter.variable);
    AllFields(archive, parameter.semantic, parameter.shared, parameter.parent, parameter.function);
    archive.List(parameter.annotations, kVariableBytes, kWalkVariable);
    archive.List(parameter.states, kStateBytes, kWalkState);
};

constexpr auto kWalkGlobal = [](auto& archive, GlobalBinding& binding) {
    AllFields(archive, binding.parameter, binding.offset);
};
constexpr auto kWalkSampler = [](auto& archive, SamplerBinding& binding) {
    AllFields(archive, binding.parameter, binding.sampler);
};

constexpr auto kWalkFunction = [](auto& archive, EffectFunction& function) {
    AllFields(archive, function.stage, function.version, function.call, function.unsupported, function.code.glsl,
              function.code.globals_bytes, function.code.inputs, function.code.varyings,
              function.code.writes_point_size);
    archive.List(function.globals, kBindingBytes, kWalkGlobal);
    archive.List(function.samplers, kBindingBytes, kWalkSampler);
};

constexpr auto kWalkPass = [](auto& archive, EffectPass& pass) {
    archive.Text(pass.name);
    archive.List(pass.annotations, kVariableBytes, kWalkVariable);
    archive.List(pass.states, kStateBytes, kWalkState);
};

constexpr auto kWalkTechnique = [](auto& archive, EffectTechnique& technique) {
    archive.Text(technique.name);
    archive.List(technique.annotations, kVariableBytes, kWalkVariable);
    archive.List(technique.passes, kPassBytes, kWalkPass);
};

template <class Archive>
void WalkEffect(Archive& archive, EffectFile& effect) {
    archive.List(effect.parameters, kParameterBytes, kWalkParameter);
    archive.List(effect.functions, kFunctionBytes, kWalkFunction);
    archive.List(effect.techniques, kTechniqueBytes, kWalkTechnique);
    archive.Text(effect.warnings);
}

}   // namespace

DWORD GlobalBytes(const EffectVariable& variable) {
    constexpr DWORD kRowBytes = 16;
    if (variable.kind == VariableClass::Matrix) {
        return kRowBytes * variable.rows * (variable.elements > 0 ? variable.elements : 1);
    }
    return variable.elements > 0 ? kRowBytes * variable.elements : 4 * variable.columns;
}

std::vector<BYTE> WriteEffectFile(const EffectFile& effect) {
    EffectWriter writer;
    DWORD magic = kEffectMagic, version = kEffectVersion;
    AllFields(writer, magic, version);
    EffectFile copy = effect;   // the walk is shared with reading, which changes what it visits
    WalkEffect(writer, copy);
    return writer.Take();
}

bool IsCompiledEffect(std::span<const BYTE> bytes) {
    return bytes.size() >= sizeof kEffectMagic && bytes[0] == (kEffectMagic & 0xFF) &&
           bytes[1] == (kEffectMagic >> 8 & 0xFF) && bytes[2] == (kEffectMagic >> 16 & 0xFF) &&
           bytes[3] == kEffectMagic >> 24;
}

bool ReadEffectFile(std::span<const BYTE> bytes, EffectFile& effect, std::string& error) {
    EffectReader reader(bytes);
    DWORD magic = 0, version = 0;
    AllFields(reader, magic, version);
    if (magic != kEffectMagic) {
        error = "not a compiled effect";
        return false;
    }
    if (!reader.Failed() && version != kEffectVersion) {
        error = "a compiled effect of version " + std::to_string(version) + "; version " +
                std::to_string(kEffectVersion) + " is read";
        return false;
    }
    effect = {};
    WalkEffect(reader, effect);
    if (reader.Failed() || !reader.AtEnd()) {
        error = reader.Failed() ? "the compiled effect is cut short" : "the compiled effect goes on after its end";
        return false;
    }
    error = FindEffectFault(effect);
    return error.empty();
}

}   // namespace sparkrig
