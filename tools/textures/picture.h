// Sprites as pixels: supersampled, with a clear border and colour under every transparent edge.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "tools/textures/sprite.h"

namespace sparkrig {

/// The outermost pixels that are fully transparent, so that a filter that wraps around finds nothing: on all sides, but
/// left and right of a sprite that repeats.
constexpr int kClearBorder = 2;

struct Picture {
    int size = 0;
    std::vector<std::uint8_t> rgba;   // size * size * 4 bytes, the top row first

    const std::uint8_t* At(int column, int row) const {
        return &rgba[4u * (static_cast<unsigned>(row) * size + column)];
    }
    std::uint8_t* At(int column, int row) { return &rgba[4u * (static_cast<unsigned>(row) * size + column)]; }
};

Picture Render(const Sprite& sprite);

/// The bytes of a PNG file. Equal pictures give equal bytes.
std::vector<std::uint8_t> EncodePng(const Picture& picture);

/// False when the file cannot be written.
bool WriteFile(const std::string& path, const std::vector<std::uint8_t>& bytes);

}   // namespace sparkrig
