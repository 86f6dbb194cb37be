#include "tools/fxc/hlsl_compiler.h"

#define ENABLE_HLSL
#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>
#include <glslang/SPIRV/spirv.hpp>

#include <charconv>
#include <string_view>

namespace sparkrig::fxc {

namespace {

constexpr auto kMessages =
    static_cast<EShMessages>(EShMsgReadHlsl | EShMsgHlslDX9Compatible | EShMsgSpvRules | EShMsgHlslLegalization);
constexpr int kDefaultVersion = 100;

struct Process {
    Process() { glslang::InitializeProcess(); }
    ~Process() { glslang::FinalizeProcess(); }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
};

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\r')) text.remove_suffix(1);
    return text;
}

bool TakeNumber(std::string_view& text, int& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end == text.data() + text.size() || *end != ':') return false;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()) + 1);
    return true;
}

/// "ERROR: FILE:LINE: 'token' : text", or without a place.
CodeError ParseMessage(std::string_view line) {
    CodeError error;
    std::string_view rest = line;
    if (!TakeNumber(rest, error.file) || !TakeNumber(rest, error.line)) {
        error.file = -1;
        rest = line;
    }
    constexpr std::string_view kNoToken = "'' :";
    rest = Trimmed(rest);
    if (rest.starts_with(kNoToken)) rest.remove_prefix(kNoToken.size());
    error.message = Trimmed(rest);
    return error;
}

CodeError FirstError(std::string_view log) {
    constexpr std::string_view kMark = "ERROR: ";
    const std::size_t start = log.find(kMark);
    if (start == std::string_view::npos) {
        CodeError error;
        const std::string_view line = Trimmed(log.substr(0, log.find('\n')));
        error.message = line.empty() ? "the function can not be compiled" : std::string(line);
        return error;
    }
    log.remove_prefix(start + kMark.size());
    if (log.find("Recursion detected") != std::string_view::npos) {
        CodeError error;
        error.message = "a function calls itself";
        return error;
    }
    return ParseMessage(log.substr(0, log.find('\n')));
}

bool Fail(const char* log, CodeError& error) {
    error = FirstError(log);
    return false;
}

/// The remainder of a division takes the sign of the dividend; the compiler asks for that of the divisor.
void MendRemainders(std::vector<std::uint32_t>& spirv) {
    constexpr std::size_t kHeader = 5;
    for (std::size_t at = kHeader; at < spirv.size();) {
        const std::uint32_t words = spirv[at] >> spv::WordCountShift, code = spirv[at] & spv::OpCodeMask;
        if (words == 0) return;
        if (code == spv::OpFMod) spirv[at] = words << spv::WordCountShift | spv::OpFRem;
        if (code == spv::OpSMod) spirv[at] = words << spv::WordCountShift | spv::OpSRem;
        at += words;
    }
}

}   // namespace

bool IsGoodGlsl(const std::string& text, FunctionStage stage) {
    const EShLanguage language = stage == FunctionStage::Vertex ? EShLangVertex : EShLangFragment;
    constexpr int kVersion = 450;
    glslang::TShader shader(language);
    const char* const source = text.c_str();
    shader.setStrings(&source, 1);
    return shader.parse(GetDefaultResources(), kVersion, ECoreProfile, false, false, EShMsgDefault);
}

bool CompileFunction(const std::string& text, const std::string& entry, FunctionStage stage,
                     std::vector<std::uint32_t>& spirv, CodeError& error) {
    static const Process process;
    const EShLanguage language = stage == FunctionStage::Vertex ? EShLangVertex : EShLangFragment;
    glslang::TShader shader(language);
    const char* const source = text.c_str();
    shader.setStrings(&source, 1);
    shader.setSourceEntryPoint(entry.c_str());
    shader.setEntryPoint("fxc_main");   // its own name may be one that the language keeps for itself
    shader.setEnvInput(glslang::EShSourceHlsl, language, glslang::EShClientOpenGL, kDefaultVersion);
    shader.setEnvClient(glslang::EShClientOpenGL, glslang::EShTargetOpenGL_450);
    shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_0);
    shader.setEnvTargetHlslFunctionality1();
    shader.setAutoMapLocations(true);
    shader.setAutoMapBindings(true);
    if (!shader.parse(GetDefaultResources(), kDefaultVersion, false, kMessages))
        return Fail(shader.getInfoLog(), error);

    glslang::TProgram program;
    program.addShader(&shader);
    // A missing start function is only warned about.
    const bool linked = program.link(kMessages) && program.mapIO();
    if (!linked || std::string_view(program.getInfoLog()).find("Entry point not found") != std::string_view::npos)
        return Fail(program.getInfoLog(), error);

    spv::SpvBuildLogger logger;
    glslang::SpvOptions options;
    options.disableOptimizer = false;
    glslang::GlslangToSpv(*program.getIntermediate(language), spirv, &logger, &options);
    const std::string log = logger.getAllMessages();
    const bool complete = !spirv.empty() && log.find("Missing functionality") == std::string::npos &&
                          log.find("error:") == std::string::npos;
    if (complete) MendRemainders(spirv);
    return complete || Fail(log.c_str(), error);
}

}   // namespace sparkrig::fxc
