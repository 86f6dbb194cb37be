// A puff of smoke through its life: it swells, rolls up, thins out and is gone with its last picture.
#include "tools/textures/flipbook.h"
#include "tools/textures/noise.h"
#include "tools/textures/shapes.h"

namespace sparkrig {

namespace {

/// Swelling, fast and then slow, from 0 to 1.
float Swelling(float phase) { return 1 - Square(1 - phase) * (1 - phase); }

Moment Later(Point p, float scale, float phase, float changes) {
    return {{p.x * scale, p.y * scale}, 40 + changes * phase};
}

/// How thick the puff is at a point. Below 0 there is none.
float Thickness(Point p, float phase) {
    constexpr Period kEndless{4096, 4096};
    const float swelling = Swelling(phase);
    const float radius = Mix(0.36f, 0.8f, swelling);
    // Seen from its own size, so that its lumps swell with it; rolled about its middle, the more the nearer to it.
    Point q{p.x / radius, p.y / radius};
    q = Rotated(q, 0.9f * phase * Spot(Length(q) / 1.4f));
    const float curl = Mix(0.1f, 0.3f, phase);
    const Moment slow = Later(q, 1.4f, phase, 1.2f);
    q = {q.x + curl * MovingFractal(slow, kEndless, 3, 1601),
         q.y + curl * MovingFractal({{slow.p.x + 31.7f, slow.p.y}, slow.time}, kEndless, 3, 1621)};
    float lumps = 0, height = 0.5f, scale = 1.7f;
    for (std::uint32_t octave = 0; octave < 4; ++octave) {
        lumps += height * std::fabs(MovingNoise(Later(q, scale, phase, 1.2f), kEndless, 1641 + octave));
        height *= 0.42f;
        scale *= 2.03f;
    }
    const float holes = MovingFractal(Later(q, 1.7f, phase, 1.4f), kEndless, 4, 1661);
    const float dissolving = Step(0.2f, 1.1f, phase);
    return 1.12f - 1.08f * Length(q) + 1.5f * (lumps - 0.2f) + (0.1f + 1.9f * dissolving) * holes - 0.85f * dissolving;
}

/// The light comes from above: brighter where the puff grows thicker downwards.
Pixel PaintPuff(Point p, float phase) {
    constexpr float kLightStep = 0.07f;
    const float thickness = Thickness(p, phase);
    const float towards_light = Thickness({p.x - 0.4f * kLightStep, p.y + kLightStep}, phase);
    const float lit = Unit(0.62f + 1.2f * (thickness - towards_light) + 0.14f * p.y + 0.1f * thickness);
    const float soft = Mix(0.6f, 0.9f, phase);
    const float alpha = Step(0.0f, soft, thickness) * Step(0.97f, 0.74f, Length(p)) * Step(1.0f, 0.7f, phase);
    return Grey(Mix(0.42f, 1.0f, lit), alpha);
}

}   // namespace

std::vector<Flipbook> SmokeFlipbooks() { return {{"smoke", 128, 32, PaintPuff}}; }

}   // namespace sparkrig
