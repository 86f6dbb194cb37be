#include "gfx/texture_paths.h"

#include "platform/system/system.h"

namespace sparkrig {

std::string JoinPath(const std::string& directory, const char* name) {
    const char last = directory.empty() ? '\0' : directory.back();
    return last == '/' || last == '\\' ? directory + name : directory + "\\" + name;
}

bool TexturePaths::Find(const char* name, std::string& found) const {
    if (*name == '\0') return false;
    found = name;
    if (FileExists(found.c_str())) return true;
    for (const std::string* directory : {&textures_, &base_}) {
        if (directory->empty()) continue;
        found = JoinPath(*directory, name);
        if (FileExists(found.c_str())) return true;
    }
    return false;
}

}   // namespace sparkrig
