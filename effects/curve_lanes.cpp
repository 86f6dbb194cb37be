// Built as motion_lanes.cpp is.
#include "effects/curve_lanes.h"

#include <algorithm>

#include "base/numeric.h"
#include "effects/vector_code.h"
#include "scene/hermite.h"

namespace sparkrig {
namespace {

constexpr int kFewKeys = 16;   // up to which comparing with each is quicker than halving

/// The last key that is not later than the time, for each lane; the first key where all are later.
void FindSegments(const VectorCurve& curve, int count, const double* times, std::int32_t* from) {
    const int keys = curve.KeyCount();
    if (keys > kFewKeys) {
        for (int i = 0; i < count; ++i) from[i] = FindSegment(curve.Keys(), times[i]);
        return;
    }
    std::fill_n(from, count, 0);
    for (int key = 1; key < keys; ++key) {
        const double time = curve.GetKey(key).time;
        for (int i = 0; i < count; ++i) from[i] += time <= times[i] ? 1 : 0;
    }
}

void HoldFirstKey(int count, CurvePlaces& places) {
    std::fill_n(places.from, count, 0);
    std::fill_n(places.to, count, 0);
    std::fill_n(places.s, count, 0.0f);
}

void FindInLoop(const VectorCurve& curve, int count, double* times, CurvePlaces& places) {
    const CurveKey<3>* keys = curve.Keys().data();
    const std::int32_t last = curve.KeyCount() - 1;
    const double first_time = keys[0].time, loop_end = curve.Seam(), period = loop_end - first_time;
    if (!(period > 0) || last == 0) return HoldFirstKey(count, places);
    for (int i = 0; i < count; ++i) times[i] = first_time + WrapFloat(times[i], period);
    FindSegments(curve, count, times, places.from);
    for (int i = 0; i < count; ++i) {
        const std::int32_t from = places.from[i], to = from == last ? 0 : from + 1;
        const double interval = (from == last ? loop_end : keys[to].time) - keys[from].time;
        places.to[i] = to;
        places.s[i] = interval > 0 ? static_cast<float>((times[i] - keys[from].time) / interval) : 0.0f;
    }
}

void FindOnce(const VectorCurve& curve, int count, const double* times, CurvePlaces& places) {
    const CurveKey<3>* keys = curve.Keys().data();
    const std::int32_t last = curve.KeyCount() - 1;
    const double first_time = keys[0].time;
    FindSegments(curve, count, times, places.from);
    for (int i = 0; i < count; ++i) {
        const std::int32_t found = times[i] <= first_time ? 0 : places.from[i];
        const bool held = (found == last) | (times[i] <= first_time);
        const std::int32_t to = held ? found : found + 1;
        const double start = keys[found].time, interval = static_cast<double>(keys[to].time) - start;
        places.from[i] = found;
        places.to[i] = to;
        places.s[i] = interval > 0 ? static_cast<float>((times[i] - start) / interval) : 0.0f;
    }
}

}   // namespace

SPARKRIG_VECTOR_CODE void FindPlaces(const VectorCurve& curve, int count, double (&times)[kLanes],
                                     CurvePlaces& places) {
    if (curve.Loops()) return FindInLoop(curve, count, times, places);
    FindOnce(curve, count, times, places);
}

SPARKRIG_VECTOR_CODE void EvaluateAt(const VectorCurve& curve, const CurvePlaces& places, int component, int count,
                                     float (&out)[kLanes]) {
    const CurveKey<3>* keys = curve.Keys().data();
    const bool hermite = curve.Mode() == CurveMode::Hermite;
    for (int i = 0; i < count; ++i) {
        const CurveKey<3>&from = keys[places.from[i]], &to = keys[places.to[i]];
        const float value = from.value[component], next = to.value[component];
        const HermiteWeights w(places.s[i]);
        const float curved = value * w.from + next * w.to + from.out[component] * w.out - to.in[component] * w.in;
        const float straight = value + (next - value) * places.s[i];
        out[i] = places.from[i] == places.to[i] ? value : (hermite ? curved : straight);
    }
}

}   // namespace sparkrig
