#include "scene/map_files.h"

#include <algorithm>
#include <iterator>

#include "base/string.h"
#include "platform/d3dx/d3dx_texture.h"
#include "platform/system/system.h"

namespace sparkrig {

namespace {

constexpr D3DFORMAT kAlphaFormats[] = {D3DFMT_A8R8G8B8, D3DFMT_A1R5G5B5, D3DFMT_A4R4G4B4, D3DFMT_A8,   D3DFMT_A8B8G8R8,
                                       D3DFMT_A8L8,     D3DFMT_DXT2,     D3DFMT_DXT3,     D3DFMT_DXT4, D3DFMT_DXT5};

}   // namespace

std::string PathIn(const std::string& directory, const char* name) {
    if (directory.empty()) return name;
    const char last = directory.back();
    return last == '/' || last == '\\' ? directory + name : directory + "\\" + name;
}

std::string MapFiles::Find(const char* name) const {
    if (*name == '\0') return "";
    for (const std::string& path : {std::string(name), PathIn(folder_, name)})
        if (FileExists(path.c_str())) return path;
    return "";
}

bool MapFiles::HasAlpha(const std::string& path) const {
    D3DXIMAGE_INFO info = {};
    if (FAILED(D3DXGetImageInfoFromFileA(path.c_str(), &info))) return false;
    return std::ranges::find(kAlphaFormats, info.Format) != std::end(kAlphaFormats);
}

}   // namespace sparkrig
