// Smoke, mist and dust: clouds lit softly from above.
#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"
#include "tools/textures/sprite.h"

namespace sparkrig {

namespace {

/// How thick the puff is: round lumps that grow smaller towards a frayed edge. Below 0 there is none.
float PuffDensity(Point p, std::uint32_t seed) {
    const Point q = Warp(p, 1.4f, 0.1f, seed);
    const float lumps = Billows({q.x * 2.1f, q.y * 2.1f}, 4, seed + 30) - 0.24f;
    const float frayed = Fractal({q.x * 5, q.y * 5}, 3, seed + 60);
    return 0.98f - Length(q) * 1.22f + 1.2f * lumps + 0.12f * frayed;
}

/// The light comes from above: brighter where the puff grows thicker downwards.
Pixel PaintPuff(Point p, std::uint32_t seed) {
    constexpr float kLightStep = 0.07f;
    const float density = PuffDensity(p, seed);
    const float towards_light = PuffDensity({p.x - 0.4f * kLightStep, p.y + kLightStep}, seed);
    const float lit = Unit(0.62f + 1.9f * (density - towards_light) + 0.12f * p.y + 0.12f * density);
    const float alpha = Step(0.0f, 0.7f, density) * Step(0.97f, 0.72f, Length(p));
    return Grey(Mix(0.45f, 1.0f, lit), alpha);
}

Sprite Puff(const char* name, std::uint32_t seed) {
    return {name, 128, [=](Point p) { return PaintPuff(p, seed); }};
}

/// A bank of mist: wide, thin, drawn out sideways.
Pixel PaintMist(Point p) {
    const Point q = Warp({p.x, p.y * 1.7f}, 1.3f, 0.25f, 501);
    const float threads = Fractal({q.x * 1.5f, q.y * 2.4f}, 5, 502);
    const float mask = Spot(Length({p.x / 0.97f, p.y / 0.7f}));
    return Grey(Unit(0.92f + 0.15f * threads), Unit(mask * (0.5f + 0.85f * threads)));
}

/// Dust that a blow drives sideways: grains in thin torn veils.
Pixel PaintDust(Point p, std::uint32_t seed) {
    const Point q = Warp(p, 1.8f, 0.22f, seed);
    const float veil = Fractal({q.x * 2.2f, q.y * 2.8f}, 5, seed + 5);
    const float grain = Noise({p.x * 27, p.y * 27}, seed + 9);
    const float mask = Spot(Length({q.x / 0.95f, q.y / 0.85f}));
    const float alpha = Unit(mask * (0.42f + 1.0f * veil) + mask * 0.3f * Unit(grain - 0.25f));
    return Grey(Unit(0.86f + 0.22f * veil + 0.1f * grain), alpha * Step(0.97f, 0.75f, Length(p)));
}

Sprite Dust(const char* name, std::uint32_t seed) {
    return {name, 128, [=](Point p) { return PaintDust(p, seed); }};
}

/// A mote in the air: a soft speck that is not round.
Pixel PaintMote(Point p) {
    const Point q = Warp(p, 1.4f, 0.16f, 521);
    return White(Unit(1.1f * Spot(Length({q.x / 0.6f, q.y / 0.45f})) + 0.15f * Spot(Length(p) / 0.9f)));
}

/// Scorched ground: dark, blotched, with splashes thrown outwards.
Pixel PaintScorch(Point p) {
    const float angle = Angle(p), r = Length(p);
    const float rays = Fractal({3 * std::cos(angle), 3 * std::sin(angle)}, 4, 531);
    const float blotches = Fractal({p.x * 3.5f, p.y * 3.5f}, 4, 532);
    const float alpha = Step(0.0f, 0.75f, 0.85f - r * 1.15f + 0.75f * rays * (0.3f + r) + 0.3f * blotches);
    return Grey(Unit(0.8f + 0.35f * blotches), alpha * Step(0.97f, 0.8f, r));
}

}   // namespace

std::vector<Sprite> SmokeSprites() {
    return {
        Puff("smoke1", 541), Puff("smoke2", 557),      Puff("smoke3", 571),
        Puff("smoke4", 587), {"mist", 256, PaintMist}, Dust("dust1", 601),
        Dust("dust2", 617),  {"mote", 64, PaintMote},  {"scorch", 128, PaintScorch},
    };
}

}   // namespace sparkrig
