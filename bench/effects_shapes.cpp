// The points of special effects and the ribbons of trails, beside writing as many vertices. Items are vertices.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "effects/special_shapes.h"
#include "effects/trace_ribbon.h"

namespace sparkrig {
namespace {

void Shape(benchmark::State& state) {
    RandomTable table;
    table.Draw();
    SpecialShape shape;
    shape.type = static_cast<SpecialType>(state.range(0));
    shape.count = static_cast<int>(state.range(1));
    shape.scale = {20, 10, 30};
    shape.first = 0xFF804020;
    KRN_PointVertex points[kSpecialPoints];
    for (auto _ : state) {
        shape.age += 1 / 60.0;
        benchmark::DoNotOptimize(WriteShape(shape, table, points));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
}

/// The limit of a shape.
void WritePoints(benchmark::State& state) {
    KRN_PointVertex points[kSpecialPoints];
    KRN_PointVertex point = {1, 2, 3, 4};
    for (auto _ : state) {
        benchmark::DoNotOptimize(point);
        std::fill_n(points, state.range(0), point);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

constexpr int kTrails = 500, kLines = 60, kRibbonVertices = (kLines - 1) * 6;

void Trails(benchmark::State& state) {
    TraceEffectSet traces(kTraceBlocks);
    std::vector<KRN_LVertex> vertices(kTraceVertices);
    const auto add = [&] {
        for (int block = 0; block < kTrails; ++block)
            for (int channel = 0; channel < 2; ++channel)
                traces.AddTracePoint("t", block, channel, {1, 2, 3}, 1, 1, {});
    };
    for (int i = 0; i < kLines; ++i) {
        add();
        traces.UpdateTraces(1.0f / kLines);
    }
    for (auto _ : state) {
        add();
        traces.UpdateTraces(1.0f / kLines);
        traces.ForEach([&](TraceEffectData& trail) {
            ShortenToFit(trail);
            WriteRibbon(trail, vertices.data());
            benchmark::ClobberMemory();
        });
    }
    state.SetItemsProcessed(state.iterations() * kTrails * kRibbonVertices);
}

/// The limit of the trails: lines as plain arrays, colour and texture coordinate ready, to the same vertices.
struct PlainTrail {
    D3DXVECTOR3 left[kLines], right[kLines];
    D3DCOLOR colour[kLines];
    float u[kLines];
};

void WritePlainTrail(const PlainTrail& trail, KRN_LVertex* out) {
    const auto vertex = [&](const D3DXVECTOR3& p, int line, float v) {
        return KRN_LVertex{p.x, p.y, p.z, trail.colour[line], 0, trail.u[line], v};
    };
    for (int i = 0; i + 1 < kLines; ++i, out += 6) {
        const KRN_LVertex from = vertex(trail.left[i], i, 0), from_right = vertex(trail.right[i], i, 1);
        const KRN_LVertex to = vertex(trail.left[i + 1], i + 1, 0), to_right = vertex(trail.right[i + 1], i + 1, 1);
        out[0] = from;
        out[1] = from_right;
        out[2] = to;
        out[3] = to;
        out[4] = from_right;
        out[5] = to_right;
    }
}

void PlainTrails(benchmark::State& state) {
    const std::vector<PlainTrail> trails(kTrails);
    std::vector<KRN_LVertex> vertices(kTraceVertices);
    for (auto _ : state) {
        for (const PlainTrail& trail : trails) {
            WritePlainTrail(trail, vertices.data());
            benchmark::ClobberMemory();
        }
    }
    state.SetItemsProcessed(state.iterations() * kTrails * kRibbonVertices);
}

BENCHMARK(Shape)->ArgsProduct({{1, 2, 3, 4, 5, 6, 7, 8}, {32, 256}});
BENCHMARK(WritePoints)->Arg(32)->Arg(256);
BENCHMARK(Trails);
BENCHMARK(PlainTrails);

}   // namespace
}   // namespace sparkrig
