// Any bytes as a scene that is converted: it comes back as it was.
#include "fuzz/scene_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static sparkrig::SceneInput scene;
    if (scene.Load(data, size)) scene.ConvertAndCompare();
    return 0;
}
