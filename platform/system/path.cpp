// Names of files: data is authored with "\" and in any letter case, the disk is exact.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <memory>

#include "platform/system/ascii.h"
#include "platform/system/system.h"

namespace sparkrig {
namespace {

bool EqualIgnoringCase(const std::string& a, const char* b) {
    for (const char c : a)
        if (AsciiLower(c) != AsciiLower(*b++)) return false;   // also at b's terminator: names hold no zero
    return *b == '\0';
}

bool Exists(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

/// The entry of `folder` that equals `name` but for letter case; of several the first in byte order, so that the
/// answer does not depend on the disk's order. `name` itself when there is none.
std::string FindIgnoringCase(const std::string& folder, const std::string& name) {
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.empty() ? "." : folder.c_str()), closedir);
    std::string found;
    while (const dirent* entry = directory ? readdir(directory.get()) : nullptr)
        if (EqualIgnoringCase(name, entry->d_name) && (found.empty() || found > entry->d_name)) found = entry->d_name;
    return found.empty() ? name : found;
}

std::int32_t ClampToInt32(std::int64_t value) {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
}

}   // namespace

std::string ResolvePath(const char* name) {
    std::string path(name ? name : "");
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.empty() || Exists(path)) return path;

    std::string resolved;
    std::size_t begin = 0;
    while (begin < path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string component = path.substr(begin, end - begin);
        const bool known = component.empty() || Exists(resolved + component);
        resolved += known ? component : FindIgnoringCase(resolved, component);
        if (end < path.size()) resolved += '/';
        begin = end + 1;
    }
    return resolved;
}

std::string RealPath(const char* name) {
    const std::string path = ResolvePath(name);
    char real[PATH_MAX];
    return realpath(path.c_str(), real) ? real : path;
}

std::FILE* OpenFileStream(const char* name, const char* mode) {
    const std::string path = ResolvePath(name);
    struct stat status {};
    // A folder opens for reading and fails at the first read, a pipe would wait for its writer: neither is a file.
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return nullptr;
    }
    return std::fopen(path.c_str(), mode);
}

bool FileExists(const char* name) {
    struct stat status {};
    return stat(ResolvePath(name).c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

std::vector<std::string> ListFiles(const char* folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(ResolvePath(folder).c_str()), closedir);
    const auto is_file = [&](const dirent& entry) {
        if (entry.d_type == DT_REG || entry.d_type == DT_DIR) return entry.d_type == DT_REG;
        struct stat status {};   // a link, or a file system that does not say
        return fstatat(dirfd(directory.get()), entry.d_name, &status, 0) == 0 && !S_ISDIR(status.st_mode);
    };
    std::vector<std::string> names;
    while (const dirent* entry = directory ? readdir(directory.get()) : nullptr)
        if (is_file(*entry)) names.emplace_back(entry->d_name);
    return names;
}

std::int64_t FileModificationNanoseconds(const char* name) {
    constexpr std::int64_t kSecond = 1'000'000'000;
    struct stat status {};
    if (stat(ResolvePath(name).c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return -1;
    return status.st_mtim.tv_sec * kSecond + status.st_mtim.tv_nsec;
}

std::int32_t FileModificationTime(const char* name) {
    struct stat status {};
    if (stat(ResolvePath(name).c_str(), &status) != 0 || S_ISDIR(status.st_mode)) return -1;
    return ClampToInt32(status.st_mtime);
}

std::int32_t FileModificationTime(std::FILE* stream) {
    struct stat status {};
    return fstat(fileno(stream), &status) == 0 ? ClampToInt32(status.st_mtime) : -1;
}

bool TruncateStream(std::FILE* stream, std::int32_t size) {
    return std::fflush(stream) == 0 && ftruncate(fileno(stream), size) == 0;
}

std::string GetCurrentDirectoryA() {
    std::error_code error;
    return std::filesystem::current_path(error).string();
}

bool SetCurrentDirectoryA(const char* name) { return chdir(ResolvePath(name).c_str()) == 0; }

}   // namespace sparkrig
