// Flame tongues, balls of fire, embers, the stars of muzzle flashes.
#include <array>

#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"
#include "tools/textures/sprite.h"

namespace sparkrig {

namespace {

/// White in the core, deeper where the fire is thin: it multiplies the effect's own colour.
Pixel FlameColour(float heat, float alpha) {
    const float t = Unit(heat);
    return {1, Mix(0.62f, 1.0f, t), Mix(0.34f, 0.95f, t * t), alpha};
}

/// A tongue of flame: round below, licking upwards, torn into strands towards the tip.
Pixel PaintFlame(Point p, std::uint32_t seed, float lean) {
    const float h = Unit((p.y + 0.86f) / 1.76f);
    const float sway = 0.55f * h * Fractal({0.4f, p.y * 1.1f + 3}, 2, seed) + lean * h * h;
    const Point warped = Warp({p.x - sway, p.y}, 2.1f, 0.05f + 0.13f * h, seed + 7);
    const float width = 0.56f * std::sqrt(Unit(h * 3.2f)) * std::pow(1 - h, 0.85f) + 0.02f;
    const float across = std::fabs(warped.x) / width;
    const float strands = Fractal({warped.x * 4.2f, warped.y * 1.25f}, 4, seed + 40);
    const float density = 1.15f - across + (0.35f + 1.1f * h) * strands - 0.45f * h * h;
    const float body = Step(0.0f, 0.75f, density) * Step(0.0f, 0.16f, h) * Step(1.0f, 0.72f, h);
    const float hollow = 1 - 0.4f * Gauss(Length({p.x, p.y + 0.5f}), 0.28f);   // cooler where the fuel is
    return FlameColour(density * 0.85f - 0.35f * h, body * hollow * Vignette(p));
}

Sprite Flame(const char* name, std::uint32_t seed, float lean) {
    return {name, 128, [=](Point p) { return PaintFlame(p, seed, lean); }};
}

/// The same shape in white, for fire that is not fire: the effect gives its colour.
Sprite Wisp(const char* name, std::uint32_t seed, float lean) {
    return {name, 128, [=](Point p) { return White(PaintFlame(p, seed, lean).a); }};
}

/// A burning cloud, opaque: white-hot where it is thick, dark crust in the creases.
Pixel PaintFireball(Point p, std::uint32_t seed) {
    const Point q = Warp(p, 1.5f, 0.11f, seed);
    const float r = Length(q);
    const float lumps = Billows({q.x * 2.6f, q.y * 2.6f}, 4, seed + 20);
    const float density = 1.02f - r * 1.25f + 1.1f * (lumps - 0.32f);
    const float alpha = Step(0.0f, 0.4f, density) * Step(0.98f, 0.75f, Length(p));
    const float heat = Unit(0.16f + 2.3f * lumps + 0.95f * (0.42f - r) + 0.12f * p.y);
    constexpr Pixel kCrust{0.30f, 0.10f, 0.04f, 1}, kOrange{1, 0.50f, 0.12f, 1}, kHot{1, 0.92f, 0.62f, 1};
    Pixel colour =
        heat < 0.55f ? MixColour(kCrust, kOrange, heat / 0.55f) : MixColour(kOrange, kHot, (heat - 0.55f) / 0.45f);
    colour.a = alpha;
    return colour;
}

Sprite Fireball(const char* name, std::uint32_t seed) {
    return {name, 128, [=](Point p) { return PaintFireball(p, seed); }};
}

/// A glowing chip with an uneven outline in its own small halo.
Pixel PaintEmber(Point p) {
    const float angle = Angle(p), r = Length(p);
    const float outline = 0.34f + 0.1f * Fractal({1.4f * std::cos(angle), 1.4f * std::sin(angle)}, 2, 61);
    const float chip = Step(outline, outline * 0.45f, r);
    const float halo = 0.4f * Gauss(r, 0.45f) * Spot(r / 0.95f);
    const float core = Gauss(r, 0.24f);
    return FlameColour(core + 0.3f * chip,
                       Unit(0.45f * chip * (0.8f + 0.5f * Fractal({p.x * 6, p.y * 6}, 2, 62)) + 0.75f * core + halo));
}

/// The fire in front of a barrel, seen from the side: it shoots to the right, widest in its first third.
Pixel PaintMuzzleSide(Point p) {
    const float along = Unit((p.x + 0.92f) / 1.84f);
    const Point q = Warp(p, 2.4f, 0.12f * along, 71);
    const float width = 0.34f * std::sqrt(Unit(along * 5)) * std::pow(1 - along, 0.7f) + 0.015f;
    const float strands = Fractal({q.x * 1.6f, q.y * 5}, 3, 72);
    const float density = 1.05f - std::fabs(q.y) / width + (0.2f + 0.9f * along) * strands;
    const float alpha = Step(0.0f, 0.7f, density) * Step(1.0f, 0.6f, along) * Step(0.0f, 0.05f, along);
    return FlameColour(density - 0.5f * along, alpha * Vignette(p));
}

/// The same from the front: five uneven petals of fire around a hot core.
Pixel PaintMuzzleStar(Point p) {
    constexpr std::array<float, 5> kReach = {0.86f, 0.62f, 0.78f, 0.55f, 0.7f};
    const Point q = Warp(p, 2.2f, 0.05f, 81);
    const float angle = Angle(q), r = Length(q);
    float density = 0;
    for (std::size_t i = 0; i < kReach.size(); ++i) {
        const float centre =
            2 * kPi * (static_cast<float>(i) + 0.15f * kReach[i]) / static_cast<float>(kReach.size()) + 0.4f;
        const float off = std::remainder(angle - centre, 2 * kPi);
        const float width = 0.42f * std::pow(Unit(1 - r / kReach[i]), 0.6f);
        density = std::max(density, (width - std::fabs(off)) * 3.2f);
    }
    const float core = Gauss(r, 0.2f);
    const float alpha = Unit(Step(0.0f, 0.9f, density) * Step(0.9f, 0.35f, r) + core);
    return FlameColour(core * 1.5f + 0.3f, alpha * Vignette(p));
}

}   // namespace

std::vector<Sprite> FireSprites() {
    return {
        Flame("flame1", 301, 0.10f),
        Flame("flame2", 317, -0.16f),
        Flame("flame3", 331, 0.02f),
        Flame("flame4", 347, -0.06f),
        Wisp("wisp1", 361, 0.2f),
        Wisp("wisp2", 379, -0.1f),
        Fireball("fireball1", 401),
        Fireball("fireball2", 433),
        {"ember", 64, PaintEmber},
        {"muzzle_side", 128, PaintMuzzleSide},
        {"muzzle_star", 128, PaintMuzzleStar},
    };
}

}   // namespace sparkrig
