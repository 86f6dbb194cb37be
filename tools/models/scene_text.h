// The parts that scenes are written of: words of the text format and geometry.
#pragma once
#include <string>
#include <vector>

namespace sparkrig {

inline constexpr double kPi = 3.14159265358979;
inline constexpr int kTicksPerFrame = 160;

struct Point {
    double x, y, z;
};

struct Face {
    int a, b, c;
    int smoothing = 0;   // 0 for none
    int material = 0;
};

struct Weight {
    int point;
    double weight;
};

struct Bone {
    std::string name;
    Point place;
    std::vector<Weight> weights;
};

struct Geometry {
    std::vector<Point> points, texture_points;   // as many of both, or none of the second
    std::vector<Face> faces;
    std::vector<Bone> bones;
};

// ---- Words of the format

std::string Head(int first_frame, int last_frame);
std::string Placed(const char* keyword, const Point& p);
std::string Named(const char* name, const char* parent = "");
/// `more` goes behind the geometry: tracks and the material.
std::string MeshNode(const char* name, const Point& place, const Geometry& geometry, const std::string& more,
                     const char* parent = "");

// ---- Shapes

/// From 0 to 1, the same everywhere.
double Noise(int i);
/// A grid of (columns + 1) x (rows + 1) points, two faces a cell.
template <class Place>
Geometry Grid(int columns, int rows, int smoothing, bool textured, Place place) {
    Geometry g;
    for (int y = 0; y <= rows; ++y) {
        for (int x = 0; x <= columns; ++x) {
            const double u = static_cast<double>(x) / columns, v = static_cast<double>(y) / rows;
            g.points.push_back(place(u, v));
            if (textured) g.texture_points.push_back({u, v, 0});
        }
    }
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            const int a = y * (columns + 1) + x, b = a + columns + 1;
            g.faces.push_back({a, a + 1, b, smoothing});
            g.faces.push_back({a + 1, b + 1, b, smoothing});
        }
    }
    return g;
}

/// A box around the origin; each side has a smoothing group of its own.
Geometry Box(double x, double y, double z);

}   // namespace sparkrig
