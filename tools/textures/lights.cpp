// Light without matter: spots, streaks, flares, rings and rays. White, so that the effect's colour is the colour.
#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"
#include "tools/textures/sprite.h"

namespace sparkrig {

namespace {

Pixel PaintSpot(Point p) { return White(Spot(Length(p) / 0.94f)); }

/// A small core in a wide, faint halo.
Pixel PaintGlow(Point p) {
    const float r = Length(p) / 0.95f;
    const float halo = std::exp(-4.2f * r) * Spot(r * 0.98f);
    return White(0.95f * halo + 0.2f * Square(Spot(r)));
}

/// A long spark: hot in the middle, thin at both ends.
Pixel PaintStreak(Point p) {
    const float taper = std::sqrt(Spot(std::fabs(p.y) / 0.94f));
    const float body = Gauss(p.x, 0.045f + 0.075f * taper) * taper;
    const float halo = 0.28f * Gauss(p.x, 0.26f) * Square(taper);
    return White(Unit(body + halo) * Vignette(p));
}

/// A spark drawn out by its own speed: a hair of light, hottest near its upper end.
Pixel PaintNeedle(Point p) {
    const float h = Unit((p.y + 0.93f) / 1.86f);
    const float taper = std::pow(h, 0.8f) * Step(1.0f, 0.84f, h);
    const float body = Gauss(p.x, 0.026f + 0.05f * taper) * taper;
    const float halo = 0.2f * Gauss(p.x, 0.2f) * Square(taper);
    return White(Unit(1.15f * body + halo) * Vignette(p));
}

/// A spark that flies up: a hot head and a tail that thins out below it.
Pixel PaintComet(Point p) {
    constexpr float kHead = 0.55f;
    const float behind = Unit((kHead - p.y) / (kHead + 0.92f));
    const float width = Mix(0.16f, 0.03f, behind);
    const float tail = p.y < kHead ? Gauss(p.x, width) * Square(1 - behind) : 0;
    const float head = Spot(Length({p.x, p.y - kHead}) / 0.32f);
    return White(Unit(0.85f * tail + head) * Vignette(p));
}

/// A bright core with a thin cross, the horizontal ray the longer one.
Pixel PaintFlare(Point p) {
    const float r = Length(p);
    const float core = Gauss(r, 0.14f) + 0.35f * Square(Spot(r / 0.7f));
    const float horizontal = Gauss(p.y, 0.02f + 0.02f * Spot(p.x)) * Square(Spot(std::fabs(p.x) / 0.95f));
    const float vertical = 0.7f * Gauss(p.x, 0.02f) * Square(Spot(std::fabs(p.y) / 0.72f));
    const Point d = Rotated(p, kPi / 4);
    const float diagonal =
        0.3f * (Gauss(d.x, 0.02f) * Spot(std::fabs(d.y) / 0.45f) + Gauss(d.y, 0.02f) * Spot(std::fabs(d.x) / 0.45f));
    return White(Unit(core + horizontal + vertical + diagonal) * Vignette(p));
}

/// Four soft points, as a star seen through a lens.
Pixel PaintTwinkle(Point p) {
    const float x = std::fabs(p.x), y = std::fabs(p.y);
    const float star = Unit(0.028f / (x * y * 9 + 0.022f) - 0.06f) * Spot(Length(p) / 0.93f);
    return White(Unit(0.85f * star + Gauss(Length(p), 0.13f)));
}

/// A narrow ring, thicker here and thinner there.
Pixel PaintRing(Point p) {
    const float r = Length(p), angle = Angle(p);
    const Point around{1.6f * std::cos(angle), 1.6f * std::sin(angle)};
    const float width = 0.055f * (1 + 0.55f * Fractal(around, 3, 11));
    const float radius = 0.74f + 0.02f * Fractal({around.x * 2, around.y * 2}, 2, 12);
    const float strength = 0.8f + 0.5f * Fractal({around.x * 1.5f, around.y * 1.5f}, 3, 13);
    return White(Unit(strength * (Gauss(r - radius, width) + 0.3f * Gauss(r - radius, 3 * width))) *
                 Step(0.98f, 0.86f, r));
}

/// A pressure wave: a sharp front with rays that trail behind it.
Pixel PaintShock(Point p) {
    const float r = Length(p), angle = Angle(p);
    const float rays = 0.5f + 0.9f * Fractal({7 * std::cos(angle), 7 * std::sin(angle)}, 3, 21);
    const float front = 0.86f + 0.03f * Fractal({3 * std::cos(angle), 3 * std::sin(angle)}, 2, 22);
    const float inside = r < front ? std::pow(r / front, 5.0f) * Unit(rays) : 0;
    const float edge = Gauss(r - front, 0.035f);
    return White(Unit(0.75f * inside + 0.85f * edge) * Step(0.97f, 0.9f, r));
}

/// Uneven rays from a soft centre.
Pixel PaintRays(Point p) {
    const float r = Length(p), angle = Angle(p);
    const float fine = Fractal({5 * std::cos(angle), 5 * std::sin(angle)}, 3, 31);
    const float coarse = Fractal({2.2f * std::cos(angle), 2.2f * std::sin(angle)}, 2, 32);
    const float reach = Unit(0.62f + 0.75f * fine + 0.35f * coarse);
    const float ray = Square(Unit(1 - r / (0.25f + 0.72f * reach))) * (0.35f + 0.65f * reach);
    return White(Unit(ray + Gauss(r, 0.16f)) * Step(0.97f, 0.7f, r));
}

/// The lamp of a firefly: a dot, its halo, and a body that darkens one side a little.
Pixel PaintFirefly(Point p) {
    const float r = Length(p);
    const float body = 1 - 0.35f * Gauss(Length({p.x - 0.05f, p.y - 0.2f}), 0.12f);
    return White(Unit((Gauss(r, 0.17f) + 0.32f * Gauss(r, 0.42f) * Spot(r / 0.95f)) * body) * Step(0.97f, 0.7f, r));
}

}   // namespace

std::vector<Sprite> LightSprites() {
    return {
        {"spot", 64, PaintSpot},       {"glow", 128, PaintGlow},      {"streak", 64, PaintStreak},
        {"comet", 64, PaintComet},     {"needle", 64, PaintNeedle},   {"flare", 128, PaintFlare},
        {"twinkle", 64, PaintTwinkle}, {"ring", 128, PaintRing},      {"shock", 256, PaintShock},
        {"rays", 256, PaintRays},      {"firefly", 64, PaintFirefly},
    };
}

}   // namespace sparkrig
