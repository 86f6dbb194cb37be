#include "base/file_validator.h"

#include <cstring>

namespace sparkrig {

bool CFileValidator::CheckPath(const char* path) const {
    if (std::strncmp(path, "\\\\", 2) == 0) {
        directories_.Warning("Network file accessed: '%s'", path);
        return false;
    }
    const bool absolute = std::strlen(path) >= 2 && (path[1] == ':' || path[0] == '\\' || path[0] == '/');
    if (absolute) directories_.Warning("Absolute file path: '%s'", path);
    return !absolute;
}

}   // namespace sparkrig
