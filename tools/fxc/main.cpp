// fxc INPUT.fx OUTPUT.fxo: compiles an effect, to the standard output for "-". Ends with 0 done, 1 errors (on the error
// stream), 2 wrong usage.
#include <sys/resource.h>

#include <fmt/format.h>
#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "platform/d3dx/effect_bytes.h"
#include "platform/system/system.h"
#include "tools/fxc/effect_builder.h"

namespace {

constexpr int kDone = 0, kErrors = 1, kWrongUsage = 2;

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
    if (!effect) {
        std::fputs(diagnostics.Text().c_str(), stderr);
        return kErrors;
    }
    const std::vector<sparkrig::BYTE> bytes = sparkrig::WriteEffectFile(*effect);
    if (WriteOutput(output, bytes)) return kDone;
    const bool too_large = bytes.size() > sparkrig::kMostEffectBytes;
    const std::string reason = too_large ? fmt::format("{} bytes are more than the {} that an effect may have",
                                                       bytes.size(), sparkrig::kMostEffectBytes)
                                         : std::strerror(errno);
    fmt::print(stderr, "{}(1): error X1000: can not write the file: {}\n", output == "-" ? input : output, reason);
    return kErrors;
}

}   // namespace

int main(int argc, char** argv) try {
    CLI::App app("Compiles an effect file (.fx) to the form that the program loads (.fxo).", "fxc");
    std::string input, output;
    app.add_option("INPUT.fx", input, "The effect")->required();
    app.add_option("OUTPUT.fxo", output, "The compiled effect; - for the standard output")->required();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kDone : kWrongUsage;
    }
    LimitResources();
    return Compile(input, output);
} catch (const std::exception& error) {
    fmt::print(stderr, "fxc: {}\n", error.what());
    return kErrors;
}
