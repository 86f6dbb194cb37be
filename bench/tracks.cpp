// Evaluating tracks at times that jump about, each beside its interpolation alone, whose segment is known. Items are
// evaluations; the argument is the number of keys.
#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <vector>

#include "scene/hermite.h"
#include "scene/key_curve.h"
#include "scene/object_3d.h"
#include "scene/slerp.h"

namespace sparkrig {
namespace {

constexpr std::size_t kTimes = 1024;

std::array<double, kTimes> JumpingTimes(double end) {
    std::mt19937 generator(7);
    std::uniform_real_distribution<double> time(0, end);
    std::array<double, kTimes> times;
    for (double& t : times) t = time(generator);
    return times;
}

/// Calls `evaluate` with one time after the other.
template <class Evaluate>
void Measure(benchmark::State& state, Evaluate evaluate) {
    const std::array<double, kTimes> times = JumpingTimes(static_cast<double>(state.range(0)) - 1);
    for (auto _ : state) {
        for (const double t : times) benchmark::DoNotOptimize(evaluate(t));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kTimes));
}

KRN_PosKeyData PositionAt(float x) {
    return {.value = {x, 2 * x, -x}, .in_tangent = {-x, 3, 4}, .out_tangent = {5, x, 7}};
}

KRN_RotKeyData RotationAt(float x) {
    KRN_RotKeyData data;
    const D3DXVECTOR3 axis(1, 2, x);
    D3DXQuaternionRotationAxis(&data.rotation, &axis, 0.5f + x);
    D3DXQuaternionRotationAxis(&data.in_control, &axis, 0.25f + x);
    D3DXQuaternionRotationAxis(&data.out_control, &axis, 0.75f + x);
    data.ease_in = 0.2f;
    return data;
}

/// A key a second.
void AddKeys(NodeTracks& tracks, std::int64_t count) {
    for (std::int64_t i = 0; i < count; ++i) {
        const auto x = static_cast<float>(i);
        tracks.position.Add(x, KeyInterpolation::Bezier, PositionAt(x));
        tracks.rotation.Add(x, KeyInterpolation::Tcb, RotationAt(x));
        tracks.scale.Add(x, KeyInterpolation::Bezier, {PositionAt(x + 1)});
    }
}

struct MovingNode : KRN_3dObject {
    explicit MovingNode(std::int64_t keys) {
        AddKeys(Tracks(), keys);
        RebuildLookupTables();
    }
    ~MovingNode() = default;
};

// ---- The limits

float Fraction(double t) { return static_cast<float>(t - static_cast<int>(t)); }

void BareHermite(benchmark::State& state) {
    KRN_PosKeyData from = PositionAt(3), to = PositionAt(4);
    benchmark::DoNotOptimize(from);
    benchmark::DoNotOptimize(to);
    Measure(state, [&](double t) {
        const HermiteWeights w(Fraction(t));
        return from.value * w.from + from.out_tangent * w.out - to.in_tangent * w.in + to.value * w.to;
    });
}

void BareSixSlerps(benchmark::State& state) {
    KRN_RotKeyData from = RotationAt(3), to = RotationAt(4);
    benchmark::DoNotOptimize(from);
    benchmark::DoNotOptimize(to);
    Measure(state, [&](double t) {
        const float s = Fraction(t);
        const D3DXQUATERNION b = Slerp(from.out_control, to.in_control, s);
        return Slerp(Slerp(Slerp(from.rotation, from.out_control, s), b, s),
                     Slerp(b, Slerp(to.in_control, to.rotation, s), s), s);
    });
}

// ---- Tracks

void PositionTrack(benchmark::State& state) {
    const MovingNode node(state.range(0));
    std::size_t hint = 0;
    Measure(state, [&](double t) { return EvaluateTrack(node.Tracks().position, t, {}, &hint); });
}

void RotationTrack(benchmark::State& state) {
    const MovingNode node(state.range(0));
    std::size_t hint = 0;
    Measure(state, [&](double t) { return EvaluateTrack(node.Tracks().rotation, t, {}, &hint); });
}

void ColourTrack(benchmark::State& state) {
    ColourCurve curve;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        const auto x = static_cast<float>(i);
        curve.AddKey({.time = x, .value = {x, 2, 3, x}, .in = {4, x, 5, 6}, .out = {7, 8, x, 9}});
    }
    Measure(state, [&](double t) {
        std::array<float, 4> colour;
        curve.EvaluateCurve(t, *reinterpret_cast<float(*)[4]>(colour.data()));
        return colour;
    });
}

void AnimateNode(benchmark::State& state) {
    MovingNode node(state.range(0));
    Measure(state, [&](double t) { return node.Animate(t, true, false); });
}

BENCHMARK(BareHermite)->Arg(64);
BENCHMARK(PositionTrack)->Arg(4)->Arg(64)->Arg(1024);
BENCHMARK(ColourTrack)->Arg(4)->Arg(64)->Arg(1024);
BENCHMARK(BareSixSlerps)->Arg(64);
BENCHMARK(RotationTrack)->Arg(4)->Arg(64)->Arg(1024);
BENCHMARK(AnimateNode)->Arg(64);

}   // namespace
}   // namespace sparkrig
