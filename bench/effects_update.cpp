// Updating live particles, beside the same arithmetic over plain separate arrays. Items are particles.
#pragma GCC optimize("O3", "no-math-errno", "no-trapping-math")   // as the lanes are built

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "effects/effect_simulation.h"
#include "effects/sine.h"

namespace sparkrig {
namespace {

constexpr float kFrame = 1 / 60.0f;
constexpr float kTwoPi = 6.283186f;

struct BenchReporter : ErrorClass {};

VisualEffectMotion Stage(AnimationType type, ConcatType concat, const D3DXVECTOR3& scale, float speed) {
    VisualEffectMotion stage;
    stage.type = type;
    stage.concat = concat;
    stage.scale = scale;
    stage.speed = speed;
    stage.time_count_offset = 0.3f;
    PrepareStage(stage);
    return stage;
}

/// Position and scale swing, alpha follows a curve, colour and rotation go on steadily.
void DefineParticle(ParticleEffect& sub) {
    sub.position_stages.Add(Stage(AnimationType::Sin, ConcatType::Add, {30, 20, 10}, 0.3f));
    sub.scale_stages.Add(Stage(AnimationType::Sin, ConcatType::Multiply, {2, 3, 4}, 0.7f));
    sub.colour_stages.Add(Stage(AnimationType::Linear, ConcatType::Multiply, {0.1f, 0.2f, 0.3f}, 0.5f));
    sub.rotation_stages.Add(Stage(AnimationType::Linear, ConcatType::Rotate, {0.5f, 0.1f, 0.2f}, 0.9f));
    VisualEffectMotion alpha = Stage(AnimationType::Bezier, ConcatType::Multiply, {1, 1, 1}, 0.01f);
    alpha.curve.AddKey(0, {0.1f, 0, 0});
    alpha.curve.AddKey(0.3f, {1, 0, 0});
    alpha.curve.AddKey(1, {0.2f, 0, 0});
    alpha.curve.ComputeTangents(1);
    sub.alpha_stages.Add(alpha);
    sub.fade_in = 0.5;
}

void Update(benchmark::State& state) {
    BenchReporter reporter;
    EffectDefinitions definitions;
    EffectSimulation simulation(reporter);
    VisualEffect& effect = *definitions.effects.Insert("cloud");
    effect.name = "cloud";
    ParticleEffect& sub = *effect.particles.Get(effect.particles.AddNew());
    sub.owner = &effect;
    sub.count = static_cast<int>(state.range(0));
    DefineParticle(sub);
    simulation.StartEffect(effect, {});
    for (auto _ : state) simulation.Update(kFrame);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// What Update computes, one array for each number.
struct PlainParticles {
    explicit PlainParticles(std::size_t count) : time(count), dead(count) {
        std::mt19937 generator(7);
        for (std::vector<float>* array :
             {&c, &life, &bx, &by, &bz, &px, &py, &pz, &sx, &sy, &sz, &qx, &qy, &qz, &qw, &alpha}) {
            array->resize(count);
            for (float& value : *array) value = static_cast<float>(generator() % 1000) / 1000;
        }
    }

    std::vector<double> time;
    std::vector<int> dead;
    std::vector<float> c, life, bx, by, bz, px, py, pz, sx, sy, sz, qx, qy, qz, qw, alpha;
};

double StageTime(double t, float c, double speed) {
    const double u = speed * (t + static_cast<double>(c) * 0.3f);
    return u < -9e10 ? -9e10 : (u > 9e10 ? 9e10 : u);
}

float Curve(float u) {   // two Hermite segments, then the end
    const bool second = u >= 0.3f;
    const float s = second ? (u - 0.3f) / 0.7f : u / 0.3f;
    const float s2 = s * s, s3 = s2 * s;
    const float from = second ? 1.0f : 0.1f, to = second ? 0.2f : 1.0f;
    const float out = second ? 0.4f : 0.9f, in = second ? -0.3f : 0.5f;
    const float value =
        from * (2 * s3 - 3 * s2 + 1) + to * (3 * s2 - 2 * s3) + out * (s3 - 2 * s2 + s) + in * (s3 - s2);
    return u >= 1 ? 0.2f : value;
}

void UpdatePlain(PlainParticles& p, std::size_t count, float step) {
    double* __restrict time = p.time.data();
    int* __restrict dead = p.dead.data();
    const float* __restrict c = p.c.data(), * __restrict life = p.life.data();
    for (std::size_t i = 0; i < count; ++i) {
        time[i] += step;
        dead[i] = (life[i] != 0) & (life[i] < time[i]);
    }
    float* __restrict px = p.px.data(), * __restrict py = p.py.data(), * __restrict pz = p.pz.data();
    const float* __restrict bx = p.bx.data(), * __restrict by = p.by.data(), * __restrict bz = p.bz.data();
    for (std::size_t i = 0; i < count; ++i) {
        const auto v = static_cast<float>(Sine(kTwoPi * StageTime(time[i], c[i], 0.3f)));
        px[i] = bx[i] + 30 * v;
        py[i] = by[i] + 20 * v;
        pz[i] = bz[i] + 10 * v;
    }
    float* __restrict sx = p.sx.data(), * __restrict sy = p.sy.data(), * __restrict sz = p.sz.data();
    for (std::size_t i = 0; i < count; ++i) {
        const auto v = static_cast<float>(Sine(kTwoPi * StageTime(time[i], c[i], 0.7f)));
        sx[i] = 2 * v;
        sy[i] = 3 * v;
        sz[i] = 4 * v;
    }
    float* __restrict qx = p.qx.data(), * __restrict qy = p.qy.data(), * __restrict qz = p.qz.data();
    float* __restrict qw = p.qw.data();
    for (std::size_t i = 0; i < count; ++i) {
        const auto u = static_cast<float>(StageTime(time[i], c[i], 0.9f));
        const float x = 0.5f * u, y = 0.1f * u, z = 0.2f * u;
        const float length = std::sqrt(x * x + y * y + z * z);
        const double half = 0.5 * length;
        const float axis = length > 0 ? static_cast<float>(Sine(half)) / length : 0;
        qx[i] = x * axis;
        qy[i] = y * axis;
        qz[i] = z * axis;
        qw[i] = static_cast<float>(Cosine(half));
    }
    float* __restrict alpha = p.alpha.data();
    for (std::size_t i = 0; i < count; ++i) {
        const double t = time[i];
        const double fade = t < 0.5 ? t / 0.5 : 1;
        alpha[i] = Curve(static_cast<float>(StageTime(t, c[i], 0.01f))) * static_cast<float>(fade);
    }
}

void UpdatePlainArrays(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    PlainParticles particles(count);
    for (auto _ : state) {
        UpdatePlain(particles, count, kFrame);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(Update)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(UpdatePlainArrays)->Arg(1000)->Arg(10000)->Arg(100000);

}   // namespace
}   // namespace sparkrig
