// fxc FILE.fx -o FILE.fxo: compiles an effect, to the standard output for "-". fxc --info FILE: prints what it holds.
// Ends with 0 done, 1 errors (on the error stream), 2 wrong usage.
#include <sys/resource.h>

#include <fmt/format.h>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "base/usage.h"
#include "platform/d3dx/effect_bytes.h"
#include "platform/system/system.h"
#include "tools/fxc/crash_report.h"
#include "tools/fxc/effect_builder.h"
#include "tools/fxc/effect_description.h"

namespace {

constexpr int kDone = 0, kErrors = 1;

/// What the libraries below do with a malformed function has no bound of its own.
void LimitResources() {
    constexpr rlim_t kSeconds = 30;
    const rlimit time = {kSeconds, kSeconds};
    setrlimit(RLIMIT_CPU, &time);
#if !defined(SPARKRIG_SANITIZE)   // whose shadow memory is larger than any limit
    constexpr rlim_t kBytes = rlim_t{2} * 1024 * 1024 * 1024;
    const rlimit memory = {kBytes, kBytes};
    setrlimit(RLIMIT_AS, &memory);
#endif
    const rlimit core = {0, 0};
    setrlimit(RLIMIT_CORE, &core);
    const rlimit file = {sparkrig::kMostEffectBytes, sparkrig::kMostEffectBytes};
    setrlimit(RLIMIT_FSIZE, &file);
    std::signal(SIGXFSZ, SIG_IGN);   // a write is refused instead
}

bool WriteOutput(const std::string& output, const std::vector<sparkrig::BYTE>& bytes) {
    if (output != "-") return sparkrig::ReplaceFileContent(output.c_str(), bytes.data(), bytes.size());
    return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0;
}

int Compile(const std::string& input, const std::string& output) {
    sparkrig::fxc::Diagnostics diagnostics;
    const std::optional<sparkrig::EffectFile> effect = sparkrig::fxc::BuildEffect(input, diagnostics);
    std::fputs(diagnostics.Text().c_str(), stderr);
    if (!effect) return kErrors;
    const std::vector<sparkrig::BYTE> bytes = sparkrig::WriteEffectFile(*effect);
    if (WriteOutput(output, bytes)) return kDone;
    const bool too_large = bytes.size() > sparkrig::kMostEffectBytes;
    const std::string reason = too_large ? fmt::format("{} bytes are more than the {} that an effect may have",
                                                       bytes.size(), sparkrig::kMostEffectBytes)
                                         : std::strerror(errno);
    fmt::print(stderr, "{}(1): error X1000: can not write the file: {}\n", output == "-" ? input : output, reason);
    return kErrors;
}

/// What a source, or a compiled effect, holds.
int Describe(const std::string& input) {
    sparkrig::EffectFile effect;
    std::vector<sparkrig::BYTE> bytes;
    std::string fault;
    if (!sparkrig::ReadEffectBytes(input, bytes) || !sparkrig::ReadEffectFile(bytes, effect, fault)) {
        if (sparkrig::IsCompiledEffect(bytes)) {
            fmt::print(stderr, "{}(1): error X1000: {}\n", input, fault);
            return kErrors;
        }
        sparkrig::fxc::Diagnostics diagnostics;
        std::optional<sparkrig::EffectFile> built = sparkrig::fxc::BuildEffect(input, diagnostics);
        std::fputs(diagnostics.Text().c_str(), stderr);
        if (!built) return kErrors;
        effect = std::move(*built);
    } else {
        std::fputs(effect.warnings.c_str(), stderr);
    }
    fmt::print("{}", sparkrig::fxc::DescribeEffect(effect));
    return sparkrig::EndAfterOutput("fxc", kDone);
}

int Run(const std::string& input, const std::string& output) try {
    LimitResources();
    return output.empty() ? Describe(input) : Compile(input, output);
} catch (const std::exception& error) {
    fmt::print(stderr, "{}(1): error X1000: {}\n", input, error.what());
    return kErrors;
}

}   // namespace

int main(int argc, char** argv) try {
    CLI::App app("Compiles an effect file (.fx) to the form that the program loads (.fxo).", "fxc");
    sparkrig::BeginUsage(app);
    app.footer("Ends with 0 done, 1 errors, 2 wrong usage.");
    std::string input, output;
    bool info = false;
    app.add_option("FILE", input, "the effect")->required();
    app.add_option("-o", output, "write the compiled effect to this file; - for the standard output")
        ->type_name("FILE");
    app.add_flag("--info", info, "print what the effect holds");
    if (const auto end = sparkrig::ParseWords(app, {argv + 1, argv + argc})) return Print(*end);
    if (info == !output.empty()) return Print(sparkrig::WrongUsage(app, "either -o or --info is needed"));
    if (sparkrig::RealPath(input.c_str()) == sparkrig::RealPath(output.c_str()))
        return Print(sparkrig::WrongUsage(app, "the compiled effect would replace its source"));
    return sparkrig::fxc::RunGuarded([&] { return Run(input, output); }, kErrors);
} catch (const std::exception& error) {
    fmt::print(stderr, "fxc: {}\n", error.what());
    return kErrors;
}
