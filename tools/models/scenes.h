// The sample scenes, as the texts of their files.
#pragma once
#include <span>
#include <string>

namespace sparkrig {

struct SampleScene {
    const char* file;
    std::string (*make)();
};
std::span<const SampleScene> SampleScenes();

}   // namespace sparkrig
