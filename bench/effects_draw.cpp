// Drawing live particles, beside what bounds it. Run from the root of the tree, where the shader is. Items are
// particles.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>
#include <tuple>
#include <vector>

#include "effects/particle_vertices.h"
#include "effects/visual_effect_system.h"
#include "effects/visual_effect_system_parts.h"
#include "gfx/gfx.h"
#include "gfx/gfx_parts.h"
#include "gfx/textures/texture.h"
#include "platform/window/window.h"
#include "scene/camera.h"

namespace sparkrig {
namespace {

constexpr float kFrame = 1 / 60.0f;
constexpr int kParticles = 100000;

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
        system.Init(gfx, 0);
        VisualEffect& effect = *system.Parts().definitions->effects.Insert("cloud");
        effect.name = "cloud";
        for (int i = 0; i < 4; ++i) Define(effect, i);
        system.StartEffect("cloud", {});
        gfx.BeginScene();
        gfx.Parts().statistics.suppress_draws = true;
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
    VisualEffectSystem system;
};

Scene& TheScene() {
    static Scene& scene = *new Scene;   // the driver goes with the process
    return scene;
}

void CountParticles(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * kParticles); }

void WholeFrameWithoutGpu(benchmark::State& state) {
    Scene& scene = TheScene();
    for (auto _ : state) {
        scene.system.Update(kFrame);
        scene.system.Draw();
    }
    state.counters["drawn"] = scene.system.DrawnParticleCount();
    state.counters["draws"] = scene.system.DrawCallCount();
    CountParticles(state);
}

void BuildDrawOrder(benchmark::State& state) {
    VisualEffectSystemParts& parts = TheScene().system.Parts();
    for (auto _ : state) parts.drawing.BuildOrder(parts.simulation);
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

/// A system-memory vertex buffer of one batch, and where the GPU reads: room for all batches of a frame.
struct Places {
    static constexpr std::size_t kBatch = 1024;
    static constexpr std::size_t kBatchBytes = kBatch * kVerticesPerParticle * sizeof(EffectParticleVertex);
    static constexpr std::size_t kBatches = kParticles / kBatch + 1;

    Places() : buffer(kBatch * kVerticesPerParticle), ring(kBatches * kBatchBytes), particles(kBatch) {
        InitParticleVertices(buffer.data(), kBatch);
        for (std::size_t i = 0; i < kBatch; ++i) particles[i].angle = static_cast<float>(i);
    }
    std::vector<EffectParticleVertex> buffer;
    std::vector<std::byte> ring;
    std::vector<Particle> particles;
};

void VerticesToTheGpu(benchmark::State& state) {
    Places places;
    for (auto _ : state) {
        for (std::size_t batch = 0; batch < Places::kBatches; ++batch) {
            FillParticles(places.particles.data(), Places::kBatch, places.buffer.data());
            std::memcpy(places.ring.data() + batch * Places::kBatchBytes, places.buffer.data(), Places::kBatchBytes);
        }
        benchmark::ClobberMemory();
    }
    CountParticles(state);
}

/// The limit: the same bytes, stored and nothing else.
void CopyToTheGpu(benchmark::State& state) {
    Places places;
    for (auto _ : state) {
        for (std::size_t batch = 0; batch < Places::kBatches; ++batch)
            std::memcpy(places.ring.data() + batch * Places::kBatchBytes, places.buffer.data(), Places::kBatchBytes);
        benchmark::ClobberMemory();
    }
    CountParticles(state);
}

BENCHMARK(WholeFrameWithoutGpu)->Unit(benchmark::kMillisecond);
BENCHMARK(BuildDrawOrder)->Unit(benchmark::kMillisecond);
BENCHMARK(SortByComparison)->Unit(benchmark::kMillisecond);
BENCHMARK(VerticesToTheGpu)->Unit(benchmark::kMillisecond);
BENCHMARK(CopyToTheGpu)->Unit(benchmark::kMillisecond);

}   // namespace
}   // namespace sparkrig
