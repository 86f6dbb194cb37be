// The head of every fuzz target, which defines Try and no more: the log is silent, what is reported is no finding.
#pragma once
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <vector>

#include "base/error.h"
#include "base/log.h"

namespace sparkrig {

using Input = std::span<const std::uint8_t>;

/// The target.
void Try(Input input);

/// What must hold whatever the input is.
inline void Require(bool holds) {
    if (!holds) std::abort();
}

/// A file of this process, in memory where there is a folder for that: a disk would be a hundred times slower.
inline std::string PathOf(const char* name) {
    static const std::string& folder = *[] {
        const std::filesystem::path memory = "/dev/shm";
        const auto& place = std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
        auto* const path = new std::string((place / "fuzz.XXXXXX").string());
        Require(mkdtemp(path->data()) != nullptr);
        std::atexit([] { std::filesystem::remove_all(std::filesystem::path(PathOf("")).parent_path()); });
        return path;
    }();
    return folder + "/" + name;
}

/// Writes such a file; its name.
template <class Bytes>
std::string Put(const Bytes& content, const char* name = "input") {
    const auto* const bytes = reinterpret_cast<const char*>(content.data());
    std::ofstream(PathOf(name), std::ios::binary).write(bytes, static_cast<std::streamsize>(content.size()));
    return PathOf(name);
}
inline std::string Get(const char* name) {
    std::ifstream file(PathOf(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}   // namespace sparkrig

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool silent = (sparkrig::SilenceLog(), true);
    try {
        if (silent) sparkrig::Try({data, size});
    } catch (const sparkrig::ErrorRecord&) {
    }
    return 0;
}
