#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/system/system.h"

namespace sparkrig {

bool MakeFolder(const char* name) {
    struct stat existing = {};
    if (stat(name, &existing) == 0) {
        errno = ENOTDIR;   // where it is something else
        return S_ISDIR(existing.st_mode);
    }
    constexpr mode_t kForEverybody = 0777;   // less the user's mask
    return mkdir(name, kForEverybody) == 0;
}

bool IsSpecialFile(const char* name) {
    struct stat existing = {};
    return stat(name, &existing) == 0 && !S_ISREG(existing.st_mode);
}

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

}   // namespace sparkrig
