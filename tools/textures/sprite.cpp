#include "tools/textures/sprite.h"

#include <iterator>

namespace sparkrig {

namespace {

using Family = std::vector<Sprite> (*)();

constexpr Family kFamilies[] = {LightSprites, FireSprites,  SmokeSprites, WaterSprites,
                                FrostSprites, SolidSprites, MagicSprites, ShadeSprites};

}   // namespace

std::vector<Sprite> AllSprites() {
    std::vector<Sprite> sprites;
    for (const Family family : kFamilies) {
        std::vector<Sprite> members = family();
        sprites.insert(sprites.end(), std::make_move_iterator(members.begin()), std::make_move_iterator(members.end()));
    }
    return sprites;
}

}   // namespace sparkrig
