// The small functions that painters are made of: falloffs, steps, distances, polar coordinates, colours.
#pragma once
#include <algorithm>
#include <cmath>

#include "tools/textures/sprite.h"

namespace sparkrig {

constexpr float kPi = 3.14159265f;

inline float Square(float v) { return v * v; }
inline float Length(Point p) { return std::sqrt(p.x * p.x + p.y * p.y); }
inline float Angle(Point p) { return std::atan2(p.y, p.x); }
inline float Mix(float a, float b, float t) { return a + (b - a) * t; }
inline float Unit(float v) { return std::clamp(v, 0.0f, 1.0f); }

/// 1 at 0, 1/e at `width`.
inline float Gauss(float v, float width) { return std::exp(-Square(v / width)); }

/// 0 up to `from`, 1 from `to` on, smooth between. Falls where `from` is the larger.
inline float Step(float from, float to, float v) {
    const float t = Unit((v - from) / (to - from));
    return t * t * (3 - 2 * t);
}

/// (1 - r^2)^2: a spot that reaches 0 at r = 1 with no edge.
inline float Spot(float r) { return r < 1 ? Square(1 - r * r) : 0.0f; }

inline Point Rotated(Point p, float angle) {
    const float c = std::cos(angle), s = std::sin(angle);
    return {p.x * c - p.y * s, p.x * s + p.y * c};
}

/// Distance from p to the segment a-b; `along` is where the nearest point lies, 0 at a, 1 at b.
inline float SegmentDistance(Point p, Point a, Point b, float& along) {
    const Point ab{b.x - a.x, b.y - a.y}, ap{p.x - a.x, p.y - a.y};
    along = Unit((ap.x * ab.x + ap.y * ab.y) / std::max(ab.x * ab.x + ab.y * ab.y, 1e-9f));
    return Length({ap.x - ab.x * along, ap.y - ab.y * along});
}

inline Pixel White(float alpha) { return {1, 1, 1, alpha}; }
inline Pixel Grey(float value, float alpha) { return {value, value, value, alpha}; }

inline Pixel MixColour(Pixel a, Pixel b, float t) {
    return {Mix(a.r, b.r, t), Mix(a.g, b.g, t), Mix(a.b, b.b, t), Mix(a.a, b.a, t)};
}

/// Fades everything out before the edge of the square.
inline float Vignette(Point p) { return Step(0.96f, 0.78f, std::fabs(p.x)) * Step(0.96f, 0.78f, std::fabs(p.y)); }

}   // namespace sparkrig
