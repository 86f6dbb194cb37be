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

}   // namespace
}   // namespace sparkrig
