#include "app/program_folder.h"

#include "platform/system/system.h"

namespace sparkrig {

namespace {

constexpr char kBuiltInFolder[] = SPARKRIG_DATA_FOLDER;

bool IsFolder(const std::string& name) {
    const std::string here = GetCurrentDirectoryA();
    const bool is_folder = SetCurrentDirectoryA(name.c_str());
    SetCurrentDirectoryA(here.c_str());
    return is_folder;
}

}   // namespace

bool EnterProgramFolder(const std::string& data) {
    if (!data.empty()) return SetCurrentDirectoryA(data.c_str());
    if (!IsFolder("cfg") && IsFolder(kBuiltInFolder + std::string("/cfg"))) SetCurrentDirectoryA(kBuiltInFolder);
    return true;
}

const char* BuiltInFolder() { return kBuiltInFolder; }

std::string AbsolutePath(const std::string& name) {
    if (name.empty() || name[0] == '/') return name;
    return GetCurrentDirectoryA() + "/" + name;
}

}   // namespace sparkrig
