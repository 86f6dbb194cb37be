// texture info FILE...: tells what image files hold. Ends with 0 done, 1 findings, 2 wrong usage.
#include <CLI/CLI.hpp>
#include <cstdio>

#include "base/log.h"
#include "base/nearest_word.h"
#include "tools/texture/picture_facts.h"

namespace {

constexpr int kDone = 0, kFindings = 1, kWrongUsage = 2;
constexpr char kInfo[] = "info";

int Refuse(const std::string& reason) {
    std::fprintf(stderr, "texture: %s (--help shows the options)\n", reason.c_str());
    return kWrongUsage;
}

std::string WithHint(const std::string& what, const std::string& word, const std::vector<std::string>& known) {
    const std::string nearest = sparkrig::NearestWord(word, known);
    return what + " " + word + (nearest.empty() ? "" : "; did you mean " + nearest + "?");
}

int PrintInfo(const std::vector<std::string>& files) {
    int result = kDone;
    for (const std::string& file : files) {
        std::string line;
        const bool good = sparkrig::DescribePicture(file, line);
        std::fprintf(good ? stdout : stderr, "%s: %s\n", file.c_str(), line.c_str());
        if (!good) result = kFindings;
    }
    if (std::fflush(stdout) == 0) return result;
    std::perror("texture: the output can not be written");
    return kFindings;
}

int Run(const std::string& command, const std::vector<std::string>& files, const std::vector<std::string>& extras) {
    for (const std::string& word : extras)
        if (word != "--") return Refuse(WithHint("unknown option", word.substr(0, word.find('=')), {"--help"}));
    if (command.empty()) return Refuse("a command is needed");
    if (command != kInfo) return Refuse(WithHint("unknown command", command, {kInfo}));
    return files.empty() ? Refuse("a file is needed") : PrintInfo(files);
}

}   // namespace

int main(int argc, char** argv) try {
    CLI::App app("Tells size, kind, format, levels and alpha of image files, and the frames of lists (.ifl).",
                 "texture");
    std::string command;
    std::vector<std::string> files;
    app.allow_extras();
    app.set_help_flag("--help", "show this text");
    app.footer("Ends with 0 done, 1 findings, 2 wrong usage.");
    app.add_option("COMMAND", command, "info: a line for each file");
    app.add_option("FILE", files, "image files and lists");
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::fputs(app.help().c_str(), stdout);
        return kDone;
    } catch (const CLI::ParseError& error) {
        return Refuse(error.what());
    }
    sparkrig::SilenceLog();   // what is reported is printed
    return Run(command, files, app.remaining());
} catch (const std::exception& error) {
    std::fprintf(stderr, "texture: %s\n", error.what());
    return kFindings;
}
