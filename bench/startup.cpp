// From nothing to the first frame, without a display: window, device, catalogue, effects, one frame of the first
// effect.
#include <benchmark/benchmark.h>

#include "app/player.h"

using namespace sparkrig;

namespace {

bool MakeWindow(TesterState& state) {
    HideFromDisplay();
    state = {};
    state.resolution_x = 1280;
    state.resolution_y = 720;
    return MakeTesterWindow(state, WindowSize::Picture);
}

void DrawFirstFrame(Engine& engine, TesterState& state) {
    Player player(engine, state, {});
    player.Load();
    player.StartEffect(0);
    player.Advance();
    player.Draw();
    benchmark::DoNotOptimize(player.TakePicture());
}

void StartToFirstFrame(benchmark::State& run) {
    for (auto _ : run) {
        if (!MakeWindow(Tester())) return run.SkipWithError("no OpenGL surface");
        Engine engine;
        engine.Start(Tester(), 1);
        DrawFirstFrame(engine, Tester());
        engine.ShutDown();
        DestroyWindow(Tester().window);
    }
}

/// The part of it that is the graphics driver's: a device and nothing else.
void DeviceAlone(benchmark::State& run) {
    for (auto _ : run) {
        if (!MakeWindow(Tester())) return run.SkipWithError("no OpenGL surface");
        Engine engine;
        engine.Start(Tester(), 1);
        engine.ShutDown();
        DestroyWindow(Tester().window);
    }
}

BENCHMARK(StartToFirstFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(DeviceAlone)->Unit(benchmark::kMillisecond);

}   // namespace
