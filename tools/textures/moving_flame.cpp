// A flame that burns on: what rises through it comes back below, so that its last picture leads into its first.
#include "tools/textures/flipbook.h"
#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"

namespace sparkrig {

namespace {

/// Fractal noise that climbs: `climb` cells a loop, which is also its period, and changes `changes` times on the way.
float Climbing(Point p, float phase, int climb, int changes, int octaves, std::uint32_t seed) {
    const Moment at{{p.x, p.y - static_cast<float>(climb) * phase}, static_cast<float>(changes) * phase};
    return MovingFractal(at, {climb, changes}, octaves, seed);
}

/// From the edge, deep red, to the core, nearly white.
Pixel HeatColour(float heat, float alpha) {
    constexpr Pixel kRed{0.86f, 0.15f, 0.02f, 1}, kOrange{1, 0.48f, 0.08f, 1}, kYellow{1, 0.82f, 0.36f, 1},
        kWhite{1, 0.97f, 0.82f, 1};
    const float t = Unit(heat) * 3;
    Pixel colour = t < 1   ? MixColour(kRed, kOrange, t)
                   : t < 2 ? MixColour(kOrange, kYellow, t - 1)
                           : MixColour(kYellow, kWhite, t - 2);
    colour.a = alpha;
    return colour;
}

/// Round below, drawn out upwards, torn into tongues that come loose at the top.
Pixel PaintFlame(Point p, float phase) {
    const float h = Unit((p.y + 0.9f) / 1.8f);
    const float sway = 0.62f * h * Climbing({0.4f, p.y * 0.8f}, phase, 2, 2, 2, 1501);
    const float curl = 0.06f + 0.30f * h;
    const Point q{p.x - sway + curl * Climbing({p.x * 1.9f, p.y * 1.6f}, phase, 4, 3, 3, 1511),
                  p.y + 0.5f * curl * Climbing({p.x * 1.9f + 31.7f, p.y * 1.6f}, phase, 4, 3, 3, 1531)};
    const float width = 0.78f * std::sqrt(Unit(h * 3.4f)) * std::pow(1 - h, 0.75f) + 0.02f;
    const float strands = Climbing({q.x * 3.4f, q.y * 1.15f}, phase, 4, 3, 4, 1551);
    const float gaps = Climbing({q.x * 1.6f + 7, q.y * 1.3f}, phase, 4, 2, 2, 1571);
    const float torn = 0.35f + 1.25f * h;
    const float density = 1.1f - std::fabs(q.x) / width + torn * strands + 1.2f * torn * gaps - 0.45f * h * h;
    const float body = Step(0.0f, 0.5f, density) * Step(0.0f, 0.14f, h) * Step(1.0f, 0.7f, h);
    const float cool = 0.55f * Gauss(Length({0.8f * p.x, 1.3f * (p.y + 0.85f)}), 0.4f);   // where the fuel is
    return HeatColour(0.72f * density - 0.45f * h + 0.2f - cool, body * Vignette(p));
}

}   // namespace

std::vector<Flipbook> FlameFlipbooks() { return {{"flame", 128, 32, PaintFlame}}; }

}   // namespace sparkrig
