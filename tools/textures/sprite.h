// A sprite is a name, a size and a function that gives the colour at every point of a square.
#pragma once
#include <functional>
#include <vector>

namespace sparkrig {

/// x to the right, y up. The square of a sprite is [-1, 1] x [-1, 1].
struct Point {
    float x, y;
};

/// Straight (not premultiplied) colour, each component in [0, 1]. Where alpha is 0 the colour still counts: filtering
/// mixes it into the edge.
struct Pixel {
    float r, g, b, a;
};

using Painter = std::function<Pixel(Point)>;

struct Sprite {
    const char* name;   // the file is NAME.png
    int size;           // pixels on a side
    Painter paint;
    bool repeats_along = false;   // from left to right: no clear border there
};

std::vector<Sprite> LightSprites();
std::vector<Sprite> FireSprites();
std::vector<Sprite> SmokeSprites();
std::vector<Sprite> WaterSprites();
std::vector<Sprite> FrostSprites();
std::vector<Sprite> SolidSprites();
std::vector<Sprite> MagicSprites();
std::vector<Sprite> ShadeSprites();

/// Every family, one after the other.
std::vector<Sprite> AllSprites();

}   // namespace sparkrig
