// Updating live particles, beside the same arithmetic over plain separate arrays in the same vector code. Items are
// particles; one thread where the name does not say otherwise.
#pragma GCC optimize("O3", "no-math-errno", "no-trapping-math")   // as the lanes are built

#include <benchmark/benchmark.h>
#include <tbb/global_control.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "effects/effect_simulation.h"
#include "effects/sine.h"
#include "effects/vector_code.h"

namespace sparkrig {
namespace {

constexpr float kFrame = 1 / 60.0f;
constexpr float kGrown = 1;   // second, when all have faded in, however many frames are measured
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

/// A cloud of state.range(0) particles on as many threads.
void UpdateCloud(benchmark::State& state, std::size_t threads, void (*define)(ParticleEffect&)) {
    const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, threads);
    BenchReporter reporter;
    EffectDefinitions definitions;
    EffectSimulation simulation(reporter);
    VisualEffect& effect = *definitions.effects.Insert("cloud");
    effect.name = "cloud";
    ParticleEffect& sub = *effect.particles.Get(effect.particles.AddNew());
    sub.owner = &effect;
    sub.count = static_cast<int>(state.range(0));
    define(sub);
    simulation.StartEffect(effect, {});
    simulation.Update(kGrown);
    for (auto _ : state) simulation.Update(kFrame);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void Update(benchmark::State& state) { UpdateCloud(state, 1, DefineParticle); }
void UpdateOnThreads(benchmark::State& state) {
    UpdateCloud(state, static_cast<std::size_t>(state.range(1)), DefineParticle);
}
void UpdateWithoutStages(benchmark::State& state) {
    UpdateCloud(state, 1, [](ParticleEffect&) {});
}

/// The limit of an update without stages: what must be moved.
void CopyFiftySixBytes(benchmark::State& state) {
    struct Bytes {
        char bytes[56];
    };
    std::vector<Bytes> from(static_cast<std::size_t>(state.range(0))), to(from.size());
    for (auto _ : state) {
        std::ranges::copy(from, to.begin());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// What Update computes, one array for each number.
struct PlainParticles {
    explicit PlainParticles(std::size_t count) : time(count), dead(count) {
        std::mt19937 generator(7);
        for (std::vector<float>* array :
             {&c, &life, &bx, &by, &bz, &px, &py, &pz, &size, &angle, &red, &green, &blue, &alpha}) {
            array->resize(count);
            for (float& value : *array) value = static_cast<float>(generator() % 1000) / 1000;
        }
    }

    std::vector<double> time;
    std::vector<int> dead;
    std::vector<float> c, life, bx, by, bz, px, py, pz, size, angle, red, green, blue, alpha;
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

SPARKRIG_VECTOR_CODE void UpdatePlain(PlainParticles& p, std::size_t count, float step) {
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
    float* __restrict size = p.size.data(), * __restrict angle = p.angle.data();
    for (std::size_t i = 0; i < count; ++i)
        size[i] = 2 * static_cast<float>(Sine(kTwoPi * StageTime(time[i], c[i], 0.7f)));
    for (std::size_t i = 0; i < count; ++i) angle[i] = 0.5f * static_cast<float>(StageTime(time[i], c[i], 0.9f));
    float* __restrict red = p.red.data(), * __restrict green = p.green.data(), * __restrict blue = p.blue.data();
    for (std::size_t i = 0; i < count; ++i) {
        const auto u = static_cast<float>(StageTime(time[i], c[i], 0.5f));
        red[i] = 0.1f * u;
        green[i] = 0.2f * u;
        blue[i] = 0.3f * u;
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

BENCHMARK(Update)->Arg(10000)->Arg(100000)->Arg(1000000);
BENCHMARK(UpdatePlainArrays)->Arg(10000)->Arg(100000);
BENCHMARK(UpdateWithoutStages)->Arg(100000);
BENCHMARK(CopyFiftySixBytes)->Arg(100000);
BENCHMARK(UpdateOnThreads)->ArgsProduct({{9000, 10000, 100000}, {1, 2, 4}})->UseRealTime();

}   // namespace
}   // namespace sparkrig
