#include "tools/models/scene_text.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>

namespace sparkrig {

// ---- Words of the format

std::string Head(int first_frame, int last_frame) {
    return fmt::format(
        "*3DSMAX_KVAEXPORT 211\n*SCENE {{\n  *SCENE_FIRSTFRAME {}\n  *SCENE_LASTFRAME {}\n  *SCENE_FRAMESPEED 30\n"
        "  *SCENE_TICKSPERFRAME {}\n  *SCENE_BACKGROUND_STATIC 0.1 0.12 0.2\n  *SCENE_AMBIENT_STATIC 0.3 0.3 "
        "0.35\n}}\n",
        first_frame, last_frame, kTicksPerFrame);
}

std::string Placed(const char* keyword, const Point& p) {
    return fmt::format(
        "  *{} {{\n    *TM_ROW0 1 0 0\n    *TM_ROW1 0 1 0\n    *TM_ROW2 0 0 1\n    *TM_ROW3 {:.4g} {:.4g} {:.4g}\n"
        "    *TM_POS {:.4g} {:.4g} {:.4g}\n    *TM_SCALE 1 1 1\n  }}\n",
        keyword, p.x, p.y, p.z, p.x, p.y, p.z);
}

std::string Named(const char* name, const char* parent) {
    std::string text = fmt::format("  *NODE_NAME \"{}\"\n", name);
    if (*parent) text += fmt::format("  *NODE_PARENT \"{}\"\n", parent);
    return text;
}

namespace {

std::string Weights(const std::vector<Bone>& bones) {
    if (bones.empty()) return "";
    std::string text = "    *MESH_WEIGHTS {\n" + Placed("MESH_INIT_TM", {0, 0, 0});
    for (const Bone& bone : bones) {
        text += fmt::format("      *BONE_WEIGHT {{\n        *BONE_NAME \"{}\"\n", bone.name);
        text += Placed("BONE_INIT_TM", {-bone.place.x, -bone.place.y, -bone.place.z});
        for (const Weight& w : bone.weights)
            text += fmt::format("        *INDEX_WEIGHT {} {:.4g}\n", w.point, w.weight);
        text += "      }\n";
    }
    return text + "    }\n";
}

std::string Texture(const Geometry& g) {
    if (g.texture_points.empty()) return "";
    std::string text = fmt::format("    *MESH_NUMTVERTEX {}\n    *MESH_TVERTLIST {{\n", g.texture_points.size());
    for (std::size_t i = 0; i < g.texture_points.size(); ++i) {
        const Point& p = g.texture_points[i];
        text += fmt::format("      *MESH_TVERT {} {:.5g} {:.5g} {:.5g}\n", i, p.x, p.y, p.z);
    }
    text += fmt::format("    }}\n    *MESH_NUMTVFACES {}\n    *MESH_TFACELIST {{\n", g.faces.size());
    for (std::size_t i = 0; i < g.faces.size(); ++i)
        text += fmt::format("      *MESH_TFACE {} {} {} {}\n", i, g.faces[i].a, g.faces[i].b, g.faces[i].c);
    return text + "    }\n";
}

std::string MeshBlock(const Geometry& g) {
    std::string text =
        fmt::format("  *MESH {{\n    *MESH_NUMVERTEX {}\n    *MESH_NUMFACES {}\n    *MESH_VERTEX_LIST {{\n",
                    g.points.size(), g.faces.size());
    for (std::size_t i = 0; i < g.points.size(); ++i)
        text += fmt::format("*MESH_VERTEX {} {:.5g} {:.5g} {:.5g}\n", i, g.points[i].x, g.points[i].y, g.points[i].z);
    text += "    }\n    *MESH_FACE_LIST {\n";
    for (std::size_t i = 0; i < g.faces.size(); ++i) {
        const Face& f = g.faces[i];
        text += fmt::format("*MESH_FACE {}: A: {} B: {} C: {}", i, f.a, f.b, f.c);
        if (f.smoothing) text += fmt::format(" *MESH_SMOOTHING {}", f.smoothing);
        if (f.material) text += fmt::format(" *MESH_MTLID {}", f.material);
        text += '\n';
    }
    return text + "    }\n" + Texture(g) + Weights(g.bones) + "  }\n";
}

}   // namespace

std::string MeshNode(const char* name, const Point& place, const Geometry& geometry, const std::string& more,
                     const char* parent) {
    return "*GEOMOBJECT {\n" + Named(name, parent) + Placed("NODE_TM", place) + MeshBlock(geometry) + more + "}\n";
}

// ---- Shapes

double Noise(int i) {
    const auto hash = static_cast<std::uint32_t>(i) * 2654435761u;
    return static_cast<double>((hash ^ hash >> 15) & 0xFFFF) / 65535;
}

Geometry Box(double x, double y, double z) {
    Geometry g;
    for (int i = 0; i < 8; ++i) g.points.push_back({i & 1 ? x : -x, i & 2 ? y : -y, i & 4 ? z : -z});
    constexpr int kSides[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (int side = 0; side < 6; ++side) {
        const auto& s = kSides[side];
        g.faces.push_back({s[0], s[1], s[2], side + 1, side / 3});
        g.faces.push_back({s[0], s[2], s[3], side + 1, side / 3});
    }
    return g;
}

}   // namespace sparkrig
