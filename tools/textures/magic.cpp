// Drawn magic and electricity: rune circles, a vortex, lightning, a healing cross, a mirror, the ribbon of a trail.
#include <array>

#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"
#include "tools/textures/sprite.h"

namespace sparkrig {

namespace {

/// A drawn line: sharp enough to read, with a glow about it.
float Ink(float distance, float width) { return Unit(Gauss(distance, width) + 0.22f * Gauss(distance, 4.5f * width)); }

/// One of the letters of the circle: three strokes that the seed chooses, in a cell of [-1, 1] x [-1, 1].
float Letter(Point p, std::uint32_t seed) {
    constexpr std::array<Point, 7> kKnots = {
        {{-0.6f, 0.9f}, {0.6f, 0.9f}, {-0.6f, 0.1f}, {0.6f, 0.05f}, {-0.6f, -0.9f}, {0.6f, -0.9f}, {0, 0.4f}}};
    Dice dice(seed);
    float along = 0;
    float distance = SegmentDistance(p, {-0.45f, -0.9f}, {-0.45f, 0.9f}, along);
    for (int i = 0; i < 3; ++i) {
        const Point a = kKnots[static_cast<std::size_t>(dice.Range(0, 6.99f))],
                    b = kKnots[static_cast<std::size_t>(dice.Range(0, 6.99f))];
        distance = std::min(distance, SegmentDistance(p, a, b, along));
    }
    return distance;
}

/// Letters side by side around the circle of the given radius.
float LetterRing(Point p, float radius, float height, int count) {
    const float angle = Angle(p), r = Length(p);
    const float place = (angle / (2 * kPi) + 0.5f) * static_cast<float>(count);
    const auto index = static_cast<std::uint32_t>(std::floor(place));
    const float width = 2 * kPi * radius / static_cast<float>(count);
    const Point cell{(place - std::floor(place) - 0.5f) * width / (0.5f * height) * 1.15f,
                     (r - radius) / (0.5f * height)};
    if (std::fabs(cell.y) > 1.6f) return 0;
    return Ink(Letter(cell, 1001 + index % 97u) * 0.5f * height, 0.011f);
}

/// Distance to the triangle that stands on the circle with the given turn.
float TriangleDistance(Point p, float radius, float turn) {
    float distance = 9, along = 0;
    for (int i = 0; i < 3; ++i) {
        const float a = turn + 2 * kPi * static_cast<float>(i) / 3, b = a + 2 * kPi / 3;
        distance = std::min(distance, SegmentDistance(p, {radius * std::cos(a), radius * std::sin(a)},
                                                      {radius * std::cos(b), radius * std::sin(b)}, along));
    }
    return distance;
}

/// The great circle: two rims with letters between them and a star of two triangles.
Pixel PaintRuneCircle(Point p) {
    const float r = Length(p);
    float ink = std::max({Ink(r - 0.9f, 0.014f), Ink(r - 0.86f, 0.006f), Ink(r - 0.66f, 0.009f)});
    ink = std::max(ink, LetterRing(p, 0.76f, 0.13f, 24));
    ink = std::max(ink, 0.85f * std::max(Ink(TriangleDistance(p, 0.66f, kPi / 2), 0.008f),
                                         Ink(TriangleDistance(p, 0.66f, -kPi / 2), 0.008f)));
    ink = std::max({ink, Ink(r - 0.33f, 0.007f), 0.8f * Ink(r - 0.12f, 0.006f)});
    const float worn = 0.82f + 0.3f * Fractal({p.x * 4, p.y * 4}, 3, 1101);
    return White(Unit(ink * worn) * Step(0.985f, 0.95f, r));
}

/// The small circle that turns the other way inside the great one.
Pixel PaintRuneRing(Point p) {
    const float r = Length(p), angle = Angle(p);
    const float dashes = Step(-0.25f, 0.05f, std::cos(angle * 9));
    float ink = std::max(Ink(r - 0.88f, 0.012f) * dashes, Ink(r - 0.62f, 0.01f));
    ink = std::max(ink, LetterRing(p, 0.75f, 0.17f, 14));
    return White(Unit(ink) * Step(0.985f, 0.95f, r));
}

/// A vortex: arms of light that wind into the dark centre.
Pixel PaintVortex(Point p) {
    const float r = Length(p);
    const float wound = Angle(p) + 3.4f * std::log(r + 0.12f);
    const Point around{std::cos(wound), std::sin(wound)};
    const float arms = Fractal({around.x * 1.7f + r, around.y * 1.7f - r}, 5, 1111);
    const float fine = Fractal({around.x * 4.5f, around.y * 4.5f + 2 * r}, 4, 1121);
    const float ring = Step(0.08f, 0.42f, r) * Step(0.96f, 0.5f, r);
    return White(Unit(ring * (0.34f + 1.1f * arms + 0.55f * fine)));
}

/// A jagged line from a to b that forks into thinner ones.
struct Bolt {
    struct Piece {
        Point a, b;
        float width;
    };
    std::vector<Piece> pieces;

    void Grow(Dice& dice, Point a, Point b, float width, int forks) {
        constexpr int kPieces = 11;
        const Point across{-(b.y - a.y), b.x - a.x};
        Point last = a;
        for (int i = 1; i <= kPieces; ++i) {
            const float t = static_cast<float>(i) / kPieces;
            const float off = i == kPieces ? 0 : dice.Range(-0.1f, 0.1f);
            const Point next{Mix(a.x, b.x, t) + across.x * off, Mix(a.y, b.y, t) + across.y * off};
            pieces.push_back({last, next, width * (1 - 0.45f * t)});
            if (forks > 0 && (i == 3 || i == 5 || i == 8)) Fork(dice, next, b, width, forks);
            last = next;
        }
    }

    float Light(Point p) const {
        float core = 0, halo = 0, along = 0;
        for (const Piece& piece : pieces) {
            const float distance = SegmentDistance(p, piece.a, piece.b, along);
            core = std::max(core, Gauss(distance, piece.width) * std::min(1.0f, 0.45f + piece.width * 30));
            halo = std::max(halo, Gauss(distance, 6.5f * piece.width));
        }
        return Unit(core + 0.24f * halo);
    }

  private:
    void Fork(Dice& dice, Point from, Point end, float width, int forks) {
        const float reach = dice.Range(0.35f, 0.75f),
                    turn = dice.Range(0.35f, 0.85f) * (dice.Range(-1, 1) < 0 ? -1.0f : 1.0f);
        const Point ahead = Rotated({(end.x - from.x) * reach, (end.y - from.y) * reach}, turn);
        Grow(dice, from, {from.x + ahead.x, from.y + ahead.y}, 0.5f * width, forks - 1);
    }
};

/// Lightning that strikes from the upper edge down to the lower one.
Sprite Lightning(const char* name, std::uint32_t seed) {
    Dice dice(seed);
    Bolt bolt;
    bolt.Grow(dice, {dice.Range(-0.2f, 0.2f), 0.97f}, {0, -0.93f}, 0.019f, 2);
    return {name, 256, [bolt](Point p) {
                return White(bolt.Light(p) * Vignette({p.x, 0}) * Step(0.985f, 0.9f, std::fabs(p.y)));
            }};
}

/// A short arc that crawls over a surface.
Sprite Arc(const char* name, std::uint32_t seed) {
    Dice dice(seed);
    Bolt bolt;
    bolt.Grow(dice, {-0.82f, dice.Range(-0.2f, 0.2f)}, {0.82f, dice.Range(-0.2f, 0.2f)}, 0.03f, 1);
    return {name, 128, [bolt](Point p) { return White(bolt.Light(p) * Vignette(p)); }};
}

/// A plus with round ends, a light rim and a glow.
Pixel PaintCross(Point p) {
    float along = 0;
    const float distance = std::min(SegmentDistance(p, {-0.42f, 0}, {0.42f, 0}, along),
                                    SegmentDistance(p, {0, -0.42f}, {0, 0.42f}, along));
    const float body = Step(0.2f, 0.15f, distance);
    const float rim = Gauss(distance - 0.165f, 0.05f);
    const float glow = 0.3f * Gauss(distance, 0.34f) * Spot(Length(p) / 0.95f);
    return White(Unit(0.62f * body + 0.5f * rim + glow));
}

/// Gold under a light from the upper left. `normal` is where the surface looks to, z towards the eye.
Pixel Gold(Point normal, float z) {
    const float length = std::sqrt(Square(normal.x) + Square(normal.y) + Square(z));
    const float lit = (-0.42f * normal.x + 0.68f * normal.y + 0.6f * z) / std::max(length, 1e-6f);
    const float shine = std::pow(Unit(lit), 14.0f), warm = Unit(0.16f + 0.8f * Unit(lit));
    return {Unit(warm + 0.6f * shine), Unit(0.74f * warm + 0.6f * shine), Unit(0.3f * warm + 0.5f * shine), 1};
}

/// The frame of a mirror: a twisted golden hoop between two lips, set with eight stones. Inside and outside is nothing.
Pixel PaintMirror(Point p) {
    constexpr float kRadius = 0.84f, kHalfWidth = 0.1f, kStones = 8, kStone = 0.085f;
    const float r = Length(p), angle = Angle(p);
    const Point out{p.x / std::max(r, 1e-6f), p.y / std::max(r, 1e-6f)}, along{-out.y, out.x};
    const float band = (r - kRadius) / kHalfWidth;
    const float step = 2 * kPi / kStones, off = std::remainder(angle - 0.5f * step, step);
    const Point stone{off * kRadius / kStone, (r - kRadius) / kStone};
    if (Length(stone) < 1) {
        const float facet = 0.5f + 0.5f * std::cos(6 * Angle(stone));
        const float light = Unit(0.3f + 0.4f * facet * Length(stone) + 0.25f * (out.x * -0.4f + out.y * 0.7f));
        const Point in_picture{along.x * stone.x + out.x * stone.y, along.y * stone.x + out.y * stone.y};
        const float glint = Gauss(Length({in_picture.x + 0.33f, in_picture.y - 0.36f}), 0.28f);
        return {Unit(0.2f * light + glint), Unit(0.75f * light + glint), Unit(1.15f * light + glint), 1};
    }
    if (Length(stone) < 1.32f) return Gold({out.x * stone.y, out.y * stone.y}, 0.55f);   // its setting
    if (std::fabs(band) > 1) return {0.2f, 0.13f, 0.05f, 0};
    const bool lip = std::fabs(band) > 0.72f;
    const float across = lip ? (std::fabs(band) - 0.86f) / 0.14f * (band > 0 ? 1.0f : -1.0f) : band / 0.72f;
    const float twist = lip ? 0 : std::sin(44 * angle + 2.6f * across);
    return Gold({out.x * across + 0.8f * twist * along.x, out.y * across + 0.8f * twist * along.y},
                std::sqrt(Unit(1 - Square(across))) + 0.15f);
}

/// The band of a trail: u runs along it from the old end to the new one, v across it. Trails are drawn as their texture
/// is, so each colour is a picture of its own; the middle is nearly white.
Pixel PaintRibbon(Point p, Pixel colour) {
    const float along = Unit((p.x + 0.94f) / 1.88f);
    const float threads = 0.62f + 0.75f * Fractal({p.x * 1.3f, p.y * 5}, 4, 1131);
    const float across = Spot(std::fabs(p.y) / 0.92f), core = Gauss(p.y, 0.2f);
    const Pixel lit = MixColour(colour, White(1), 0.75f * core * along);
    return {lit.r, lit.g, lit.b,
            Unit(across * threads * 0.85f + 0.6f * core) * std::sqrt(along) * Step(0.95f, 0.5f, p.x)};
}

/// A band that repeats along a trail without a seam: silk in waves that come back after its length.
Pixel PaintSilk(Point p, Pixel colour) {
    const float wave = std::sin(kPi * p.x + 0.9f * std::sin(2 * kPi * p.x) + 3 * p.y);
    const float across = Step(0.92f, 0.7f, std::fabs(p.y)), fold = 0.5f + 0.5f * wave;
    const Pixel lit = MixColour(colour, White(1), 0.6f * fold * fold);
    return {lit.r, lit.g, lit.b, Unit(across * (0.25f + 0.6f * fold))};
}

Sprite Silk(const char* name, Pixel colour) {
    return {name, 64, [=](Point p) { return PaintSilk(p, colour); }, true};
}

Sprite Ribbon(const char* name, Pixel colour) {
    return {name, 64, [=](Point p) { return PaintRibbon(p, colour); }};
}

}   // namespace

std::vector<Sprite> MagicSprites() {
    return {
        {"rune_circle", 256, PaintRuneCircle},
        {"rune_ring", 256, PaintRuneRing},
        {"vortex", 256, PaintVortex},
        Lightning("lightning1", 1151),
        Lightning("lightning2", 1163),
        Lightning("lightning3", 1181),
        Arc("arc1", 1201),
        Arc("arc2", 1213),
        {"cross", 64, PaintCross},
        {"mirror", 256, PaintMirror},
        Ribbon("ribbon_violet", {0.5f, 0.26f, 1, 1}),
        Ribbon("ribbon_gold", {1, 0.74f, 0.24f, 1}),
        Ribbon("ribbon_ice", {0.3f, 0.72f, 1, 1}),
        Silk("silk_red", {0.95f, 0.12f, 0.2f, 1}),
        Silk("silk_wind", {0.45f, 0.75f, 0.8f, 1}),
    };
}

}   // namespace sparkrig
