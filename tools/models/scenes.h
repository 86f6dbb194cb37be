// The sample scenes, as the texts of their files.
#pragma once
#include <span>
#include <string>

namespace sparkrig {

struct SampleScene {
    const char* file;
    std::string (*make)();
};
/// Of every kind of thing that a scene may hold.
std::span<const SampleScene> SampleScenes();
/// Those that the sample effects show.
std::span<const SampleScene> EffectScenes();

}   // namespace sparkrig
