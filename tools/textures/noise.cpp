#include "tools/textures/noise.h"

#include <cmath>

namespace sparkrig {

namespace {

constexpr float kTwoPi = 6.2831853f;
constexpr float kNoiseHeight = 1.4f;   // lattice noise of unit gradients stays below 1 / sqrt(2)

std::uint32_t Hash(std::int32_t x, std::int32_t y, std::uint32_t seed) {
    std::uint32_t h = seed * 0x9E3779B9u ^ static_cast<std::uint32_t>(x) * 0x85EBCA6Bu;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du ^ static_cast<std::uint32_t>(y) * 0xC2B2AE35u;
    h = (h ^ (h >> 12)) * 0x297A2D39u;
    return h ^ (h >> 15);
}

/// The slope of the lattice point's random gradient towards (dx, dy).
float Slope(std::int32_t x, std::int32_t y, float dx, float dy, std::uint32_t seed) {
    const float angle = static_cast<float>(Hash(x, y, seed) & 0xFFFFu) * (kTwoPi / 65536.0f);
    return std::cos(angle) * dx + std::sin(angle) * dy;
}

float Ease(float t) { return t * t * t * (t * (t * 6 - 15) + 10); }

float Lerp(float a, float b, float t) { return a + (b - a) * t; }

}   // namespace

float Noise(Point p, std::uint32_t seed) {
    const float fx = std::floor(p.x), fy = std::floor(p.y);
    const auto x = static_cast<std::int32_t>(fx), y = static_cast<std::int32_t>(fy);
    const float dx = p.x - fx, dy = p.y - fy;
    const float low = Lerp(Slope(x, y, dx, dy, seed), Slope(x + 1, y, dx - 1, dy, seed), Ease(dx));
    const float high = Lerp(Slope(x, y + 1, dx, dy - 1, seed), Slope(x + 1, y + 1, dx - 1, dy - 1, seed), Ease(dx));
    return kNoiseHeight * Lerp(low, high, Ease(dy));
}

float Fractal(Point p, int octaves, std::uint32_t seed) {
    float sum = 0, height = 0.5f;
    for (int i = 0; i < octaves; ++i) {
        sum += height * Noise(p, seed + static_cast<std::uint32_t>(i));
        p = {p.x * 2.03f + 17.1f, p.y * 2.03f - 9.7f};
        height *= 0.5f;
    }
    return sum;
}

float Billows(Point p, int octaves, std::uint32_t seed) {
    float sum = 0, height = 0.5f;
    for (int i = 0; i < octaves; ++i) {
        sum += height * std::fabs(Noise(p, seed + static_cast<std::uint32_t>(i)));
        p = {p.x * 2.03f + 5.3f, p.y * 2.03f + 11.9f};
        height *= 0.5f;
    }
    return sum;
}

Point Warp(Point p, float frequency, float amount, std::uint32_t seed) {
    const Point at{p.x * frequency, p.y * frequency};
    const Point beside{at.x + 31.7f, at.y - 12.3f};
    return {p.x + 2 * amount * Fractal(at, 3, seed), p.y + 2 * amount * Fractal(beside, 3, seed + 101)};
}

}   // namespace sparkrig
