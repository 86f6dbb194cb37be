// Shadows, for effects that subtract: there the colour alone takes light away, so these are white shapes on black and
// opaque all over.
#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"
#include "tools/textures/sprite.h"

namespace sparkrig {

namespace {

Pixel Shade(float strength) { return Grey(Unit(strength), 1); }

Pixel PaintSpotShade(Point p) { return Shade(Spot(Length(p) / 0.93f)); }

/// Ink in water: a soft body with torn arms.
Pixel PaintBlotShade(Point p) {
    const Point q = Warp(p, 1.6f, 0.2f, 1301);
    const float arms = Fractal({q.x * 2.6f, q.y * 2.6f}, 5, 1302);
    const float density = 0.82f - Length(q) * 1.2f + 0.7f * arms;
    return Shade(Step(0.0f, 0.9f, density) * Step(0.95f, 0.7f, Length(p)));
}

/// The dark between the arms of the vortex.
Pixel PaintVortexShade(Point p) {
    const float r = Length(p);
    const float wound = Angle(p) + 3.4f * std::log(r + 0.12f);
    const float arms = Fractal({1.9f * std::cos(wound) + r, 1.9f * std::sin(wound)}, 4, 1311);
    return Shade(Step(0.95f, 0.3f, r) * (0.75f + 0.5f * arms));
}

/// Burnt ground, with rays thrown outwards.
Pixel PaintScorchShade(Point p) {
    const float angle = Angle(p), r = Length(p);
    const float rays = Fractal({3 * std::cos(angle), 3 * std::sin(angle)}, 4, 1321);
    const float blotches = Fractal({p.x * 3.5f, p.y * 3.5f}, 4, 1322);
    const float density = 0.85f - r * 1.15f + 0.75f * rays * (0.3f + r) + 0.3f * blotches;
    return Shade(Step(0.0f, 0.8f, density) * Step(0.95f, 0.78f, r));
}

}   // namespace

std::vector<Sprite> ShadeSprites() {
    return {
        {"shade_spot", 64, PaintSpotShade},
        {"shade_blot", 128, PaintBlotShade},
        {"shade_vortex", 128, PaintVortexShade},
        {"shade_scorch", 128, PaintScorchShade},
    };
}

}   // namespace sparkrig
