// Solid things: chips of stone, leaves, petals, paper, firewood, iron. Light, so that the effect's colour tints them.
#include <array>

#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"
#include "tools/textures/sprite.h"

namespace sparkrig {

namespace {

/// A broken stone: a polygon of facets that meet off its centre, each with its own light.
struct Chip {
    static constexpr int kCorners = 6;
    std::array<Point, kCorners> corners;
    std::array<float, kCorners> light;
    Point peak;
    std::uint32_t seed;

    explicit Chip(std::uint32_t from) : seed(from) {
        Dice dice(from);
        peak = {dice.Range(-0.2f, 0.1f), dice.Range(-0.05f, 0.25f)};
        for (int i = 0; i < kCorners; ++i) {
            const float angle = 2 * kPi * (static_cast<float>(i) + dice.Range(-0.28f, 0.28f)) / kCorners;
            const float radius = dice.Range(0.5f, 0.88f);
            corners[i] = {radius * std::cos(angle), 0.82f * radius * std::sin(angle)};
            light[i] = Unit(0.55f + 0.38f * std::sin(angle + 0.6f) + dice.Range(-0.08f, 0.08f));
        }
    }

    Pixel operator()(Point p) const {
        for (int i = 0; i < kCorners; ++i) {
            const Point a = corners[i], b = corners[(i + 1) % kCorners];
            if (!IsInside(p, a, b)) continue;
            const float rough = 0.14f * Fractal({p.x * 7, p.y * 7}, 3, seed + 1);
            return Grey(Unit(light[i] + rough), 1);
        }
        return Grey(0.5f, 0);
    }

  private:
    bool IsInside(Point p, Point a, Point b) const {
        const auto side = [](Point from, Point to, Point q) {
            return (to.x - from.x) * (q.y - from.y) - (to.y - from.y) * (q.x - from.x);
        };
        return side(peak, a, p) >= 0 && side(b, peak, p) >= 0 && side(a, b, p) >= 0;
    }
};

/// Light over a leaf whose halves fold up along the midrib; veins run from it to the edge.
Pixel LeafSurface(Point p, float inside, std::uint32_t seed) {
    const float fold = p.x < 0 ? 0.94f : 0.74f;
    const float vein_phase = (std::fabs(p.x) * 0.9f - p.y) * 17;
    const float veins = 0.16f * Square(Square(0.5f + 0.5f * std::cos(vein_phase))) * Step(0.02f, 0.12f, std::fabs(p.x));
    const float midrib = 0.34f * Gauss(p.x, 0.035f);
    const float blotches = 0.2f * Fractal({p.x * 3.2f, p.y * 3.2f}, 3, seed);
    const float light = Unit(fold - veins - midrib + blotches);
    return {light, light * Unit(0.97f + 0.3f * blotches), light * 0.9f, inside};
}

/// A plain pointed leaf with a stalk.
Pixel PaintBeech(Point p) {
    const float bend = 0.1f * p.y * p.y;
    const Point q{p.x - bend, p.y};
    const float h = Unit((q.y + 0.58f) / 1.4f);
    const float width = 0.98f * std::pow(h, 0.62f) * std::pow(1 - h, 0.78f) * (1 + 0.05f * std::cos(q.y * 40));
    const float blade = Step(0.03f, -0.02f, std::fabs(q.x) - width) * Step(-0.6f, -0.56f, q.y);
    const float stalk = Step(0.055f, 0.025f, std::fabs(q.x)) * Step(-0.92f, -0.88f, q.y) * Step(-0.4f, -0.5f, q.y);
    return LeafSurface(q, std::max(blade, stalk), 901);
}

/// A leaf with five pointed lobes.
Pixel PaintMaple(Point p) {
    constexpr std::array<float, 5> kReach = {0.62f, 0.82f, 0.92f, 0.82f, 0.62f};
    const Point centre{p.x, p.y + 0.25f};
    const float angle = Angle({centre.y, centre.x}), r = Length(centre);   // 0 points up
    float outline = 0.2f;
    for (int i = 0; i < 5; ++i) {
        const float off = std::fabs(angle - (static_cast<float>(i) - 2) * 0.82f);
        const float lobe = kReach[i] * 1.15f * (1 - 0.92f * std::pow(Unit(off / 0.62f), 0.8f));
        outline = std::max(outline, lobe);
    }
    outline *= 1 + 0.05f * std::cos(angle * 34);
    const float blade = Step(0.03f, -0.02f, r - outline);
    const float stalk = Step(0.05f, 0.025f, std::fabs(p.x + 0.06f * (p.y + 0.25f))) * Step(-0.92f, -0.88f, p.y) *
                        Step(-0.15f, -0.3f, p.y);
    return LeafSurface({p.x, p.y}, std::max(blade, stalk), 911);
}

/// A leaf with round lobes along its sides.
Pixel PaintOak(Point p) {
    const float h = Unit((p.y + 0.55f) / 1.42f);
    const float lobes = 0.72f + 0.28f * std::cos(h * 25.0f + 2.6f);
    const float width =
        0.8f * std::pow(h, 0.5f) * std::pow(1 - h, 0.5f) * Mix(1, lobes, Step(1.0f, 0.75f, h)) * (0.7f + 0.4f * h);
    const float blade = Step(0.03f, -0.03f, std::fabs(p.x) - width) * Step(-0.57f, -0.53f, p.y);
    const float stalk = Step(0.055f, 0.025f, std::fabs(p.x)) * Step(-0.92f, -0.88f, p.y) * Step(-0.35f, -0.5f, p.y);
    return LeafSurface(p, std::max(blade, stalk), 921);
}

/// A cupped petal, paler at its edge.
Pixel PaintPetal(Point p) {
    const float h = Unit((p.y + 0.8f) / 1.55f);
    const float notch = 0.16f * Gauss(p.x, 0.16f);
    const float width = 0.86f * std::pow(h, 0.75f) * std::sqrt(Unit(1 - h)) * 1.15f;
    const float inside = Step(0.03f, -0.03f, std::fabs(p.x) - width) * Step(0.78f - notch, 0.72f - notch, p.y);
    const float light =
        Unit(0.72f + 0.28f * h - 0.22f * Gauss(p.x - 0.16f * h, 0.14f) + 0.1f * Fractal({p.x * 7, p.y * 2}, 2, 931));
    return {1, Mix(0.62f, 1, light), Mix(0.7f, 1, light), inside};
}

/// A piece of paper: a rectangle of the given proportions, turned, bent along a fold so that one part is in shadow.
Pixel PaintPaper(Point p, float half_width, float half_height, float turn, float fold) {
    Point q = Rotated(p, turn);
    q.x += 0.12f * q.y * q.y;   // the curl of the paper
    const float inside =
        Step(0.04f, -0.02f, std::fabs(q.x) - half_width) * Step(0.04f, -0.02f, std::fabs(q.y) - half_height);
    const float lit = q.y > fold ? 1.0f - 0.2f * (q.y - fold) / half_height : 0.82f + 0.2f * (q.y - fold) / half_height;
    const float gloss = 0.3f * Gauss(q.y - fold - 0.3f * half_height, 0.16f * half_height);
    return Grey(Unit(lit + gloss), inside);
}

Sprite Paper(const char* name, float half_width, float half_height, float turn, float fold) {
    return {name, 64, [=](Point p) { return PaintPaper(p, half_width, half_height, turn, fold); }};
}

/// A curled paper streamer.
Pixel PaintStreamer(Point p) {
    const float x = 0.34f * std::sin(p.y * 6.5f) * (0.75f + 0.25f * p.y);
    const float slope = std::cos(p.y * 6.5f);
    const float inside = Step(0.17f, 0.11f, std::fabs(p.x - x)) * Step(0.9f, 0.85f, std::fabs(p.y));
    return Grey(Unit(0.75f + 0.28f * slope), inside);
}

/// A round log from a to b: bark that darkens to its lower side, a pale cut at b, coals in the cracks of its middle.
struct Log {
    Point a, b;
    float radius;
    std::uint32_t seed;

    /// False where p is beside the log.
    bool Paint(Point p, Pixel& pixel) const {
        float along = 0;
        const float distance = SegmentDistance(p, a, b, along);
        const float across = (p.y - Mix(a.y, b.y, along)) / radius;
        const Point cut{(p.x - b.x) / (0.55f * radius), (p.y - b.y) / radius};
        if (Length(cut) < 1) {
            const float rings = 0.72f + 0.2f * std::cos(Length(cut) * 15);
            pixel = {0.66f * rings, 0.45f * rings, 0.27f * rings, 1};
            return true;
        }
        if (distance > radius) return false;
        const Point bark{along * 9, across * 2.4f};
        const float ridges = 0.5f + 0.8f * Fractal(bark, 4, seed);
        const float light =
            Unit((0.42f + 0.4f * across) * (0.45f + 0.8f * ridges)) * (0.55f + 0.45f * Gauss(across - 0.4f, 0.6f));
        const float coal = Step(0.56f, 0.78f, 0.5f + 0.9f * Fractal({along * 13, across * 3.5f}, 3, seed + 5)) *
                           Gauss(along - 0.45f, 0.28f);
        pixel = MixColour({0.42f * light, 0.27f * light, 0.17f * light, 1}, {1, 0.42f, 0.08f, 1}, coal);
        return true;
    }
};

/// The wood of a campfire: logs that lean together over two that lie across, stones in front.
Pixel PaintLogs(Point p) {
    constexpr std::array<Log, 4> kLogs = {{{{0.1f, -0.3f}, {-0.78f, -0.5f}, 0.12f, 971},
                                           {{-0.1f, -0.28f}, {0.8f, -0.46f}, 0.12f, 977},
                                           {{0.5f, 0.02f}, {-0.5f, -0.68f}, 0.125f, 983},
                                           {{-0.52f, -0.02f}, {0.46f, -0.72f}, 0.125f, 991}}};
    Pixel pixel{0.1f, 0.06f, 0.04f, 0};
    for (const Log& log : kLogs) log.Paint(p, pixel);
    return pixel;
}

/// Hammered iron, lit from above by the fire that it holds: brightest at the rim, rust in the hollows.
Pixel Iron(Point p, float light) {
    const float dents = Fractal({p.x * 6, p.y * 6}, 3, 1701);
    const float rust = Step(0.05f, 0.5f, Fractal({p.x * 4 + 5, p.y * 5}, 3, 1711));
    const float lit = Unit(light * (1 + 0.7f * dents));
    return MixColour({0.52f * lit, 0.47f * lit, 0.45f * lit, 1}, {0.6f * lit, 0.3f * lit, 0.16f * lit, 1}, rust);
}

/// A bowl of coals on three legs.
Pixel PaintBrazier(Point p) {
    constexpr float kRim = 0.36f, kHalfWidth = 0.8f, kDepth = 0.62f;
    constexpr std::array<std::array<Point, 2>, 3> kLegs = {
        {{{{-0.38f, 0.02f}, {-0.62f, -0.9f}}}, {{{0.38f, 0.02f}, {0.62f, -0.9f}}}, {{{0.0f, -0.2f}, {0.0f, -0.92f}}}}};
    Pixel pixel{0.12f, 0.1f, 0.1f, 0};
    for (const auto& [hip, foot] : kLegs) {
        float along = 0;
        const float width = 0.06f, distance = SegmentDistance(p, hip, foot, along);
        if (distance < width) pixel = Iron(p, (0.62f - 0.42f * along) * (1 - 0.5f * distance / width));
    }
    const Point bowl{p.x / kHalfWidth, (kRim - p.y) / kDepth};   // 1 at its outline
    if (bowl.y > 0 && Length(bowl) < 1) {
        const float roundness = std::sqrt(Unit(1 - Square(bowl.x)));
        const float ribs = 0.86f + 0.14f * std::cos(std::asin(bowl.x) * 22);
        pixel = Iron(p, (0.24f + 0.42f * roundness) * ribs * (1 - 0.62f * bowl.y));
    }
    const float rim = Length({bowl.x, (p.y - kRim) / 0.15f});
    if (rim > 1.08f) return pixel;
    if (rim > 0.86f) return Iron(p, 0.95f);
    const float heat = 0.5f + 1.3f * Fractal({p.x * 8, p.y * 20}, 3, 1721);
    return MixColour({0.16f, 0.04f, 0.02f, 1}, {1, 0.56f, 0.14f, 1}, Step(0.2f, 0.95f, heat));
}

/// A shelf of rock that overhangs: broken below, flat and mossy on top.
Pixel PaintLedge(Point p) {
    const float top = 0.16f + 0.05f * Fractal({p.x * 3, 0.5f}, 3, 1401);
    const float depth =
        (0.34f + 0.3f * Fractal({p.x * 2.6f, 7.5f}, 4, 1411)) * std::sqrt(Unit(1 - Square(p.x / 0.95f)));
    const float h = (p.y - (top - depth)) / std::max(depth, 0.01f);   // 0 at the lower edge, 1 on top
    const float inside = Step(0.0f, 0.06f, h) * Step(1.04f, 0.98f, h) * Step(0.95f, 0.9f, std::fabs(p.x));
    const float cracks = Billows({p.x * 4.5f + 0.6f * p.y, p.y * 7}, 4, 1421);
    const float grain = Fractal({p.x * 16, p.y * 16}, 3, 1431);
    const float light = Unit((0.28f + 0.5f * h) * (0.42f + 1.7f * cracks) + 0.14f * grain);
    const Pixel stone{0.62f * light, 0.6f * light, 0.56f * light, inside};
    const float moss = Step(0.72f, 0.95f, h + 0.55f * Fractal({p.x * 7, p.y * 9}, 3, 1441));
    return MixColour(stone, {0.3f * light + 0.04f, 0.46f * light + 0.05f, 0.16f * light, inside}, 0.85f * moss);
}

/// Four bands of a material each, stone, gold, rust and skin from the top, from shade on the left to light on the
/// right: meshes take the light of their faces from it.
Pixel PaintFacets(Point p) {
    struct Shades {
        Pixel dark, middle, bright;
    };
    constexpr Shades kBands[] = {
        {{0.17f, 0.15f, 0.16f, 1}, {0.52f, 0.48f, 0.45f, 1}, {0.93f, 0.89f, 0.83f, 1}},
        {{0.25f, 0.09f, 0.01f, 1}, {0.86f, 0.53f, 0.1f, 1}, {1, 0.95f, 0.66f, 1}},
        {{0.13f, 0.03f, 0.03f, 1}, {0.42f, 0.13f, 0.08f, 1}, {0.74f, 0.33f, 0.2f, 1}},
        {{0.08f, 0.02f, 0.13f, 1}, {0.46f, 0.14f, 0.42f, 1}, {0.98f, 0.68f, 0.76f, 1}},
    };
    const Shades& band = kBands[p.y > 0.425f ? 0 : p.y > -0.005f ? 1 : p.y > -0.435f ? 2 : 3];
    const float light = Unit((p.x + 0.8f) / 1.6f);
    return light < 0.5f ? MixColour(band.dark, band.middle, 2 * light)
                        : MixColour(band.middle, band.bright, 2 * light - 1);
}

}   // namespace

std::vector<Sprite> SolidSprites() {
    return {
        {"chip1", 64, Chip(941)},
        {"chip2", 64, Chip(953)},
        {"chip3", 64, Chip(967)},
        {"leaf1", 64, PaintBeech},
        {"leaf2", 64, PaintMaple},
        {"leaf3", 64, PaintOak},
        {"petal", 64, PaintPetal},
        Paper("confetti1", 0.5f, 0.72f, 0.3f, -0.1f),
        Paper("confetti2", 0.24f, 0.7f, -0.5f, 0.15f),
        {"streamer", 64, PaintStreamer},
        {"logs", 128, PaintLogs},
        {"ledge", 256, PaintLedge},
        {"brazier", 128, PaintBrazier},
        {"facets", 64, PaintFacets},
    };
}

}   // namespace sparkrig
