// make_textures OUTPUT_DIR: draws every sample texture.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>

#include "tools/textures/flipbook.h"

namespace {

constexpr int kCannotWrite = 3;

using Bytes = std::vector<std::uint8_t>;

/// False after a message when the file cannot be written.
bool Write(const std::string& path, const Bytes& bytes) {
    if (sparkrig::WriteFile(path, bytes)) return true;
    std::fprintf(stderr, "Can not write %s\n", path.c_str());
    return false;
}

void MakeFolder(const std::string& folder) {
    std::error_code failure;   // what goes wrong shows when a file is written
    std::filesystem::create_directories(folder, failure);
}

bool WriteSprites(const std::string& folder) {
    for (const sparkrig::Sprite& sprite : sparkrig::AllSprites())
        if (!Write(folder + "/" + sprite.name + ".png", sparkrig::EncodePng(sparkrig::Render(sprite)))) return false;
    return true;
}

bool WriteFlipbooks(const std::string& folder) {
    for (const sparkrig::Flipbook& flipbook : sparkrig::AllFlipbooks()) {
        const std::string path = folder + "/" + flipbook.name;
        MakeFolder(path);
        for (int i = 0; i < flipbook.frames; ++i) {
            std::string file = sparkrig::FrameFile(flipbook, i);
            std::ranges::replace(file, '\\', '/');
            file.insert(0, folder + "/");
            if (!Write(file, sparkrig::EncodePng(sparkrig::RenderFrame(flipbook, i)))) return false;
        }
        const std::string list = sparkrig::FrameList(flipbook);
        if (!Write(path + ".ifl", Bytes(list.begin(), list.end()))) return false;
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
    MakeFolder(folder);
    return WriteSprites(folder) && WriteFlipbooks(folder) ? 0 : kCannotWrite;
}
