#include "tools/fxc/effect_builder.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>

#include "platform/d3dx/effect_check.h"
#include "tools/fxc/code_adaption.h"
#include "tools/fxc/effect_parser.h"
#include "tools/fxc/function_text.h"
#include "tools/fxc/glsl_translator.h"
#include "tools/fxc/hlsl_compiler.h"
#include "tools/fxc/preprocessor.h"

namespace sparkrig::fxc {

namespace {

struct Target {
    const char* name;
    DWORD version;
};

constexpr Target kTargets[] = {
    {"vs_1_1", 0x0101}, {"vs_2_0", 0x0200},  {"vs_2_a", 0x0200}, {"vs_2_sw", 0x0200},
    {"vs_3_0", 0x0300}, {"vs_3_sw", 0x0300}, {"ps_1_1", 0x0101}, {"ps_1_2", 0x0102},
    {"ps_1_3", 0x0103}, {"ps_1_4", 0x0104},  {"ps_2_0", 0x0200}, {"ps_2_a", 0x0200},
    {"ps_2_b", 0x0200}, {"ps_2_sw", 0x0200}, {"ps_3_0", 0x0300}, {"ps_3_sw", 0x0300},
};

/// Name of a parameter with those of the structures around it.
std::string PathOf(const EffectFile& effect, std::size_t index) {
    const EffectParameter& parameter = effect.parameters[index];
    if (parameter.parent < 0) return parameter.variable.name;
    return PathOf(effect, static_cast<std::size_t>(parameter.parent)) + "." + parameter.variable.name;
}

std::map<std::string, DWORD> ParametersByPath(const EffectFile& effect) {
    std::map<std::string, DWORD> paths;
    for (std::size_t i = 0; i < effect.parameters.size(); ++i) paths[PathOf(effect, i)] = static_cast<DWORD>(i);
    return paths;
}

class EffectBuilder {
  public:
    EffectBuilder(ParsedEffect& effect, Diagnostics& diagnostics)
        : effect_(effect), diagnostics_(diagnostics), paths_(ParametersByPath(effect.file)) {
        for (const auto& [parameter, sampler] : effect.sampler_registers)
            sampler_registers_[effect.file.parameters[parameter].variable.name] = sampler;
        for (const EffectParameter& parameter : effect.file.parameters)
            if (parameter.variable.kind == VariableClass::Sampler) samplers_.push_back(parameter.variable.name);
    }

    void BuildFunction(std::size_t index) {
        const FunctionRequest& request = effect_.requests[index];
        EffectFunction& function = effect_.file.functions[index];
        const auto* target = std::ranges::find_if(kTargets, [&](const Target& t) { return request.target == t.name; });
        const bool known = target != std::end(kTargets);
        // A function for an unknown version is still compiled: what is wrong in it is wrong.
        function.version = known ? target->version : 0x0300;

        FunctionText text;
        std::string error;
        if (!WriteFunctionText(effect_, request, text, error)) return Error(request, error);
        std::vector<std::uint32_t> spirv;
        CodeError code_error;
        if (!CompileFunction(text.text, text.entry, function.stage, spirv, code_error))
            return ErrorInCode(request, code_error);
        Translation translation;
        const TranslationRequest wanted{function.stage, function.version, samplers_, sampler_registers_};
        if (!TranslateFunction(spirv, wanted, translation, error)) return Error(request, error);
        if (!known) translation.unsupported = fmt::format("the version '{}' is unknown", request.target);
        function.unsupported = translation.unsupported;
        if (function.unsupported.empty()) Bind(request, translation, function);
    }

  private:
    void Error(const FunctionRequest& request, const std::string& message) {
        diagnostics_.Error(request.place, ErrorCode::Code, fmt::format("{}: {}", request.entry, message));
    }

    /// Many functions share one fault in the code: it is reported once.
    void ErrorInCode(const FunctionRequest& request, const CodeError& error) {
        if (error.file < 0) return Error(request, error.message);
        const std::string text = fmt::format("{}:{}:{}", error.file, error.line, error.message);
        if (std::exchange(last_error_, text) == text) return;
        diagnostics_.ErrorInLine(error.file, error.line, ErrorCode::Code, error.message);
    }

    void Bind(const FunctionRequest& request, Translation& translation, EffectFunction& function) {
        for (const GlobalPlace& place : translation.globals) {
            const auto found = paths_.find(place.path);
            if (found == paths_.end()) return Error(request, fmt::format("'{}' is no parameter", place.path));
            const EffectVariable& variable = effect_.file.parameters[found->second].variable;
            if (place.bytes > GlobalBytes(variable))
                return Error(request, fmt::format("'{}' has a layout that is not supported", place.path));
            function.globals.push_back({found->second, place.offset});
        }
        for (const SamplerPlace& place : translation.samplers)
            function.samplers.push_back({paths_.at(place.name), place.sampler});
        function.code = std::move(translation.code);
    }

    ParsedEffect& effect_;
    Diagnostics& diagnostics_;
    std::map<std::string, DWORD> paths_;
    std::vector<std::string> samplers_;   // in the order of their declaration
    std::map<std::string, DWORD> sampler_registers_;
    std::string last_error_;
};

}   // namespace

std::optional<EffectFile> BuildEffect(const std::string& path, Diagnostics& diagnostics) {
    const Tokens tokens = Preprocess(path, diagnostics);
    if (diagnostics.Failed()) return std::nullopt;
    ParsedEffect effect = ParseEffect(tokens, diagnostics);
    if (diagnostics.Failed()) return std::nullopt;
    AdaptCode(effect, diagnostics);
    EffectBuilder builder(effect, diagnostics);
    for (std::size_t i = 0; i < effect.requests.size(); ++i) builder.BuildFunction(i);
    if (diagnostics.Failed()) return std::nullopt;
    if (const std::string fault = FindEffectFault(effect.file); !fault.empty()) {
        diagnostics.Error(tokens.back().place, ErrorCode::Unsupported, fault);
        return std::nullopt;
    }
    return std::move(effect.file);
}

}   // namespace sparkrig::fxc
