// Drawing live particles, beside what bounds it. Run from the root of the tree, where the shader is. Items are
// particles.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <tuple>
#include <vector>

#include "effects/effect_drawing.h"
#include "effects/effect_simulation.h"
#include "effects/particle_vertices.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture.h"
#include "platform/window/window.h"
#include "scene/camera.h"

namespace sparkrig {
namespace {

constexpr float kFrame = 1 / 60.0f;
constexpr int kParticles = 100000;

struct BenchReporter : ErrorClass {};

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

VisualEffectMotion Stage(AnimationType type, ConcatType concat, const D3DXVECTOR3& scale) {
    VisualEffectMotion stage;
    stage.type = type;
    stage.concat = concat;
    stage.scale = scale;
    stage.time_count_offset = 0.3f;
    return stage;
}

/// kParticles in sight of a camera, of four sub-effects with three textures. The draw calls stop before OpenGL.
struct Scene {
    Scene() {
        RegisterClassExA({Ignore, "BENCH"});
        gfx.InitDevice(CreateWindowExA("BENCH", "bench", 0, 0, 640, 480), 1, nullptr, 16, 0, 1, 0, 0);
        KRN_Camera camera;
        camera.SetEye(0, 300, 0, true);
        camera.SetViewDirection(0, -1, 0, true);
        gfx.SetView(camera);
        gfx.SetProjection(1, 2000, 0.7854f, -1);
        drawing.Init(gfx, 0);
        VisualEffect& effect = *definitions.effects.Insert("cloud");
        effect.name = "cloud";
        for (int i = 0; i < 4; ++i) Define(effect, i);
        simulation.StartEffect(effect, {});
        gfx.BeginScene();
        gfx.SuppressDraws(true);
    }

    void Define(VisualEffect& effect, int number) {
        ParticleEffect& sub = *effect.particles.Get(effect.particles.AddNew());
        sub.owner = &effect;
        sub.index = number;
        sub.count = kParticles / 4;
        sub.start_time = 1;
        // Two additive ones with two textures over two depth-ordered ones that share a third.
        const bool additive = number < 2;
        sub.blend_mode = additive ? 3 : 9;
        sub.sort_class = additive ? 1 : 0;
        sub.texture = textures[additive ? number : 2];
        if (!sub.texture->HasSurface()) gfx.CreateTexture(sub.texture.get(), 8, 8, -1, -1, 1);
        sub.position_stages.Add(Stage(AnimationType::RandSphere, ConcatType::Add, {80, 60, 40}));
        sub.position_stages.Add(Stage(AnimationType::Sin, ConcatType::Add, {3, 4, 5}));
        sub.scale_stages.Add(Stage(AnimationType::Sin, ConcatType::Multiply, {2, 3, 4}));
        sub.colour_stages.Add(Stage(AnimationType::Rand1, ConcatType::Multiply, {0.6f, 0.2f, 0.3f}));
        sub.rotation_stages.Add(Stage(AnimationType::Linear, ConcatType::Rotate, {0.5f, 0.1f, 0.2f}));
        VisualEffectMotion alpha = Stage(AnimationType::Bezier, ConcatType::Multiply, {1, 1, 1});
        for (const float time : {0.0f, 20.0f, 90.0f}) alpha.curve.AddKey(time, {0.3f + time / 300, 0, 0});
        alpha.curve.ComputeTangents(1);
        sub.alpha_stages.Add(alpha);
    }

    KRN_Gfx gfx;
    std::shared_ptr<KRN_Texture> textures[3] = {std::make_shared<KRN_Texture>(), std::make_shared<KRN_Texture>(),
                                                std::make_shared<KRN_Texture>()};
    BenchReporter reporter;
    EffectDefinitions definitions;
    EffectSimulation simulation{reporter};
    EffectDrawing drawing;
};

Scene& TheScene() {
    static Scene& scene = *new Scene;   // the driver goes with the process
    return scene;
}

void CountParticles(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * kParticles); }

void WholeFrameWithoutGpu(benchmark::State& state) {
    Scene& scene = TheScene();
    for (auto _ : state) {
        scene.simulation.Update(kFrame);
        scene.drawing.Draw(scene.simulation);
    }
    state.counters["drawn"] = scene.drawing.DrawnParticles();
    state.counters["draws"] = scene.drawing.DrawCalls();
    CountParticles(state);
}

void BuildDrawOrder(benchmark::State& state) {
    Scene& scene = TheScene();
    for (auto _ : state) scene.drawing.BuildOrder(scene.simulation);
    CountParticles(state);
}

/// The limit: only the sort, by comparison.
void SortByComparison(benchmark::State& state) {
    std::mt19937 generator(7);
    std::vector<std::tuple<std::uint16_t, float, std::uint32_t>> elements(kParticles), sorted;
    std::uint32_t number = 0;
    for (auto& [sort_class, distance, index] : elements) {
        sort_class = 0;
        distance = static_cast<float>(generator() % 1000000) / 1000;
        index = number++;
    }
    for (auto _ : state) {
        state.PauseTiming();
        sorted = elements;
        state.ResumeTiming();
        std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) {
            return std::get<0>(a) != std::get<0>(b) ? std::get<0>(a) < std::get<0>(b) : std::get<1>(a) > std::get<1>(b);
        });
        benchmark::DoNotOptimize(sorted.data());
    }
    CountParticles(state);
}

/// Where the GPU reads: room for all particles of a frame; and their records, in an order that jumps about.
struct Places {
    static constexpr std::size_t kBatch = EffectDrawing::kParticlesPerBatch;
    static constexpr std::size_t kBatchVertices = kBatch * kVerticesPerParticle;
    static constexpr std::size_t kBatches = kParticles / kBatch + 1;

    Places() : ring(kBatches * kBatchVertices), filled(kBatchVertices), records(kBatches * kBatch) {
        std::mt19937 generator(7);
        for (DrawRecord& record : records) {
            record.angle = static_cast<float>(generator() % 1000);
            order.push_back(&record);
        }
        std::shuffle(order.begin(), order.end(), generator);
    }
    std::vector<EffectParticleVertex> ring, filled;
    std::vector<DrawRecord> records;
    std::vector<const DrawRecord*> order;
};

void VerticesInDrawOrder(benchmark::State& state) {
    Places places;
    for (auto _ : state) {
        for (std::size_t batch = 0; batch < Places::kBatches; ++batch)
            FillParticles({&places.order[batch * Places::kBatch], Places::kBatch},
                          &places.ring[batch * Places::kBatchVertices]);
        benchmark::ClobberMemory();
    }
    CountParticles(state);
}

/// The limit: the same bytes, stored and nothing else.
void CopyVertices(benchmark::State& state) {
    Places places;
    for (auto _ : state) {
        for (std::size_t batch = 0; batch < Places::kBatches; ++batch)
            std::ranges::copy(places.filled, &places.ring[batch * Places::kBatchVertices]);
        benchmark::ClobberMemory();
    }
    CountParticles(state);
}

BENCHMARK(WholeFrameWithoutGpu)->Unit(benchmark::kMillisecond);
BENCHMARK(BuildDrawOrder)->Unit(benchmark::kMillisecond);
BENCHMARK(SortByComparison)->Unit(benchmark::kMillisecond);
BENCHMARK(VerticesInDrawOrder)->Unit(benchmark::kMillisecond);
BENCHMARK(CopyVertices)->Unit(benchmark::kMillisecond);

}   // namespace
}   // namespace sparkrig
