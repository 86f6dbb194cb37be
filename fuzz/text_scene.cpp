// Any bytes as a text scene.
#include "fuzz/scene_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static sparkrig::SceneInput scene;
    scene.Load(data, size);
    return 0;
}
