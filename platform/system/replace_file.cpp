// The one way a user's file gets new content: written beside it, then renamed over it.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

#include "platform/system/system.h"

namespace sparkrig {
namespace {

/// A name for the file that is written beside `path`, for mkstemp: short, as that of `path` may be as long as names can
/// be.
std::string NameBeside(const std::string& path) { return path.substr(0, path.rfind('/') + 1) + ".sparkrig-XXXXXX"; }

bool WriteAll(int descriptor, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(descriptor, data, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

mode_t NewFileMode() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

/// Owner and permissions of the old file. Giving a file away is a right of its own: an owner that cannot be kept is an
/// error only where it differs from ours.
bool CopyOwnerAndMode(int descriptor, const std::string& path) {
    struct stat old {};
    if (stat(path.c_str(), &old) != 0) return fchmod(descriptor, NewFileMode()) == 0;
    struct stat fresh {};
    if (fstat(descriptor, &fresh) != 0) return false;
    const bool same = fresh.st_uid == old.st_uid && fresh.st_gid == old.st_gid;
    if (!same && fchown(descriptor, old.st_uid, old.st_gid) != 0) return false;
    return fchmod(descriptor, old.st_mode & 07777) == 0;
}

/// A device or a pipe, over which nothing may be renamed.
bool WriteIntoSpecialFile(const std::string& path, const void* data, std::size_t size) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool done = WriteAll(descriptor, static_cast<const char*>(data), size);
    const int reason = errno;
    const bool closed = close(descriptor) == 0;
    if (!done) errno = reason;
    return done && closed;
}

}   // namespace

bool ReplaceFileContent(const char* name, const void* data, std::size_t size) {
    const std::string path = RealPath(name);   // so that a link survives the renaming
    if (IsSpecialFile(path.c_str())) return WriteIntoSpecialFile(path, data, size);
    std::string beside = NameBeside(path);
    const int descriptor = mkstemp(beside.data());
    if (descriptor < 0) return false;

    bool done = WriteAll(descriptor, static_cast<const char*>(data), size) && CopyOwnerAndMode(descriptor, path) &&
                fsync(descriptor) == 0;
    int reason = errno;
    if (close(descriptor) != 0 && done) {
        done = false;
        reason = errno;
    }
    if (done && std::rename(beside.c_str(), path.c_str()) == 0) return true;
    if (done) reason = errno;
    unlink(beside.c_str());
    errno = reason;
    return false;
}

}   // namespace sparkrig
