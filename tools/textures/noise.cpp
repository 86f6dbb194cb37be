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

std::int32_t Wrap(std::int32_t v, std::int32_t period) { return (v % period + period) % period; }

/// The same in space: the gradients point to the middles of a cube's edges.
float SlopeInTime(std::int32_t x, std::int32_t y, std::int32_t t, Point off, float dt, std::uint32_t seed) {
    constexpr float kGradients[12][3] = {{1, 1, 0},  {-1, 1, 0},  {1, -1, 0}, {-1, -1, 0}, {1, 0, 1},  {-1, 0, 1},
                                         {1, 0, -1}, {-1, 0, -1}, {0, 1, 1},  {0, -1, 1},  {0, 1, -1}, {0, -1, -1}};
    const float* g = kGradients[Hash(x, y, seed + static_cast<std::uint32_t>(t) * 7919u) % 12];
    return g[0] * off.x + g[1] * off.y + g[2] * dt;
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

float MovingNoise(Moment at, Period period, std::uint32_t seed) {
    const float fx = std::floor(at.p.x), fy = std::floor(at.p.y), ft = std::floor(at.time);
    const auto x = static_cast<std::int32_t>(fx);
    const float dx = at.p.x - fx, dy = at.p.y - fy, dt = at.time - ft;
    float layers[2];
    for (int k = 0; k < 2; ++k) {
        const std::int32_t t = Wrap(static_cast<std::int32_t>(ft) + k, period.times);
        float rows[2];
        for (int j = 0; j < 2; ++j) {
            const std::int32_t y = Wrap(static_cast<std::int32_t>(fy) + j, period.rows);
            const float up = dy - static_cast<float>(j), later = dt - static_cast<float>(k);
            rows[j] = Lerp(SlopeInTime(x, y, t, {dx, up}, later, seed),
                           SlopeInTime(x + 1, y, t, {dx - 1, up}, later, seed), Ease(dx));
        }
        layers[k] = Lerp(rows[0], rows[1], Ease(dy));
    }
    return Lerp(layers[0], layers[1], Ease(dt));
}

float MovingFractal(Moment at, Period period, int octaves, std::uint32_t seed) {
    float sum = 0, height = 0.5f;
    for (int i = 0; i < octaves; ++i) {
        sum += height * MovingNoise(at, period, seed + static_cast<std::uint32_t>(i));
        at.p = {at.p.x * 2 + 17.1f, at.p.y * 2};
        period.rows *= 2;
        height *= 0.5f;
    }
    return sum;
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
