// make_textures FOLDER: draws every sample texture. Ends with 0 done, 1 a file that cannot be written, 2 wrong usage.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>

#include "base/usage.h"
#include "tools/textures/flipbook.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

/// False after a message when the file cannot be written.
bool Write(const std::string& path, const Bytes& bytes) {
    if (sparkrig::WriteFile(path, bytes)) return true;
    std::fprintf(stderr, "make_textures: can not write %s\n", path.c_str());
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
    CLI::App app("Draws the sample textures as PNG files, the same bytes each time.", "make_textures");
    sparkrig::BeginUsage(app);
    std::string folder;
    app.add_option("FOLDER", folder, "takes the pictures; made when missing")->required();
    if (const auto end = sparkrig::ParseWords(app, {argv + 1, argv + argc})) return Print(*end);
    MakeFolder(folder);
    return WriteSprites(folder) && WriteFlipbooks(folder) ? 0 : 1;
}
