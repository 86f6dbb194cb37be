#include "gfx/shaders/shader_source.h"

#include <algorithm>
#include <set>
#include <string_view>

#include "platform/d3dx/effect_bytes.h"
#include "platform/system/system.h"

namespace sparkrig {

namespace {

/// NAME of a line `#include "NAME"` or `#include <NAME>`; empty for any other.
std::string_view IncludedName(std::string_view line) {
    constexpr std::string_view kBlanks = " \t", kWord = "include";
    const auto skip = [&](std::size_t count) {
        line.remove_prefix(count);
        line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
    };
    skip(0);
    if (!line.starts_with('#')) return {};
    skip(1);
    if (!line.starts_with(kWord)) return {};
    skip(kWord.size());
    if (!line.starts_with('"') && !line.starts_with('<')) return {};
    const std::size_t end = line.find(line[0] == '"' ? '"' : '>', 1);
    return end == std::string_view::npos ? std::string_view() : line.substr(1, end - 1);
}

void Visit(const std::string& file, std::set<std::string>& seen, std::int64_t& newest) {
    constexpr std::size_t kMostFiles = 256;
    std::vector<BYTE> bytes;
    if (seen.size() == kMostFiles || !seen.insert(file).second || !ReadEffectBytes(file, bytes)) return;
    newest = std::max(newest, FileModificationNanoseconds(file.c_str()));
    const std::string folder = file.substr(0, file.find_last_of("/\\") + 1);
    std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        if (const std::string_view name = IncludedName(text.substr(0, end)); !name.empty())
            Visit(folder + std::string(name), seen, newest);
        text.remove_prefix(end + 1);
    }
}

}   // namespace

std::int64_t ShaderSourceTime(const std::string& file) {
    std::set<std::string> seen;
    std::int64_t newest = -1;
    Visit(file, seen, newest);
    return newest;
}

}   // namespace sparkrig
