// What a draw costs through the facade beside the bare OpenGL calls. Run it with SDL_VIDEODRIVER=offscreen; compare
// processor times.
#include <benchmark/benchmark.h>

#include <vector>

#include "bench/bare_sets.h"
#include "gfx/gfx.h"
#include "gfx/textures/texture.h"
#include "platform/window/window.h"

namespace sparkrig {
namespace {

constexpr int kDraws = 1000, kSets = 16;
constexpr UINT kVertices = 12;   // of the small list

LRESULT Ignore(HWND window, UINT message, WPARAM wide, LPARAM lng) {
    return DefWindowProcA(window, message, wide, lng);
}

struct Scene {
    Scene() {
        RegisterClassExA({Ignore, "BENCH"});
        gfx.InitDevice(CreateWindowExA("BENCH", "bench", 0, 0, 64, 64), 1, nullptr, 24, 0, 1, 0, 0);
        gfx.SetLighting(false, nullptr);
        gfx.CreateVertexList(&list, kVertices, -1, false);
        KRN_LVertex* vertex = list.Lock(0, kVertices, 0);
        for (UINT i = 0; i < kVertices; ++i) {
            const float x = static_cast<float>(i) * 0.05f;
            *vertex++ = {x, i % 3 == 1 ? 0.1f : 0.0f, 0.5f, 0x80FFFFFF, 0xFF000000, x, 0.5f};
        }
        list.Unlock();
        for (KRN_Texture& texture : textures) gfx.CreateTexture(&texture, 4, 4, -1, -1, 1);
        for (int frame = 0; frame < 2; ++frame) {   // drawn in two frames, the list gets a buffer of its own
            gfx.BeginScene();
            Draw(0);
            gfx.EndScene();
            gfx.PresentFrame();
        }
        gfx.BeginScene();
        for (int set = 0; set < kSets; ++set) Draw(set);   // makes the programs
    }

    void Draw(int set) {
        constexpr int kModes[] = {3, 7, 9, 17};
        gfx.SetBlendingMode(kModes[set / 4], 100 + set, 0);
        gfx.SetTexture(&textures[set % 4], -1);
        gfx.DrawTriangleList(list, 0, -1);
    }

    KRN_Gfx gfx;
    KRN_VertexListTemp<KRN_LVertex> list{PrimitiveMode::TriangleList};
    KRN_Texture textures[4];
};

Scene& TheScene() {
    static Scene& scene = *new Scene;   // the driver goes with the process
    return scene;
}

void DrawList(benchmark::State& state) {
    Scene& scene = TheScene();
    scene.Draw(0);
    TimeDraws(state, kDraws, [&](int) { scene.gfx.DrawTriangleList(scene.list, 0, -1); });
}

void DrawListStatesSetAgain(benchmark::State& state) {   // blending and texture before each draw, always the same
    TimeDraws(state, kDraws, [&scene = TheScene()](int) { scene.Draw(0); });
}

void BareDraws(benchmark::State& state) {   // the limit of both: the draws alone, in the states that the facade left
    TheScene().Draw(0);
    TimeDraws(state, kDraws, [](int) { glDrawArrays(GL_TRIANGLES, 0, kVertices); });
}

void DrawListSixteenSets(benchmark::State& state) {
    TimeDraws(state, kDraws, [&scene = TheScene()](int i) { scene.Draw(i % kSets); });
}

void BareDrawsSixteenSets(benchmark::State& state) {   // its limit: the calls that such changes need at least
    std::vector<BareSet> sets;
    for (int set = 0; set < kSets; ++set) {
        TheScene().Draw(set);
        sets.push_back(ObserveSet());
    }
    TimeBareSets(state, sets, kDraws, kVertices);
}

BENCHMARK(DrawList)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(DrawListStatesSetAgain)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BareDraws)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(DrawListSixteenSets)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(BareDrawsSixteenSets)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);

}   // namespace
}   // namespace sparkrig
