// models FOLDER: writes the sample scenes. Ends with 0 done, 1 a file that cannot be written, 2 wrong usage.
#include <cstdio>
#include <fstream>

#include "tools/models/scenes.h"

int main(int argc, char** argv) {
    if (argc != 2 || *argv[1] == '-') {
        std::fprintf(stderr, "usage: models FOLDER\n");
        return 2;
    }
    for (const auto scenes : {sparkrig::SampleScenes(), sparkrig::EffectScenes()}) {
        for (const sparkrig::SampleScene& scene : scenes) {
            const std::string name = std::string(argv[1]) + "/" + scene.file;
            std::ofstream file(name, std::ios::binary);
            if (file << scene.make() << std::flush) continue;
            std::fprintf(stderr, "models: can not write %s\n", name.c_str());
            return 1;
        }
    }
    return 0;
}
