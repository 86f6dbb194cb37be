#include "platform/d3dx/effect_bytes.h"

#include "platform/system/system.h"

namespace sparkrig {

bool ReadEffectBytes(const std::string& path, std::vector<BYTE>& bytes) {
    std::FILE* file = OpenFileStream(path.c_str(), "rb");
    if (!file) return false;
    bytes.clear();
    std::size_t got = 1;
    BYTE block[16384];
    while (bytes.size() <= kMostEffectBytes && (got = std::fread(block, 1, sizeof block, file)) > 0)
        bytes.insert(bytes.end(), block, block + got);
    const bool read = std::ferror(file) == 0 && bytes.size() <= kMostEffectBytes;
    std::fclose(file);
    return read;
}

}   // namespace sparkrig
