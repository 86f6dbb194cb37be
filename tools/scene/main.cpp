// scene info FILE | scene dump FILE --time T [--geometry] | scene convert IN OUT | scene check FILE...
// Ends with 0 done, 1 findings, 2 wrong usage.
#include <cstdio>
#include <limits>

#include "base/log.h"
#include "base/usage.h"
#include "tools/scene/commands.h"

namespace {

constexpr int kDone = 0, kFindings = 1;

constexpr double kLongest = std::numeric_limits<float>::max();   // seconds

struct Arguments {
    std::string in, out;
    std::vector<std::string> files;
    float time = 0;
    bool geometry = false;
};

void Describe(CLI::App& app, Arguments& arguments) {
    sparkrig::BeginUsage(app);
    app.footer("Reports go to the error stream. Ends with 0 done, 1 findings, 2 wrong usage.");
    CLI::App* info = app.add_subcommand("info", "tell what is in a scene");
    info->add_option("FILE", arguments.in, "a text or binary scene")->required();
    CLI::App* dump = app.add_subcommand("dump", "print a scene as JSON");
    dump->add_option("FILE", arguments.in, "a text or binary scene")->required();
    dump->add_option("--time", arguments.time, "the time that the scene is set to, in seconds")
        ->type_name("T")
        ->check(sparkrig::NumberBetween(-kLongest, kLongest));
    dump->add_flag("--geometry", arguments.geometry, "print vertices and faces, too");
    CLI::App* convert = app.add_subcommand("convert", "write a scene in the newest binary form");
    convert->add_option("IN", arguments.in, "a text or binary scene")->required();
    convert->add_option("OUT", arguments.out, "the file to make or to replace")->required();
    CLI::App* check = app.add_subcommand("check", "say what is wrong with scenes");
    check->add_option("FILE", arguments.files, "text or binary scenes")->required();
}

bool Run(const CLI::App& app, const Arguments& arguments) {
    if (app.got_subcommand("info")) return sparkrig::PrintSceneInfo(arguments.in);
    if (app.got_subcommand("dump")) return sparkrig::PrintSceneDump(arguments.in, arguments.time, arguments.geometry);
    if (app.got_subcommand("convert")) return sparkrig::ConvertScene(arguments.in, arguments.out);
    return sparkrig::CheckScenes(arguments.files);
}

}   // namespace

int main(int argc, char** argv) try {
    Arguments arguments;
    CLI::App app("Tells, prints, converts and checks scene files.", "scene");
    Describe(app, arguments);
    if (const auto end = sparkrig::ParseWords(app, {argv + 1, argv + argc})) return Print(*end);
    sparkrig::SilenceLog();   // what is reported is printed
    return sparkrig::EndAfterOutput("scene", Run(app, arguments) ? kDone : kFindings);
} catch (const std::exception& error) {
    std::fprintf(stderr, "scene: %s\n", error.what());
    return kFindings;
}
