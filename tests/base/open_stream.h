// Damages the stream that a file has open, as a disk that goes away would.
#pragma once
#include <fcntl.h>
#include <unistd.h>

#include <filesystem>

namespace sparkrig {

/// The descriptor under which this process has the file open, or -1.
inline int DescriptorOf(const std::filesystem::path& file) {
    const std::filesystem::path wanted = std::filesystem::canonical(file);
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        if (std::filesystem::read_symlink(entry, error) == wanted) return std::stoi(entry.path().filename().string());
    }
    return -1;
}

/// Puts a pipe in the place of the open file: it can be neither positioned nor cut.
inline void ReplaceByPipe(const std::filesystem::path& file) {
    const int descriptor = DescriptorOf(file);
    int ends[2];
    if (pipe(ends) != 0) return;
    dup2(ends[1], descriptor);
    close(ends[0]);
    close(ends[1]);
}

/// Puts another file, or the same one opened with other rights, in the place of the open one.
inline void ReplaceByFile(const std::filesystem::path& file, const char* other, int flags) {
    const int descriptor = DescriptorOf(file);
    const int fresh = open(other, flags);
    dup2(fresh, descriptor);
    close(fresh);
}

}   // namespace sparkrig
