#include "tools/models/scenes.h"

#include <fmt/format.h>

#include <cmath>

#include "tools/models/scene_text.h"

namespace sparkrig {

namespace {

// ---- The scenes

/// An uneven ball that flies and turns.
std::string Rock() {
    const auto place = [](double u, double v) {
        const double angle = 2 * kPi * u, height = 0.97 * kPi * (v - 0.5);   // open at the poles
        const double radius = 8 + 1.5 * std::sin(3 * angle) * std::cos(height) + std::cos(5 * height);
        return Point{radius * std::cos(height) * std::cos(angle), radius * std::cos(height) * std::sin(angle),
                     radius * std::sin(height)};
    };
    const std::string tracks =
        "  *TM_ANIMATION {\n    *CONTROL_POS_BEZIER {\n"
        "      *CONTROL_BEZIER_POS_KEY 0 0 0 0 0 0 0 0.004 0 0.02\n"
        "      *CONTROL_BEZIER_POS_KEY 4800 30 5 40 -0.006 0 -0.001 0.006 0 0.001\n"
        "      *CONTROL_BEZIER_POS_KEY 9600 60 0 0 -0.004 0 0.02 0 0 0\n    }\n    *CONTROL_ROT_TCB {\n"
        "      *CONTROL_TCB_ROT_KEY 0 0 0 1 0 0 0 0 0 0\n"
        "      *CONTROL_TCB_ROT_KEY 4800 0.6 0 0.8 4.5 0.2 0.1 0 0.1 0.2\n"
        "      *CONTROL_TCB_ROT_KEY 9600 0 1 0 2.5 0 0 0 0.3 0\n    }\n    *CONTROL_SCALE_BEZIER {\n"
        "      *CONTROL_BEZIER_SCALE_KEY 0 1 1 1\n      *CONTROL_BEZIER_SCALE_KEY 9600 0.5 0.6 0.7\n    }\n  }\n";
    return Head(0, 60) +
           "*MATERIAL_LIST {\n  *MATERIAL_COUNT 1\n  *MATERIAL 0 {\n    *MATERIAL_NAME \"stone\"\n"
           "    *MATERIAL_AMBIENT 0.3 0.28 0.25\n    *MATERIAL_DIFFUSE 0.6 0.55 0.5\n    *MATERIAL_SPECULAR 1 1 1\n"
           "    *MATERIAL_SHINE 0.2\n    *MATERIAL_SHINESTRENGTH 0.3\n  }\n}\n" +
           MeshNode("Rock", {0, 0, 0}, Grid(18, 10, 1, false, place), tracks + "  *MATERIAL_REF 0\n") +
           "*GEOMOBJECT {\n" + Named("Pebble", "Rock") + Placed("NODE_TM", {20, 0, 0}) +
           "  *CLONE \"Rock\"\n  *MATERIAL_REF 0\n}\n";
}

/// A flat ring that grows, its picture running outwards, its colour and opacity changing.
std::string Ring() {
    const auto place = [](double u, double v) {
        const double angle = 2 * kPi * u, radius = 10 + 5 * v;
        return Point{radius * std::cos(angle), radius * std::sin(angle), 0};
    };
    return Head(0, 30) +
           "*MATERIAL_LIST {\n  *MATERIAL_COUNT 1\n  *MATERIAL 0 {\n    *MATERIAL_NAME \"shock\"\n"
           "    *MATERIAL_DIFFUSE 1 0.8 0.4\n    *MATERIAL_AMBIENT 1 1 1\n    *MATERIAL_TRANSPARENCY 0.25\n"
           "    *MATERIAL_TRANSPARENCY_TYPE \"Additive\"\n    *MATERIAL_TWOSIDED 1\n    *MAP_DIFFUSE {\n"
           "      *BITMAP \"textures/glow.png\"\n      *MAP_AMOUNT 1\n      *UVW_U_TILING 4\n      *UVW_TILE_U "
           "\"Mirror\"\n"
           "      *UVW_TILE_V \"Tile\"\n      *MAP_ANIMATION {\n        *MAP_ATTRIBUTE \"OffsetV\"\n"
           "        *CONTROL_FLOAT_BEZIER {\n          *CONTROL_BEZIER_FLOAT_KEY 0 0 0 0.0001\n"
           "          *CONTROL_BEZIER_FLOAT_KEY 4800 1 -0.0002 0\n        }\n      }\n    }\n    *MATERIAL_ANIMATION "
           "{\n"
           "      *MATERIAL_ATTRIBUTE \"SelfIllumColor\"\n      *CONTROL_COLOR_BEZIER {\n"
           "        *CONTROL_BEZIER_POINT3_KEY 0 1 0.9 0.5 0 0 0 0 0 0\n"
           "        *CONTROL_BEZIER_POINT3_KEY 4800 0.4 0.1 0 0 0 0 0 0 0\n      }\n      *MATERIAL_ATTRIBUTE "
           "\"Opacity\"\n"
           "      *CONTROL_FLOAT_LINEAR {\n        *CONTROL_FLOAT_KEY 0 0.9\n        *CONTROL_FLOAT_KEY 4800 0\n      "
           "}\n"
           "    }\n  }\n}\n" +
           MeshNode("Ring", {0, 0, 1}, Grid(32, 2, 1, true, place),
                    "  *TM_ANIMATION {\n    *CONTROL_SCALE_TRACK {\n      *CONTROL_SCALE_SAMPLE 0 0.2 0.2 1\n"
                    "      *CONTROL_SCALE_SAMPLE 4800 3 3 1\n    }\n  }\n  *MATERIAL_REF 0\n");
}

/// Cloth that hangs on a chain of four bones, each turning on the one before.
std::string Flag() {
    constexpr int kBones = 4;
    constexpr double kLength = 40;
    Geometry cloth = Grid(16, 8, 1, true, [](double u, double v) { return Point{kLength * u, 0, 24 * v}; });
    std::string bones;
    for (int i = 0; i < kBones; ++i) {
        const std::string name = fmt::format("Bone{}", i), parent = i ? fmt::format("Bone{}", i - 1) : "";
        const double start = kLength * i / kBones, middle = kLength * (i + 0.5) / kBones;
        Bone bone{name, {start, 0, 0}, {}};
        for (std::size_t p = 0; p < cloth.points.size(); ++p) {
            const double weight = 1 - std::abs(cloth.points[p].x - middle) / (kLength / kBones);
            if (weight > 0) bone.weights.push_back({static_cast<int>(p), weight});
        }
        cloth.bones.push_back(bone);
        bones += "*BONEOBJECT {\n" + Named(name.c_str(), parent.c_str()) +
                 Placed("NODE_TM", {i ? kLength / kBones : 0, 0, 0}) +
                 fmt::format(
                     "  *TM_ANIMATION {{\n    *CONTROL_ROT_TRACK {{\n      *CONTROL_ROT_SAMPLE 0 0 0 1 0\n"
                     "      *CONTROL_ROT_SAMPLE 2400 0 0 1 {:.3g}\n      *CONTROL_ROT_SAMPLE 4800 0 0 1 {:.3g}\n"
                     "    }}\n  }}\n}}\n",
                     0.2 + 0.1 * i, -0.3 - 0.1 * i);
    }
    return Head(0, 30) + bones + MeshNode("Flag", {0, 0, 0}, cloth, "  *WIREFRAME_COLOR 0.8 0.1 0.1\n");
}

/// A camera that follows a target, a lamp on a track and a sun.
std::string Stage() {
    return Head(10, 70) + "*TARGETOBJECT {\n" + Named("Aim") + Placed("NODE_TM", {0, 20, 5}) +
           "  *TM_ANIMATION {\n    *CONTROL_POS_TRACK {\n      *CONTROL_POS_SAMPLE 1600 0 20 5\n"
           "      *CONTROL_POS_SAMPLE 11200 10 30 15\n    }\n  }\n}\n*CAMERAOBJECT {\n" +
           Named("Camera") + Placed("NODE_TM", {0, -60, 20}) +
           "  *TARGET_NODE \"Aim\"\n  *CAMERA_SETTINGS {\n    *CAMERA_FOV 0.9\n  }\n  *TM_ANIMATION {\n"
           "    *CONTROL_POS_BEZIER {\n      *CONTROL_BEZIER_POS_KEY 1600 0 -60 20 0 0 0 0.003 0 0\n"
           "      *CONTROL_BEZIER_POS_KEY 11200 40 -40 30 0 -0.002 0 0 0 0\n    }\n  }\n}\n*LIGHTOBJECT {\n" +
           Named("Lamp") + Placed("NODE_TM", {15, 0, 30}) +
           "  *LIGHT_TYPE TargetSpot\n  *TARGET_NODE \"Aim\"\n  *LIGHT_USELIGHT 1\n  *LIGHT_SETTINGS {\n"
           "    *LIGHT_COLOR 1 0.8 0.5\n    *LIGHT_INTENS 1.5\n    *LIGHT_ASPECT 1\n    *LIGHT_HOTSPOT 30\n"
           "    *LIGHT_FALLOFF 45\n    *LIGHT_TDIST 200\n  }\n  *TM_ANIMATION {\n    *CONTROL_POS_TRACK {\n"
           "      *CONTROL_POS_SAMPLE 1600 15 0 30\n      *CONTROL_POS_SAMPLE 11200 -15 0 30\n    }\n  }\n}\n"
           "*LIGHTOBJECT {\n" +
           Named("Sun") + Placed("NODE_TM", {0, 0, 100}) +
           "  *LIGHT_TYPE \"Directional\"\n  *LIGHT_SETTINGS {\n    *LIGHT_COLOR 0.6 0.7 0.9\n    *LIGHT_INTENS 0.5\n"
           "  }\n}\n*ATMOSPHERIC {\n  *STDFOG {\n    *FOG_COLOR 0.5 0.6 0.7\n  }\n}\n" +
           MeshNode("Floor", {0, 0, 0}, Box(40, 40, 1), "");
}

/// A crate whose scene is as large as another mesh says.
std::string Bounded() {
    return Head(0, 100) + MeshNode("Crate", {0, 0, 5}, Box(5, 5, 5), "  *WIREFRAME_COLOR 0.5 0.35 0.2\n") +
           MeshNode("Bounds", {2, 3, 4}, Box(20, 15, 10), "");
}

/// One box, three sides in each of two materials.
std::string TwoMaterials() {
    const auto material = [](const char* colour) {
        return fmt::format("      *MATERIAL_AMBIENT {0}\n      *MATERIAL_DIFFUSE {0}\n    }}\n", colour);
    };
    return Head(0, 100) +
           "*MATERIAL_LIST {\n  *MATERIAL_COUNT 1\n  *MATERIAL 0 {\n    *MATERIAL_NAME \"both\"\n    *NUMSUBMTLS 2\n"
           "    *SUBMATERIAL 0 {\n" +
           material("0.9 0.2 0.1") + "    *SUBMATERIAL 1 {\n" + material("0.1 0.3 0.9") + "  }\n}\n" +
           MeshNode("Die", {0, 0, 6}, Box(6, 6, 6), "  *MATERIAL_REF 0\n");
}

/// More vertices than one mesh can have: two halves, faceted, so that every corner is a vertex of its own.
std::string Terrain() {
    const auto half = [](double side) {
        return Grid(110, 52, 0, false, [side](double u, double v) {
            const int cell = static_cast<int>(std::lround(u * 110)) * 53 + static_cast<int>(std::lround(v * 52));
            return Point{side * 55 + 110 * (u - 0.5), 52 * (v - 0.5), 3 * Noise(cell)};
        });
    };
    return Head(0, 100) + MeshNode("West", {0, 0, 0}, half(-1), "  *WIREFRAME_COLOR 0.2 0.5 0.2\n") +
           MeshNode("East", {0, 0, 0}, half(1), "  *WIREFRAME_COLOR 0.3 0.45 0.2\n");
}

constexpr SampleScene kScenes[] = {
    {"rock.kva", Rock},       {"ring.kva", Ring},       {"flag.kva", Flag},
    {"stage.kva", Stage},     {"bounded.kva", Bounded}, {"two_materials.kva", TwoMaterials},
    {"terrain.kva", Terrain},
};

}   // namespace

std::span<const SampleScene> SampleScenes() { return kScenes; }

}   // namespace sparkrig
