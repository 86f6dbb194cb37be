#pragma once
#include <cstdint>

namespace sparkrig {

/// What a load is asked for. In a flags word -1 stands for none.
struct SceneLoadFlags {
    bool texture_option = false;   // bit 0, handed on to the loading of textures
    bool bump_maps = false;        // bit 1
    bool skip_textures = false;    // bit 2
    bool vertex_colours = false;   // bit 3: room for diffuse and specular colours, zeros
    bool system_memory = false;    // bit 4: geometry stays where the processor reaches it

    static SceneLoadFlags FromWord(std::int32_t word) {
        if (word == -1) word = 0;
        return {(word & 1) != 0, (word & 2) != 0, (word & 4) != 0, (word & 8) != 0, (word & 16) != 0};
    }
};

}   // namespace sparkrig
