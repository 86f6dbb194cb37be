// Any bytes behind the start of a binary scene; the first one chooses the version.
#include "fuzz/scene_input.h"

void sparkrig::Try(Input input) {
    if (input.empty()) return;
    std::vector<std::uint8_t> file = {'3', 'S', 'C', static_cast<std::uint8_t>(99 + input[0] % 9)};
    file.insert(file.end(), input.begin() + 1, input.end());
    LoadAndPrint(file);
}
