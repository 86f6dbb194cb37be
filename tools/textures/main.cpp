// make_textures OUTPUT_DIR: draws every sample texture.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <string>

#include "tools/textures/picture.h"
#include "tools/textures/sprite.h"

namespace {

constexpr int kCannotWrite = 3;

/// False after a message when a file cannot be written.
bool WriteSprites(const std::string& folder) {
    for (const sparkrig::Sprite& sprite : sparkrig::AllSprites()) {
        const std::string path = folder + "/" + sprite.name + ".png";
        if (sparkrig::WriteFile(path, sparkrig::EncodePng(sparkrig::Render(sprite)))) continue;
        std::fprintf(stderr, "Can not write %s\n", path.c_str());
        return false;
    }
    return true;
}

}   // namespace

int main(int argc, char** argv) {
    CLI::App options("Draws the sample textures as PNG files, the same bytes each time.", "make_textures");
    std::string folder;
    options.add_option("OUTPUT_DIR", folder, "folder that takes the pictures; made when missing")->required();
    try {
        options.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return options.exit(error) == 0 ? 0 : 2;
    }
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    return WriteSprites(folder) ? 0 : kCannotWrite;
}
