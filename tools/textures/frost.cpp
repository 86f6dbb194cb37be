// Snow and ice: flakes, shards, crystals.
#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"
#include "tools/textures/sprite.h"

namespace sparkrig {

namespace {

/// p turned into the first of six equal sectors and folded at its middle: x runs along the arm.
Point FoldSixfold(Point p) {
    constexpr float kSector = kPi / 3;
    const float angle = Angle(p);
    const float folded = std::fabs(std::remainder(angle, kSector));
    return {Length(p) * std::cos(folded), Length(p) * std::sin(folded)};
}

/// A crystal with six arms and side branches, soft, and not quite equal on all sides.
Pixel PaintFlake(Point p, std::uint32_t seed) {
    Dice dice(seed);
    const Point arm = FoldSixfold(Warp(p, 1.3f, 0.03f, seed));
    float alpha = Gauss(arm.y, 0.06f) * Step(0.86f, 0.72f, arm.x);
    for (int i = 0; i < 3; ++i) {
        const float root = 0.22f + 0.2f * static_cast<float>(i) + dice.Range(-0.03f, 0.03f);
        const float reach = dice.Range(0.14f, 0.3f) * (1.1f - 0.22f * static_cast<float>(i));
        float along = 0;
        const float distance = SegmentDistance(arm, {root, 0}, {root + 0.5f * reach, 0.87f * reach}, along);
        alpha = std::max(alpha, Gauss(distance, 0.05f) * (0.95f - 0.3f * along));
    }
    alpha = std::max(alpha, 0.9f * Gauss(Length(p), 0.15f));
    const float uneven = 0.85f + 0.35f * Noise({p.x * 1.5f, p.y * 1.5f}, seed + 3);
    return {0.93f, 0.97f, 1, Unit(alpha * uneven + 0.14f * Spot(Length(p) / 0.9f)) * Step(0.97f, 0.85f, Length(p))};
}

Sprite Flake(const char* name, std::uint32_t seed) {
    return {name, 64, [=](Point p) { return PaintFlake(p, seed); }};
}

/// A soft clump of flakes, as most falling snow looks.
Pixel PaintClump(Point p) {
    const Point q = Warp(p, 2.0f, 0.12f, 821);
    const float lumps = Fractal({q.x * 3, q.y * 3}, 3, 822);
    const float alpha = Spot(Length(q) / 0.82f) * (0.85f + 0.5f * lumps) + 0.5f * Square(Spot(Length(q) / 0.5f));
    return {0.95f, 0.98f, 1, Unit(alpha) * Step(0.95f, 0.7f, Length(p))};
}

/// A splinter of ice that points up: two facets, a bright ridge, a light edge.
Pixel PaintShard(Point p, float lean) {
    const float h = Unit((p.y + 0.9f) / 1.8f);
    const float width = 0.32f * std::min(Unit(h * 3.2f + 0.12f), 1.25f * (1 - h)) + 0.001f;
    const float x = p.x - lean * (h - 0.4f);
    const float across = x / width;
    const float inside = Step(1.04f, 0.92f, std::fabs(across)) * Step(-0.92f, -0.84f, p.y);
    const float ridge = Gauss(across + 0.18f, 0.12f), edge = Step(0.62f, 0.96f, std::fabs(across));
    const float cracks = 0.5f + Fractal({p.x * 4, p.y * 2.2f}, 3, 831);
    const float facet = across < -0.18f ? 0.92f : 0.55f;
    const float light = Unit(facet * (0.72f + 0.4f * cracks) + 0.6f * ridge + 0.35f * edge);
    return {Mix(0.25f, 1, light), Mix(0.55f, 1, light), Mix(0.85f, 1, light),
            inside * Unit(0.62f + 0.4f * light) * Vignette(p)};
}

Sprite Shard(const char* name, float lean) {
    return {name, 64, [=](Point p) { return PaintShard(p, lean); }};
}

/// Frost that shoots out over a surface: needles with feathered sides.
Pixel PaintFrost(Point p) {
    Dice dice(841);
    float alpha = 0;
    for (int i = 0; i < 17; ++i) {
        const float angle = 2 * kPi * (static_cast<float>(i) + dice.Range(-0.35f, 0.35f)) / 17;
        const float reach = dice.Range(0.45f, 0.92f);
        const Point q = Rotated(p, -angle);
        if (q.x < 0 || q.x > reach) continue;
        const float along = q.x / reach;
        const float feather =
            0.6f + 0.4f * std::cos((q.x - 1.4f * std::fabs(q.y)) * 44 + 3 * Noise({q.x * 3, angle * 5}, 847));
        const float wide = 0.19f * reach * (1 - along) * along * 2.2f;
        const float needle =
            Gauss(q.y, 0.026f * (1.25f - along)) + 0.42f * feather * Step(wide + 0.02f, wide * 0.3f, std::fabs(q.y));
        alpha = std::max(alpha, needle * (1 - 0.6f * along));
    }
    return {0.86f, 0.95f, 1, Unit(alpha + 0.75f * Gauss(Length(p), 0.14f)) * Step(0.97f, 0.86f, Length(p))};
}

}   // namespace

std::vector<Sprite> FrostSprites() {
    return {
        Flake("flake1", 851),  Flake("flake2", 863),    {"clump", 64, PaintClump},
        Shard("shard1", 0.1f), Shard("shard2", -0.16f), {"frost", 256, PaintFrost},
    };
}

}   // namespace sparkrig
