// Repeatable chance: smooth noise over the plane, and dice.
#pragma once
#include <cstdint>
#include <random>

#include "tools/textures/sprite.h"

namespace sparkrig {

/// Gradient noise, about [-1, 1], one hill a unit. Each seed is another landscape.
float Noise(Point p, std::uint32_t seed);

/// Fractal sum of `octaves` noises, each twice as fine and half as high as the one before; about [-1, 1].
float Fractal(Point p, int octaves, std::uint32_t seed);

/// Fractal sum of folded noise: round lumps with sharp creases between them, in [0, 1].
float Billows(Point p, int octaves, std::uint32_t seed);

/// p moved by two fractal noises, at most about `amount`: what makes straight things organic.
Point Warp(Point p, float frequency, float amount, std::uint32_t seed);

/// A point of the plane at a time.
struct Moment {
    Point p;
    float time;
};

/// Noise in motion. It repeats after `rows` units of y and after `times` units of time, so that a loop in which the
/// time goes once through and y moves on by a multiple of the rows has no seam.
struct Period {
    int rows, times;
};
float MovingNoise(Moment at, Period period, std::uint32_t seed);

/// Fractal sum of MovingNoise. The fine octaves are finer in the plane only: they are carried along, not faster.
float MovingFractal(Moment at, Period period, int octaves, std::uint32_t seed);

class Dice {
  public:
    explicit Dice(std::uint32_t seed) : engine_(seed) {}
    float Range(float low, float high) { return low + (high - low) * static_cast<float>(engine_() * kToUnit); }

  private:
    static constexpr double kToUnit = 1.0 / 4294967296.0;
    std::mt19937 engine_;
};

}   // namespace sparkrig
