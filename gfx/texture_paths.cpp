#include "gfx/texture_paths.h"

#include "platform/system/system.h"

namespace sparkrig {
namespace {

std::string Below(const std::string& directory, const char* name) {
    const char last = directory.back();
    return last == '/' || last == '\\' ? directory + name : directory + "\\" + name;
}

}   // namespace

bool TexturePaths::Find(const char* name, std::string& found) const {
    if (*name == '\0') return false;
    found = name;
    if (FileExists(found.c_str())) return true;
    for (const std::string* directory : {&textures_, &base_}) {
        if (directory->empty()) continue;
        found = Below(*directory, name);
        if (FileExists(found.c_str())) return true;
    }
    return false;
}

}   // namespace sparkrig
