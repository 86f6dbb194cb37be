// State setters whose value is already set, beside an empty call through a pointer: the cost of filtering repeats.
#include <benchmark/benchmark.h>

#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

void Nothing(KRN_Gfx&) {}
using Setter = void (*)(KRN_Gfx&);

/// The setter's first call sends, the measured ones do not.
void Repeat(benchmark::State& state, Setter setter) {
    RecordedGfx gfx;
    KRN_Gfx& device = *gfx;
    setter(device);
    gfx.recording.ForgetCalls();
    benchmark::DoNotOptimize(setter);
    for (auto _ : state) setter(device);
    if (!gfx.recording.Calls().empty()) state.SkipWithError("a repeated value was sent");
}

BENCHMARK_CAPTURE(Repeat, EmptyCall, Nothing);
BENCHMARK_CAPTURE(Repeat, SetCullingMode, [](KRN_Gfx& gfx) { gfx.SetCullingMode(1); });
BENCHMARK_CAPTURE(Repeat, SetZWrite, [](KRN_Gfx& gfx) { gfx.SetZWrite(false); });
BENCHMARK_CAPTURE(Repeat, SetLighting, [](KRN_Gfx& gfx) { gfx.SetLighting(false, nullptr); });
BENCHMARK_CAPTURE(Repeat, SetSpecular, [](KRN_Gfx& gfx) { gfx.SetSpecular(true); });
BENCHMARK_CAPTURE(Repeat, SetNormalizeNormals, [](KRN_Gfx& gfx) { gfx.SetNormalizeNormals(false); });
BENCHMARK_CAPTURE(Repeat, SetBlendingModeNone, [](KRN_Gfx& gfx) { gfx.SetBlendingMode(1, 77, 0); });
BENCHMARK_CAPTURE(Repeat, SetAlphaTest, [](KRN_Gfx& gfx) { gfx.SetAlphaTest(3, 99); });
BENCHMARK_CAPTURE(Repeat, SetAddressModeU, [](KRN_Gfx& gfx) { gfx.SetAddressModeU(D3DTADDRESS_CLAMP, 1); });
BENCHMARK_CAPTURE(Repeat, SetLightEnable, [](KRN_Gfx& gfx) { gfx.SetLightEnable(5, true); });
BENCHMARK_CAPTURE(Repeat, SetZBufferMode, [](KRN_Gfx& gfx) { gfx.SetZBufferMode(0); });
BENCHMARK_CAPTURE(Repeat, SetTextureFactor, [](KRN_Gfx& gfx) { gfx.SetTextureFactor(0x40302010); });
BENCHMARK_CAPTURE(Repeat, SetTextureFilter, [](KRN_Gfx& gfx) { gfx.SetTextureFilter(2, 1); });
BENCHMARK_CAPTURE(Repeat, SetFogEnable, [](KRN_Gfx& gfx) { gfx.SetFogEnable(true); });
BENCHMARK_CAPTURE(Repeat, SetAmbient, [](KRN_Gfx& gfx) { gfx.SetAmbient(0xFF102030); });
BENCHMARK_CAPTURE(Repeat, SetViewPort, [](KRN_Gfx& gfx) { gfx.SetViewPort(3, 5, 90, 70, 0, 1); });
BENCHMARK_CAPTURE(Repeat, ResetWorldTransform, [](KRN_Gfx& gfx) { gfx.ResetWorldTransform(); });
BENCHMARK_CAPTURE(Repeat, UnbindTextures, [](KRN_Gfx& gfx) { gfx.SetTexture(nullptr, -1); });
BENCHMARK_CAPTURE(Repeat, SetBlendingModeAlpha, [](KRN_Gfx& gfx) { gfx.SetBlendingMode(9, 255, 0); });

}   // namespace
}   // namespace sparkrig
