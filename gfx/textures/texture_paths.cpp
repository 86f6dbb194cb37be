#include "gfx/textures/texture_paths.h"

#include "platform/system/ascii.h"
#include "platform/system/system.h"

namespace sparkrig {

std::string JoinPath(const std::string& directory, const char* name) {
    const char last = directory.empty() ? '\0' : directory.back();
    return last == '/' || last == '\\' ? directory + name : directory + "\\" + name;
}

std::string FileKey(const char* file) {
    const std::int32_t time = FileModificationTime(file);
    const std::string path = RealPath(file);
    return time == -1 ? path : path + "_" + std::to_string(time);
}

std::vector<std::string> TexturePaths::Candidates(const char* name) const {
    std::vector<std::string> candidates;
    if (*name == '\0') return candidates;
    candidates.emplace_back(name);
    for (const std::string* directory : {&textures_, &base_})
        if (!directory->empty()) candidates.push_back(JoinPath(*directory, name));
    return candidates;
}

bool TexturePaths::Find(const char* name, std::string& found) const {
    for (const std::string& candidate : Candidates(name)) {
        found = candidate;
        if (FileExists(found.c_str())) return true;
    }
    return false;
}

namespace {

std::string LowerCase(std::string text) {
    for (char& c : text) c = AsciiLower(c);
    return text;
}

}   // namespace

const TextureLookup::Names& TextureLookup::NamesIn(const std::string& folder) {
    const auto [place, is_new] = folders_.try_emplace(folder);
    if (is_new)
        for (const std::string& name : ListFiles(folder.empty() ? "." : folder.c_str()))
            place->second.insert(LowerCase(name));
    return place->second;
}

bool TextureLookup::Contains(const char* name) {
    for (const std::string& candidate : paths_.Candidates(name)) {
        const std::size_t last = candidate.find_last_of("/\\");
        const std::size_t file = last == std::string::npos ? 0 : last + 1;
        if (NamesIn(candidate.substr(0, file)).contains(LowerCase(candidate.substr(file)))) return true;
    }
    return false;
}

}   // namespace sparkrig
