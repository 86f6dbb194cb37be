#include "tools/fxc/effect_builder.h"

#include <algorithm>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "platform/d3dx/effect_check.h"
#include "tools/fxc/code_adaption.h"
#include "tools/fxc/crash_report.h"
#include "tools/fxc/effect_parser.h"
#include "tools/fxc/entry_functions.h"
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
    {"vs_1_1", 0x0101},  {"vs_2_0", 0x0200}, {"vs_2_a", 0x0200}, {"vs_2_sw", 0x0200}, {"vs_3_0", 0x0300},
    {"vs_3_sw", 0x0300}, {"ps_1_1", 0x0101}, {"ps_1_2", 0x0102}, {"ps_1_3", 0x0103},  {"ps_1_4", 0x0104},
    {"ps_2_0", 0x0200},  {"ps_2_a", 0x0200}, {"ps_2_b", 0x0200}, {"ps_2_sw", 0x0200}, {"ps_3_0", 0x0300},
    {"ps_3_sw", 0x0300}, {"vs_2_x", 0x0200}, {"ps_2_x", 0x0200},
};
// What later compilers make for the hardware of version 2.
constexpr std::string_view kLaterVersion2 = "_4_0_level_9_";

class EffectBuilder {
  public:
    EffectBuilder(ParsedEffect& effect, Diagnostics& diagnostics)
        : effect_(effect), diagnostics_(diagnostics), text_(CodeText(effect.code)) {
        for (const auto& [name, parameter] : effect.places) {
            if (!effect.samplers.contains(name)) continue;
            samplers_.push_back(name);
            const auto found = effect.sampler_registers.find(parameter);
            if (found != effect.sampler_registers.end()) sampler_registers_[name] = found->second;
        }
        // In the order of their declaration, in which they take their registers.
        std::ranges::sort(samplers_, {}, [&](const std::string& name) { return effect.places.at(name); });
    }

    void BuildFunction(std::size_t index) {
        const FunctionRequest& request = effect_.requests[index];
        EffectFunction& function = effect_.file.functions[index];
        NameCrash(diagnostics_, request.place, request.entry);
        const auto* target = std::ranges::find_if(kTargets, [&](const Target& t) { return request.target == t.name; });
        const bool later = request.target.find(kLaterVersion2) == 2;
        const bool known = later || target != std::end(kTargets);
        // A function for an unknown version is still compiled: what is wrong in it is wrong.
        function.version = later ? 0x0200 : known ? target->version : 0x0300;
        function.call = CallOf(request);
        if (!function.unsupported.empty()) return LeaveOut(request, function);
        std::vector<std::uint32_t> spirv;
        CodeError code_error;
        if (!CompileFunction(text_, EntryName(index), function.stage, spirv, code_error))
            return ErrorInCode(request, code_error);
        Translation translation;
        std::string error;
        const TranslationRequest wanted{function.stage, function.version, samplers_, sampler_registers_};
        if (!TranslateFunction(spirv, wanted, extra_, translation, error)) return Error(request, error);
        if (!known) translation.unsupported = fmt::format("the version '{}' is unknown", request.target);
        if (translation.unsupported.empty() && !IsGoodGlsl(translation.code.glsl, function.stage))
            return Error(request, kNotTranslatable);
        if (!translation.missing_inputs.empty())
            diagnostics_.Warning(request.place, ErrorCode::Unsupported,
                                 fmt::format("{}: no vertex has {}: it reads (0, 0, 0, 1)", request.entry,
                                             fmt::join(translation.missing_inputs, ", ")));
        function.unsupported = translation.unsupported;
        if (!function.unsupported.empty()) return LeaveOut(request, function);
        Bind(request, translation, function);
    }

  private:
    static std::string CallOf(const FunctionRequest& request) {
        if (request.target.empty()) return request.entry;
        std::string text = request.target + " " + request.entry + "(";
        for (const Tokens& argument : request.arguments) {
            if (&argument != &request.arguments.front()) text += ", ";
            for (const Token& token : argument) text += token.text;
        }
        return text + ")";
    }

    void Error(const FunctionRequest& request, const std::string& message) {
        diagnostics_.Error(request.place, ErrorCode::Code, fmt::format("{}: {}", request.entry, message));
    }

    /// The effect is made without the function; whoever asks why a technique is not valid gets the same message.
    void LeaveOut(const FunctionRequest& request, EffectFunction& function) {
        const std::size_t before = diagnostics_.Text().size();
        diagnostics_.Warning(request.place, ErrorCode::Unsupported,
                             fmt::format("{}: {}", request.entry, function.unsupported));
        const std::string line = diagnostics_.Text().substr(before);
        if (!line.empty()) function.unsupported = line.substr(0, line.size() - 1);
    }

    /// Many functions share one fault in the code: it is reported once.
    void ErrorInCode(const FunctionRequest& request, const CodeError& error) {
        if (error.file < 0) return Error(request, error.message);
        const std::string text = fmt::format("{}:{}:{}", error.file, error.line, error.message);
        if (std::exchange(last_error_, text) == text) return;
        if (const Token* token = FindToken(error))
            diagnostics_.Error(token->place, ErrorCode::Code, error.message);
        else
            diagnostics_.ErrorInLine(error.file, error.line, ErrorCode::Code, error.message);
    }

    /// The token that a message is about, "'TOKEN' : ...", when its line has it.
    const Token* FindToken(const CodeError& error) const {
        if (!error.message.starts_with('\'')) return nullptr;
        const std::string text = error.message.substr(1, error.message.find('\'', 1) - 1);
        const auto found = std::ranges::find_if(effect_.code, [&](const Token& token) {
            return token.place.file == error.file && token.place.line == error.line && token.text == text;
        });
        return found == effect_.code.end() ? nullptr : &*found;
    }

    void Bind(const FunctionRequest& request, Translation& translation, EffectFunction& function) {
        for (const GlobalPlace& place : translation.globals) {
            const auto found = effect_.places.find(place.path);
            if (found == effect_.places.end()) return Error(request, fmt::format("'{}' is no parameter", place.path));
            const EffectVariable& variable = effect_.file.parameters[found->second].variable;
            if (place.bytes > GlobalBytes(variable))
                return Error(request, fmt::format("'{}' has a layout that is not supported", place.path));
            function.globals.push_back({found->second, place.offset});
        }
        for (const SamplerPlace& place : translation.samplers)
            function.samplers.push_back({effect_.places.at(place.name), place.sampler});
        function.code = std::move(translation.code);
    }

    ParsedEffect& effect_;
    Diagnostics& diagnostics_;
    std::string text_;   // all of the code
    ExtraVaryings extra_;
    std::vector<std::string> samplers_;   // in the order of their declaration
    std::map<std::string, DWORD> sampler_registers_;
    std::string last_error_;
};

/// What is warned of, but the functions that can not run: those keep their reason.
std::string OtherWarnings(const EffectFile& file, const std::string& text) {
    std::string others;
    for (std::size_t start = 0, end = 0; (end = text.find('\n', start)) != std::string::npos; start = end + 1) {
        const std::string line = text.substr(start, end - start);
        if (std::ranges::find(file.functions, line, &EffectFunction::unsupported) == file.functions.end())
            others += line + "\n";
    }
    return others;
}

}   // namespace

std::optional<EffectFile> BuildEffect(const std::string& path, Diagnostics& diagnostics) {
    const Tokens tokens = Preprocess(path, diagnostics);
    if (diagnostics.Failed()) return std::nullopt;
    ParsedEffect effect = ParseEffect(tokens, diagnostics);
    if (diagnostics.Failed()) return std::nullopt;
    AddEntryFunctions(effect, diagnostics);
    AdaptCode(effect, diagnostics);
    if (diagnostics.Failed()) return std::nullopt;
    EffectBuilder builder(effect, diagnostics);
    for (std::size_t i = 0; i < effect.requests.size(); ++i) builder.BuildFunction(i);
    if (diagnostics.Failed()) return std::nullopt;
    if (const std::string fault = FindEffectFault(effect.file); !fault.empty()) {
        diagnostics.Error(tokens.back().place, ErrorCode::Unsupported, fault);
        return std::nullopt;
    }
    effect.file.warnings = OtherWarnings(effect.file, diagnostics.Text());
    return std::move(effect.file);
}

}   // namespace sparkrig::fxc
