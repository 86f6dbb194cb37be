#include "tools/pack/commands.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "base/file.h"
#include "platform/system/system.h"

namespace sparkrig {
namespace {

constexpr const char* kModeNames[kLastPackMode + 1] = {
    "plain",           "runs of equal records",   "LZMA, normal",          "LZMA, fast",
    "LZMA, strongest", "LZMA, normal, scrambled", "LZMA, fast, scrambled", "LZMA, strongest, scrambled",
    "scrambled only",
};

const char* ModeName(int mode) { return mode >= 0 && mode <= kLastPackMode ? kModeNames[mode] : "unknown mode"; }

bool Complain(const std::string& name, const char* what) {
    std::fprintf(stderr, "pack: %s: %s\n", name.c_str(), what);
    return false;
}

/// Runs the action on the open file; what cannot be opened, read or written is said in one line.
template <class Action>
bool WithFile(const std::string& name, bool read_only, Action action) try {
    File file;
    if (!file.Open(name.c_str(), read_only, true, false)) return Complain(name, std::strerror(errno));
    const bool well = action(file);
    file.Close();
    return well;
} catch (const ErrorMsg& error) {
    return Complain(name, error.message);
}

std::uintmax_t SizeOnDisk(const std::string& name) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(ResolvePath(name.c_str()), error);
    return error ? 0 : size;
}

}   // namespace

bool PackFile(const std::string& name, int mode) {
    return WithFile(name, false, [&](File& file) {
        const int size = file.GetSize();
        file.SetPackMode(mode);
        file.Close();
        if (size > 0)
            std::printf("%s: mode %i (%s), %i bytes packed into %ju\n", name.c_str(), mode, ModeName(mode), size,
                        SizeOnDisk(name));
        else
            std::printf("%s: mode 0 (plain), empty\n", name.c_str());
        return true;
    });
}

bool UnpackFile(const std::string& name) {
    return WithFile(name, false, [&](File& file) {
        if (file.PackMode() == 0) return Complain(name, "is plain already");
        file.SetPackMode(0);
        const int size = file.GetSize();
        file.Close();
        std::printf("%s: plain, %i bytes\n", name.c_str(), size);
        return true;
    });
}

bool ListFile(const std::string& name) {
    return WithFile(name, true, [&](File& file) {
        std::printf("%s: mode %i (%s), %ju bytes packed, %i plain\n", name.c_str(), file.PackMode(),
                    ModeName(file.PackMode()), SizeOnDisk(name), file.GetSize());
        return true;
    });
}

std::string PackModesText() {
    std::string text;
    for (int mode = kFirstPackMode; mode <= kLastPackMode; ++mode)
        text += "  " + std::to_string(mode) + "  " + ModeName(mode) + "\n";
    return text;
}

}   // namespace sparkrig
