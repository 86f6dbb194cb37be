// Water: rain, drops, splashes, foam, ripples.
#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"
#include "tools/textures/sprite.h"

namespace sparkrig {

namespace {

/// Rain as the eye sees it: one long, thin, uneven streak.
Pixel PaintRain(Point p) {
    const float taper = Step(-0.94f, -0.5f, p.y) * Step(0.94f, 0.1f, p.y);
    const float uneven = 0.75f + 0.4f * Fractal({0.3f, p.y * 3}, 2, 701);
    const float body = Gauss(p.x, 0.034f) * taper * uneven;
    return {0.92f, 0.97f, 1, Unit(body + 0.12f * Gauss(p.x, 0.11f) * taper)};
}

/// A drop: pointed above, round below, a bright spot where the light enters and one where it leaves.
Pixel PaintDrop(Point p) {
    const float h = Unit((p.y + 0.55f) / 1.3f);
    const float width = 0.5f * std::sqrt(Unit(h * 4)) * std::pow(1 - h, 0.75f) + 0.001f;
    const float inside = Step(1.05f, 0.75f, std::fabs(p.x) / width) * Step(-0.6f, -0.45f, p.y) * Step(0.8f, 0.6f, p.y);
    const float rim = Step(0.35f, 0.95f, std::fabs(p.x) / width);
    const float entry = Gauss(Length({p.x + 0.16f, p.y - 0.02f}), 0.13f);
    const float leave = 0.6f * Gauss(Length({p.x - 0.14f, p.y + 0.32f}), 0.16f);
    const float light = Unit(0.5f + 0.3f * rim + entry + leave);
    return {Mix(0.72f, 1, light), Mix(0.84f, 1, light), 1,
            Unit(inside * (0.3f + 0.35f * rim + 0.6f * entry + 0.4f * leave))};
}

/// One thrown thread of water: from a to b, bent by gravity, ending in a drop.
float Thread(Point p, Point a, Point b, float drop) {
    const Point middle{Mix(a.x, b.x, 0.45f), Mix(a.y, b.y, 0.72f)};
    float t1 = 0, t2 = 0;
    const float d1 = SegmentDistance(p, a, middle, t1), d2 = SegmentDistance(p, middle, b, t2);
    const float body =
        std::max(Gauss(d1, Mix(0.06f, 0.045f, t1)) * (0.45f + 0.1f * t1), Gauss(d2, Mix(0.045f, 0.02f, t2)) * 0.55f);
    return std::max(body, 0.95f * Gauss(Length({p.x - b.x, p.y - b.y}), drop));
}

/// The crown that a drop throws up, seen from the side: a thin bowl of water on the lower edge, its rim drawn out into
/// fingers, drops that have come off above it.
Pixel PaintCrown(Point p, std::uint32_t seed) {
    Dice dice(seed);
    constexpr float kGround = -0.72f, kHeight = 0.42f;
    const float rise = (p.y - kGround) / kHeight;   // 0 on the ground, 1 at the rim
    const float wall = 0.26f + 0.34f * Square(Unit(rise));
    const float fade = Step(-0.02f, 0.1f, rise) * Step(1.08f, 0.75f, rise);
    float alpha =
        fade * (0.26f * Step(wall + 0.08f, wall - 0.1f, std::fabs(p.x)) + 0.3f * Gauss(std::fabs(p.x) - wall, 0.1f));
    alpha = std::max(alpha, 0.2f * Gauss(Length({p.x, (p.y - kGround - kHeight) * 4}) - 0.58f, 0.13f));   // the rim
    for (int i = 0; i < 12; ++i) {
        const float side = -1 + 2 * (static_cast<float>(i) + 0.5f) / 12 + dice.Range(-0.08f, 0.08f);
        const Point foot{0.42f * side, kGround + kHeight * dice.Range(0.45f, 0.9f)};
        const Point tip{side * dice.Range(0.5f, 0.82f), foot.y + dice.Range(0.1f, 0.75f) * (1.15f - side * side)};
        alpha = std::max(alpha, Thread(p, foot, tip, dice.Range(0.03f, 0.055f)));
    }
    for (int i = 0; i < 13; ++i) {
        const float x = dice.Range(-0.84f, 0.84f), y = dice.Range(0.05f, 0.8f) * (1 - 0.5f * x * x);
        alpha = std::max(alpha, 0.9f * Gauss(Length({p.x - x, p.y - y}), dice.Range(0.014f, 0.036f)));
    }
    alpha = std::max(alpha, 0.6f * Spot(Length({p.x / 0.7f, (p.y - kGround) / 0.15f})));
    alpha *= 0.85f + 0.4f * Fractal({p.x * 5, p.y * 5}, 3, seed);
    return {0.93f, 0.98f, 1, Unit(alpha) * Step(-0.94f, -0.82f, p.y) * Vignette(p)};
}

Sprite Crown(const char* name, std::uint32_t seed) {
    return {name, 128, [=](Point p) { return PaintCrown(p, seed); }};
}

/// White water: lumps, bubbles and holes.
Pixel PaintFoam(Point p, std::uint32_t seed) {
    const Point q = Warp(p, 2.1f, 0.07f, seed);
    const float lumps = 2.6f * Billows({q.x * 3.3f, q.y * 3.3f}, 4, seed + 3) - 0.6f;
    const float density = 0.74f - Length(q) * 1.1f + 0.5f * lumps;
    const float alpha = Step(0.0f, 0.5f, density) * Step(0.97f, 0.75f, Length(p));
    const float shade = Unit(0.78f + 0.3f * lumps + 0.12f * p.y);
    return {Mix(0.62f, 1, shade), Mix(0.78f, 1, shade), Mix(0.9f, 1, shade), alpha};
}

Sprite Foam(const char* name, std::uint32_t seed) {
    return {name, 128, [=](Point p) { return PaintFoam(p, seed); }};
}

/// Falling water: strands side by side, broken along their length.
Pixel PaintFall(Point p, std::uint32_t seed) {
    const Point q = Warp({p.x, p.y * 0.4f}, 2.0f, 0.06f, seed);
    const float strands = Fractal({q.x * 6.5f, q.y * 1.2f}, 4, seed + 5);
    const float breaks = Fractal({q.x * 3, q.y * 5}, 3, seed + 9);
    const float mask = Spot(std::fabs(q.x) / 0.8f) * Spot(std::fabs(p.y + 0.08f * strands) / 0.93f);
    const float alpha = Unit(mask * (0.5f + 1.5f * strands + 0.5f * breaks));
    const float shade = Unit(0.6f + 1.2f * strands);
    return {Mix(0.6f, 1, shade), Mix(0.8f, 1, shade), 1, alpha * Vignette(p)};
}

Sprite Fall(const char* name, std::uint32_t seed) {
    return {name, 128, [=](Point p) { return PaintFall(p, seed); }};
}

/// A cluster of flying droplets.
Pixel PaintSpray(Point p) {
    Dice dice(731);
    float alpha = 0;
    for (int i = 0; i < 34; ++i) {
        const float angle = dice.Range(0, 2 * kPi), r = 0.78f * std::sqrt(dice.Range(0, 1));
        const float size = dice.Range(0.018f, 0.06f) * (1.2f - r);
        alpha = std::max(alpha, Gauss(Length({p.x - r * std::cos(angle), p.y - r * std::sin(angle)}), size));
    }
    const float mist = 0.22f * Spot(Length(p) / 0.9f) * (0.8f + Fractal({p.x * 3, p.y * 3}, 3, 732));
    return {0.94f, 0.98f, 1, Unit(alpha + mist) * Step(0.97f, 0.8f, Length(p))};
}

/// Two rings on the water, the inner one fainter, both broken.
Pixel PaintRipple(Point p) {
    const float angle = Angle(p), r = Length(p);
    const Point around{1.3f * std::cos(angle), 1.3f * std::sin(angle)};
    const float uneven = 0.75f + 0.6f * Fractal(around, 3, 741);
    const float outer = Gauss(r - 0.8f, 0.045f), trough = 0.5f * Gauss(r - 0.68f, 0.05f),
                inner = 0.5f * Gauss(r - 0.48f, 0.045f);
    return {0.9f - trough, 0.97f - 0.7f * trough, 1,
            Unit(uneven * (outer + trough * 0.6f + inner)) * Step(0.97f, 0.88f, r)};
}

}   // namespace

std::vector<Sprite> WaterSprites() {
    return {
        {"rain", 64, PaintRain},    {"drop", 64, PaintDrop},      Crown("splash1", 751), Crown("splash2", 763),
        Foam("foam1", 771),         Foam("foam2", 787),           Fall("fall1", 797),    Fall("fall2", 811),
        {"spray", 128, PaintSpray}, {"ripple", 128, PaintRipple},
    };
}

}   // namespace sparkrig
