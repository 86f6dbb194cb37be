// texture info FILE...: tells what image files hold. Ends with 0 done, 1 findings, 2 wrong usage.
#include <cstdio>

#include "base/log.h"
#include "base/usage.h"
#include "tools/texture/picture_facts.h"

namespace {

constexpr int kDone = 0, kFindings = 1;

int PrintInfo(const std::vector<std::string>& files) {
    int result = kDone;
    for (const std::string& file : files) {
        std::string line;
        const bool good = sparkrig::DescribePicture(file, line);
        std::fprintf(good ? stdout : stderr, "%s: %s\n", file.c_str(), line.c_str());
        if (!good) result = kFindings;
    }
    return sparkrig::EndAfterOutput("texture", result);
}

}   // namespace

int main(int argc, char** argv) try {
    CLI::App app("Tells size, kind, format, levels and alpha of image files, and the frames of lists (.ifl).",
                 "texture");
    sparkrig::BeginUsage(app);
    app.footer("Ends with 0 done, 1 findings, 2 wrong usage.");
    std::vector<std::string> files;
    app.add_subcommand("info", "a line for each file")->add_option("FILE", files, "image files and lists")->required();
    if (const auto end = sparkrig::ParseWords(app, {argv + 1, argv + argc})) return Print(*end);
    sparkrig::SilenceLog();   // what is reported is printed
    return PrintInfo(files);
} catch (const std::exception& error) {
    std::fprintf(stderr, "texture: %s\n", error.what());
    return kFindings;
}
