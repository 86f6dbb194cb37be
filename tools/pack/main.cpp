// pack FILE --mode N | pack --list FILE... | pack --unpack FILE. Ends with 0 done, 1 findings, 2 wrong usage.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>

#include "base/log.h"
#include "base/nearest_word.h"
#include "base/random.h"
#include "platform/system/system.h"
#include "tools/pack/commands.h"

namespace {

constexpr int kDone = 0, kFindings = 1, kWrongUsage = 2;

int Refuse(const std::string& reason) {
    std::fprintf(stderr, "pack: %s (--help shows the options)\n", reason.c_str());
    return kWrongUsage;
}

struct Arguments {
    std::vector<std::string> files;
    int mode = 0;
    bool list = false, unpack = false;
};

void Describe(CLI::App& app, Arguments& arguments) {
    app.allow_extras();
    app.set_help_flag("--help", "show this text");
    app.footer("Modes:\n" + sparkrig::PackModesText() + "Ends with 0 done, 1 findings, 2 wrong usage.");
    app.add_option("FILE", arguments.files, "the files; one, unless --list is given");
    app.add_option("--mode", arguments.mode, "pack with this mode, a packed file anew")
        ->type_name("N")
        ->check(CLI::Range(sparkrig::kFirstPackMode, sparkrig::kLastPackMode));
    app.add_flag("--list", arguments.list, "print mode, packed and plain size");
    app.add_flag("--unpack", arguments.unpack, "make a packed file plain again");
}

/// The first word that is neither an option nor a file, with what may have been meant; empty for none.
std::string UnknownOption(const CLI::App& app) {
    std::vector<std::string> known;
    for (const CLI::Option* option : app.get_options()) known.push_back("--" + option->get_single_name());
    for (const std::string& word : app.remaining()) {
        if (word == "--") continue;
        const std::string name = word.substr(0, word.find('='));
        const std::string nearest = sparkrig::NearestWord(name, known);
        return "unknown option " + name + (nearest.empty() ? "" : "; did you mean " + nearest + "?");
    }
    return {};
}

int Run(const Arguments& arguments) {
    const int tasks = (arguments.mode != 0) + arguments.list + arguments.unpack;
    if (tasks != 1) return Refuse("one of --mode, --list and --unpack is needed");
    if (arguments.files.empty()) return Refuse("a file is needed");
    if (arguments.list)
        return std::count_if(arguments.files.begin(), arguments.files.end(), sparkrig::ListFile) ==
                       static_cast<std::ptrdiff_t>(arguments.files.size())
                   ? kDone
                   : kFindings;
    if (arguments.files.size() > 1) return Refuse("one file at a time");
    const std::string& file = arguments.files.front();
    return (arguments.unpack ? sparkrig::UnpackFile(file) : sparkrig::PackFile(file, arguments.mode)) ? kDone
                                                                                                      : kFindings;
}

}   // namespace

int main(int argc, char** argv) try {
    Arguments arguments;
    CLI::App app("Packs and unpacks data files in place: beside the file, then renamed over it.", "pack");
    Describe(app, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::fputs(app.help().c_str(), stdout);
        return kDone;
    } catch (const CLI::ParseError& error) {
        return Refuse(error.what());
    }
    if (const std::string unknown = UnknownOption(app); !unknown.empty()) return Refuse(unknown);
    sparkrig::SilenceLog();   // what is reported is printed
    sparkrig::SeedRandom(static_cast<std::uint32_t>(sparkrig::QueryPerformanceCounter()));
    return Run(arguments);
} catch (const std::exception& error) {
    std::fprintf(stderr, "pack: %s\n", error.what());
    return kFindings;
}
