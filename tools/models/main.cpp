// models FOLDER: writes the sample scenes. Ends with 0 done, 1 a file that cannot be written, 2 wrong usage.
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "base/usage.h"
#include "tools/models/scenes.h"

int main(int argc, char** argv) {
    CLI::App app("Writes the sample scenes, the same bytes each time.", "models");
    sparkrig::BeginUsage(app);
    std::string folder;
    app.add_option("FOLDER", folder, "takes the scenes; made when missing")->required();
    if (const auto end = sparkrig::ParseWords(app, {argv + 1, argv + argc})) return Print(*end);
    std::error_code failure;   // what goes wrong shows when a file is written
    std::filesystem::create_directories(folder, failure);
    for (const auto scenes : {sparkrig::SampleScenes(), sparkrig::EffectScenes()}) {
        for (const sparkrig::SampleScene& scene : scenes) {
            const std::string name = folder + "/" + scene.file;
            std::ofstream file(name, std::ios::binary);
            if (file << scene.make() << std::flush) continue;
            std::fprintf(stderr, "models: can not write %s\n", name.c_str());
            return 1;
        }
    }
    return 0;
}
