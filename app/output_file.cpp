#include "app/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb_image_write.h>
#pragma GCC diagnostic pop

namespace sparkrig {

namespace {

bool Complain(const std::string& name) {
    std::fprintf(stderr, "sparkrig: %s cannot be written: %s\n", name.c_str(), std::strerror(errno));
    return false;
}

bool WriteWhole(const std::string& name, const std::string& content) {
    std::FILE* file = std::fopen(name.c_str(), "wb");
    if (!file) return false;
    const bool written = std::fwrite(content.data(), 1, content.size(), file) == content.size();
    return std::fclose(file) == 0 && written;
}

std::string OpaqueRgb(const Picture& picture) {
    std::string bytes;
    bytes.reserve(picture.pixels.size() * 3);
    for (const D3DCOLOR pixel : picture.pixels) {
        for (const int shift : {16, 8, 0}) bytes += static_cast<char>(pixel >> shift & 0xFF);
    }
    return bytes;
}

void AppendTo(void* content, void* data, int size) {
    static_cast<std::string*>(content)->append(static_cast<const char*>(data), static_cast<std::size_t>(size));
}

}   // namespace

bool WriteOutputFile(const std::string& name, const std::string& content) {
    struct stat existing = {};
    const bool is_special = stat(name.c_str(), &existing) == 0 && !S_ISREG(existing.st_mode);   // /dev/stdout and such
    const std::string beside = name + ".part";
    if (is_special) {
        if (!WriteWhole(name, content)) return Complain(name);
    } else if (!WriteWhole(beside, content) || std::rename(beside.c_str(), name.c_str()) != 0) {
        const int reason = errno;
        std::remove(beside.c_str());
        errno = reason;
        return Complain(name);
    }
    std::printf("%s\n", name.c_str());
    std::fflush(stdout);
    return true;
}

bool WritePng(const std::string& name, const Picture& picture) {
    const std::string rgb = OpaqueRgb(picture);
    const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
    std::string png;
    stbi_write_png_to_func(AppendTo, &png, width, height, 3, rgb.data(), width * 3);
    return WriteOutputFile(name, png);
}

bool MakeOutputFolder(const std::string& name) {
    struct stat existing = {};
    if (stat(name.c_str(), &existing) == 0 && S_ISDIR(existing.st_mode)) return true;
    constexpr mode_t kForEverybody = 0777;   // less the user's mask
    return mkdir(name.c_str(), kForEverybody) == 0 || Complain(name);
}

}   // namespace sparkrig
