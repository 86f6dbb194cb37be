// pack FILE --mode N | pack --list FILE... | pack --unpack FILE. Ends with 0 done, 1 findings, 2 wrong usage.
#include <algorithm>
#include <cstdio>

#include "base/log.h"
#include "base/random.h"
#include "base/usage.h"
#include "platform/system/system.h"
#include "tools/pack/commands.h"

namespace {

constexpr int kDone = 0, kFindings = 1;

struct Arguments {
    std::vector<std::string> files;
    int mode = 0;
    bool list = false, unpack = false;
};

void Describe(CLI::App& app, Arguments& arguments) {
    sparkrig::BeginUsage(app);
    app.footer("Modes:\n" + sparkrig::PackModesText() + "Ends with 0 done, 1 findings, 2 wrong usage.");
    app.add_option("FILE", arguments.files, "the files; one, unless --list is given");
    app.add_option("--mode", arguments.mode, "pack with this mode, a packed file anew")
        ->type_name("N")
        ->check(sparkrig::WholeNumberBetween(sparkrig::kFirstPackMode, sparkrig::kLastPackMode));
    app.add_flag("--list", arguments.list, "print mode, packed and plain size");
    app.add_flag("--unpack", arguments.unpack, "make a packed file plain again");
}

/// What is wrong with them; empty for nothing.
std::string Fault(const Arguments& arguments) {
    const int tasks = (arguments.mode != 0) + arguments.list + arguments.unpack;
    if (tasks != 1) return "one of --mode, --list and --unpack is needed";
    if (arguments.files.empty()) return "a file is needed";
    return arguments.files.size() > 1 && !arguments.list ? "one file at a time" : "";
}

int Run(const Arguments& arguments) {
    if (arguments.list)
        return std::count_if(arguments.files.begin(), arguments.files.end(), sparkrig::ListFile) ==
                       static_cast<std::ptrdiff_t>(arguments.files.size())
                   ? kDone
                   : kFindings;
    const std::string& file = arguments.files.front();
    return (arguments.unpack ? sparkrig::UnpackFile(file) : sparkrig::PackFile(file, arguments.mode)) ? kDone
                                                                                                      : kFindings;
}

}   // namespace

int main(int argc, char** argv) try {
    Arguments arguments;
    CLI::App app("Packs and unpacks data files in place: beside the file, then renamed over it.", "pack");
    Describe(app, arguments);
    if (const auto end = sparkrig::ParseWords(app, {argv + 1, argv + argc})) return Print(*end);
    if (const std::string fault = Fault(arguments); !fault.empty()) return Print(sparkrig::WrongUsage(app, fault));
    sparkrig::SilenceLog();   // what is reported is printed
    sparkrig::SeedRandom(static_cast<std::uint32_t>(sparkrig::QueryPerformanceCounter()));
    return sparkrig::EndAfterOutput("pack", Run(arguments));
} catch (const std::exception& error) {
    std::fprintf(stderr, "pack: %s\n", error.what());
    return kFindings;
}
