// Any bytes behind the start of a binary scene; the first one chooses the version.
#include <vector>

#include "fuzz/scene_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static sparkrig::SceneInput scene;
    if (size == 0) return 0;
    std::vector<std::uint8_t> file = {'3', 'S', 'C', static_cast<std::uint8_t>(99 + data[0] % 9)};
    file.insert(file.end(), data + 1, data + size);
    scene.Load(file.data(), file.size());
    return 0;
}
