// How large points are.
#pragma once

namespace sparkrig {

/// Sizes in pixels; with scaling the size is in units of the world and A, B, C weaken it with the distance.
struct PointSpriteSettings {
    float scale_a = 1.0f, scale_b = 0.0f, scale_c = 0.0f;
    float max_size = 64.0f, min_size = 1.0f;
    float size = 2.0f;
    bool sprites = false;
    bool scaling = false;
    bool operator==(const PointSpriteSettings&) const = default;
};

}   // namespace sparkrig
