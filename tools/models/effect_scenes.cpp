// Meshes of effects have no light but what their picture holds: textures/facets.png has bands of four materials, each
// from its shade on the left to its light on the right.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "tools/models/scene_text.h"
#include "tools/models/scenes.h"

namespace sparkrig {

namespace {

// ---- Pictures on faces

enum class Band { Stone, Gold, Rust, Skin };   // from the top of the picture

/// Where in the picture a band has this much light, 0 to 1.
Point TexturePoint(Band band, double light) { return {0.1 + 0.8 * light, 0.82 - 0.215 * static_cast<double>(band), 0}; }

Point Difference(const Point& a, const Point& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }

Point Normal(const Point& a, const Point& b, const Point& c) {
    const Point u = Difference(b, a), v = Difference(c, a);
    const Point n = {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
    const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
    return {n.x / length, n.y / length, n.z / length};
}

/// The light of a lamp above, before and beside, and a little from everywhere.
double LightOn(const Point& n) {
    const double lamp = 0.38 * n.x + 0.6 * n.y + 0.7 * n.z;
    return 0.3 + 0.3 * lamp + 0.38 * std::max(lamp, 0.0);
}

/// Lights of its three corners, which are points of its own.
void AddFacet(Geometry& g, const std::array<Point, 3>& corners, Band band, const std::array<double, 3>& lights) {
    const int first = static_cast<int>(g.points.size());
    for (std::size_t i = 0; i < corners.size(); ++i) {
        g.points.push_back(corners[i]);
        g.texture_points.push_back(TexturePoint(band, std::clamp(lights[i], 0.02, 0.98)));
    }
    g.faces.push_back({first, first + 1, first + 2});
}

/// `fall` is how much darker it is at its foot, z = -foot, than at its top.
void AddQuad(Geometry& g, const std::array<Point, 4>& p, Band band, double fall, double foot) {
    const double light = LightOn(Normal(p[0], p[1], p[2]));
    const auto at = [&](std::size_t i) { return light + fall * (p[i].z / foot - 1) / 2; };
    AddFacet(g, {p[0], p[1], p[2]}, band, {at(0), at(1), at(2)});
    AddFacet(g, {p[0], p[2], p[3]}, band, {at(0), at(2), at(3)});
}

std::string Material(int number, const char* name, const char* picture, bool two_sided) {
    return fmt::format(
        "  *MATERIAL {} {{\n    *MATERIAL_NAME \"{}\"\n    *MATERIAL_AMBIENT 1 1 1\n    *MATERIAL_DIFFUSE 1 1 1\n{}"
        "    *MAP_DIFFUSE {{\n      *BITMAP \"textures/{}\"\n      *MAP_AMOUNT 1\n    }}\n  }}\n",
        number, name, two_sided ? "    *MATERIAL_TWOSIDED 1\n" : "", picture);
}

std::string Materials(std::initializer_list<std::string> materials) {
    std::string text = fmt::format("*MATERIAL_LIST {{\n  *MATERIAL_COUNT {}\n", materials.size());
    for (const std::string& material : materials) text += material;
    return text + "}\n";
}

// ---- Tracks, of four seconds unless it is said otherwise

constexpr int kFramesPerSecond = 30;

/// Turns about an axis by an angle (radians) every quarter of so many seconds.
std::string Turning(const char* axis, double quarter, int seconds) {
    std::string text = "  *TM_ANIMATION {\n    *CONTROL_ROT_TRACK {\n";
    for (int i = 0; i <= 4; ++i)
        text += fmt::format("      *CONTROL_ROT_SAMPLE {} {} {:.6g}\n",
                            i * seconds * kFramesPerSecond * kTicksPerFrame / 4, axis, i == 0 ? 0 : quarter);
    return text + "    }\n  }\n";
}

// ---- The scenes

/// A broken stone of 80 facets.
std::string Chunk() {
    constexpr double kGolden = 1.618034;
    std::vector<Point> corners;
    for (const double a : {-1.0, 1.0})
        for (const double b : {-kGolden, kGolden}) corners.insert(corners.end(), {{0, a, b}, {a, b, 0}, {b, 0, a}});
    Geometry g;
    int seed = 0;
    const auto rough = [](const Point& p) {   // equal places have equal radii
        const double length = std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
        const double bumps = std::sin(3.1 * p.x / length + 1) * std::sin(2.7 * p.y / length + 2) +
                             std::sin(4.3 * p.z / length) * std::sin(3.7 * p.x / length + 0.5);
        const double radius = (5 + 1.5 * bumps) / length;
        return Point{1.25 * radius * p.x, 0.85 * radius * p.y, radius * p.z};
    };
    const auto middle = [](const Point& a, const Point& b) {
        return Point{(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2};
    };
    const auto facet = [&](const Point& a, const Point& b, const Point& c) {
        const Point p = rough(a), q = rough(b), r = rough(c);
        const double light = LightOn(Normal(p, q, r)) - 0.12 + 0.2 * (Noise(seed++) - 0.5);
        AddFacet(g, {p, q, r}, Band::Stone, {light, light, light});
    };
    for (std::size_t i = 0; i < corners.size(); ++i) {
        for (std::size_t j = i + 1; j < corners.size(); ++j) {
            for (std::size_t k = j + 1; k < corners.size(); ++k) {
                Point a = corners[i], b = corners[j], c = corners[k];
                const auto is_edge = [](const Point& from, const Point& to) {
                    const Point d = Difference(from, to);
                    return d.x * d.x + d.y * d.y + d.z * d.z < 4.1;
                };
                if (!is_edge(a, b) || !is_edge(b, c) || !is_edge(a, c)) continue;
                const Point n = Normal(a, b, c);
                if (n.x * a.x + n.y * a.y + n.z * a.z < 0) std::swap(b, c);   // counter-clockwise from outside
                const Point ab = middle(a, b), bc = middle(b, c), ca = middle(c, a);
                facet(a, ab, ca);
                facet(ab, b, bc);
                facet(ca, bc, c);
                facet(ab, bc, ca);
            }
        }
    }
    return Head(0, 30) + Materials({Material(0, "stone", "facets.png", false)}) +
           MeshNode("Chunk", {0, 0, 0}, g, "  *MATERIAL_REF 0\n");
}

/// The front of a blow: a flat ring, and a wall that leans out of it. Radius 10; the picture is a glow, taken across.
std::string Shock() {
    constexpr int kSides = 64;
    const auto around = [](double u) { return 2 * kPi * u; };
    const auto on_circle = [&](double u, double radius, double z) {
        return Point{radius * std::cos(around(u)), radius * std::sin(around(u)), z};
    };
    Geometry ring = Grid(kSides, 2, 1, true, [&](double u, double v) { return on_circle(u, 7 + 3.6 * v, 0); });
    Geometry wall =
        Grid(kSides, 4, 1, true, [&](double u, double v) { return on_circle(u, 9.4 + 1.1 * v * v, 3 * v); });
    for (Point& p : ring.texture_points) p = {0.5 + 0.1 * std::sin(7 * around(p.x)), 0.08 + 0.84 * p.y, 0};
    for (Point& p : wall.texture_points) {
        const double flame = 0.5 + 0.22 * std::sin(5 * around(p.x)) + 0.14 * std::sin(13 * around(p.x) + 1);
        p = {0.5 + 0.2 * (flame - 0.5), 0.5 + 0.46 * std::min(1.0, p.y * (1.5 - 0.7 * flame)), 0};
    }
    return Head(0, 30) + Materials({Material(0, "front", "glow.png", true)}) +
           MeshNode("Ring", {0, 0, 0}, ring, "  *MATERIAL_REF 0\n") +
           MeshNode("Wall", {0, 0, 0}, wall, "  *MATERIAL_REF 0\n");
}

/// An arm, 80 high, on a chain of ten bones that wind one after the other; repeats after four seconds.
std::string Tentacle() {
    constexpr int kBones = 10, kSides = 14, kRows = 40, kKeys = 8, kSeconds = 4;
    constexpr double kLength = 80, kStep = kLength / kBones;
    Geometry arm = Grid(kSides, kRows, 1, true, [](double u, double v) {
        const double radius = 7.5 * std::pow(1 - v, 0.75) + 0.25;
        return Point{radius * std::cos(2 * kPi * u), radius * std::sin(2 * kPi * u), kLength * v};
    });
    for (Point& p : arm.texture_points) {
        const double angle = 2 * kPi * p.x, rings = 0.07 * std::sin(46 * std::pow(p.y, 0.8));
        const double light = LightOn({std::cos(angle), std::sin(angle), 0.1}) + rings;
        p = TexturePoint(Band::Skin, std::clamp(light, 0.05, 0.95));
    }
    std::string bones;
    for (int i = 0; i < kBones; ++i) {
        const double middle = kStep * (i + 0.5);
        Bone bone{fmt::format("Arm{}", i), {0, 0, kStep * i}, {}};
        for (std::size_t p = 0; p < arm.points.size(); ++p) {
            double weight = 1 - std::abs(arm.points[p].z - middle) / kStep;
            if (i == 0 && arm.points[p].z < middle) weight = 1;
            if (i == kBones - 1 && arm.points[p].z > middle) weight = 1;
            if (weight > 0) bone.weights.push_back({static_cast<int>(p), weight});
        }
        const auto bend = [&](int key) {   // radians about y
            const double wave = 2 * kPi * (static_cast<double>(key) / kKeys - 0.09 * i);
            return (0.1 + 0.022 * i) * std::sin(wave) + 0.012 * i;
        };
        bones += "*BONEOBJECT {\n" + Named(bone.name.c_str(), i ? fmt::format("Arm{}", i - 1).c_str() : "") +
                 Placed("NODE_TM", {0, 0, i ? kStep : 0}) + "  *TM_ANIMATION {\n    *CONTROL_ROT_TRACK {\n";
        for (int key = 0; key <= kKeys; ++key)
            bones += fmt::format("      *CONTROL_ROT_SAMPLE {} 0 1 0 {:.5g}\n",
                                 key * kSeconds * kFramesPerSecond * kTicksPerFrame / kKeys,
                                 key == 0 ? bend(0) : bend(key) - bend(key - 1));
        bones += "    }\n  }\n}\n";
        arm.bones.push_back(bone);
    }
    Geometry bounds = Box(70, 30, 60);
    for (Face& face : bounds.faces) face.smoothing = 1;
    return Head(0, kSeconds * kFramesPerSecond) + Materials({Material(0, "skin", "facets.png", false)}) + bones +
           MeshNode("Arm", {0, 0, 0}, arm, "  *MATERIAL_REF 0\n") + MeshNode("Bounds", {0, 0, 40}, bounds, "");
}

/// A wheel of runes, 100 wide, whose rings turn against each other; repeats after four seconds.
std::string Rune() {
    const auto sheet = [](double half) {
        return Grid(1, 1, 1, true, [half](double u, double v) {
            return Point{half * (2 * u - 1), half * (2 * v - 1), 0};
        });
    };
    return Head(0, 120) +
           Materials({Material(0, "ring", "rune_ring.png", true), Material(1, "circle", "rune_circle.png", true)}) +
           MeshNode("Outer", {0, 0, 0}, sheet(50), Turning("0 0 1", kPi / 2, 4) + "  *MATERIAL_REF 0\n") +
           MeshNode("Inner", {0, 0, 3}, sheet(31), Turning("0 0 1", -kPi / 2, 4) + "  *MATERIAL_REF 1\n") +
           MeshNode("Core", {0, 0, 8}, sheet(13), Turning("0 0 1", kPi, 4) + "  *MATERIAL_REF 0\n");
}

/// A whirl of shadow, 100 wide and sunk in the middle, that turns once in four seconds; to be taken from what is
/// behind.
std::string Maw() {
    Geometry whirl = Grid(40, 8, 1, true, [](double u, double v) {
        const double radius = 0.4 + 49.6 * v, angle = 2 * kPi * u;
        return Point{radius * std::cos(angle), radius * std::sin(angle), -26 * (1 - v) * (1 - v)};
    });
    for (std::size_t i = 0; i < whirl.points.size(); ++i)
        whirl.texture_points[i] = {0.5 + whirl.points[i].x / 104, 0.5 + whirl.points[i].y / 104, 0};
    return Head(0, 120) + Materials({Material(0, "shadow", "shade_vortex.png", true)}) +
           MeshNode("Whirl", {0, 0, 0}, whirl, Turning("0 0 1", kPi / 2, 4) + "  *MATERIAL_REF 0\n");
}

/// The letter A, 42 high and 9 thick: golden, with a back of rust. Its front looks along y.
std::string Letter() {
    constexpr double kHalf = 4.5, kTop = 21;
    // x and z of each bar; as seen from the front, where x runs to the left, counter-clockwise.
    constexpr std::array<Point, 4> kBars[] = {
        {{{18, 0, -kTop}, {10, 0, -kTop}, {-4, 0, kTop}, {4, 0, kTop}}},
        {{{-10, 0, -kTop}, {-18, 0, -kTop}, {-4, 0, kTop}, {4, 0, kTop}}},
        {{{11, 0, -9}, {-11, 0, -9}, {-8.4, 0, -2}, {8.4, 0, -2}}},
    };
    Geometry g;
    double half = kHalf;
    for (const std::array<Point, 4>& corners : kBars) {
        const auto at = [&](std::size_t i, double y) { return Point{corners[i].x, y, corners[i].z}; };
        AddQuad(g, {at(0, half), at(1, half), at(2, half), at(3, half)}, Band::Gold, 0.6, kTop);
        AddQuad(g, {at(3, -half), at(2, -half), at(1, -half), at(0, -half)}, Band::Rust, 0.3, kTop);
        for (std::size_t i = 0; i < 4; ++i) {
            const std::size_t next = (i + 1) % 4;
            AddQuad(g, {at(i, half), at(i, -half), at(next, -half), at(next, half)}, Band::Gold, 0.3, kTop);
        }
        half -= 0.4;   // the faces of bars that cross do not lie in one another
    }
    return Head(0, 120) + Materials({Material(0, "gilt", "facets.png", false)}) +
           MeshNode("Letter", {0, 0, 0}, g, "  *MATERIAL_REF 0\n");
}

/// Nothing to see: a node that flies a figure of eight, 120 wide, in three seconds, small at both ends.
std::string Path() {
    constexpr int kKeys = 24, kSeconds = 3;
    std::string text = Head(0, kSeconds * kFramesPerSecond) + "*HELPEROBJECT {\n" + Named("Path") +
                       Placed("NODE_TM", {0, 0, 0}) + "  *TM_ANIMATION {\n    *CONTROL_POS_BEZIER {\n";
    constexpr int kTicks = kSeconds * kFramesPerSecond * kTicksPerFrame;
    for (int key = 0; key <= kKeys; ++key) {
        const double w = 2 * kPi * key / kKeys, rate = 2 * kPi / kTicks;   // radians a tick
        const Point p = {60 * std::sin(w), 24 * std::cos(w), 30 * std::sin(2 * w)};
        const Point slope = {60 * rate * std::cos(w), -24 * rate * std::sin(w), 60 * rate * std::cos(2 * w)};
        text += fmt::format(
            "      *CONTROL_BEZIER_POS_KEY {} {:.4g} {:.4g} {:.4g} {:.6g} {:.6g} {:.6g} {:.6g} {:.6g} {:.6g}\n",
            key * kTicks / kKeys, p.x, p.y, p.z, -slope.x, -slope.y, -slope.z, slope.x, slope.y, slope.z);
    }
    text += "    }\n    *CONTROL_SCALE_TRACK {\n";
    for (const auto& [frame, size] : {std::pair{0, 0.2}, {12, 1.0}, {45, 1.25}, {78, 1.0}, {90, 0.2}})
        text += fmt::format("      *CONTROL_SCALE_SAMPLE {} {} {} {}\n", frame * kTicksPerFrame, size, size, size);
    return text + "    }\n  }\n}\n";
}

constexpr SampleScene kScenes[] = {
    {"chunk.kva", Chunk}, {"shock.kva", Shock},   {"tentacle.kva", Tentacle}, {"rune.kva", Rune},
    {"maw.kva", Maw},     {"letter.kva", Letter}, {"path.kva", Path},
};

}   // namespace

std::span<const SampleScene> EffectScenes() { return kScenes; }

}   // namespace sparkrig
