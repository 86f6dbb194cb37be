#include "scene/key_curve.h"

#include <algorithm>
#include <cmath>

#include "base/numeric.h"
#include "scene/hermite.h"

namespace sparkrig {
namespace {

constexpr std::size_t kFewKeys = 8;   // up to which looking at each is quicker than halving

template <int Components>
void Slope(const CurveKey<Components>& from, const CurveKey<Components>& to, float interval,
           float (&slope)[Components]) {
    for (int i = 0; i < Components; ++i) slope[i] = (to.value[i] - from.value[i]) / interval;
}

/// Of one key: its neighbours, or null, and the intervals to them, 0 where there is none.
template <int Components>
struct Neighbours {
    const CurveKey<Components>* previous = nullptr;
    const CurveKey<Components>* next = nullptr;
    float to_previous = 0, to_next = 0;
};

template <int Components>
void SetTangents(CurveKey<Components>& key, const Neighbours<Components>& near, float tension) {
    float in_slope[Components] = {}, out_slope[Components] = {};
    if (near.to_previous != 0) Slope(*near.previous, key, near.to_previous, in_slope);
    if (near.to_next != 0) Slope(key, *near.next, near.to_next, out_slope);
    for (int i = 0; i < Components; ++i) {
        const float both = in_slope[i] + out_slope[i];
        key.in[i] = near.to_next == 0 ? -in_slope[i] * near.to_previous : -both * near.to_previous * 0.5f;
        key.out[i] = near.to_previous == 0 ? out_slope[i] * near.to_next : both * near.to_next * 0.5f;
        key.in[i] *= tension;
        key.out[i] *= tension;
    }
}

}   // namespace

template <int Components>
int FindSegment(const std::vector<CurveKey<Components>>& keys, double time) {
    if (keys.size() <= kFewKeys) {
        std::size_t segment = 0;
        while (segment + 1 < keys.size() && keys[segment + 1].time <= time) ++segment;
        return static_cast<int>(segment);
    }
    const auto after = std::upper_bound(keys.begin() + 1, keys.end(), time,
                                        [](double t, const CurveKey<Components>& key) { return t < key.time; });
    return static_cast<int>(after - keys.begin()) - 1;
}

template <int Components>
void KeyCurve<Components>::AddKey(float time, const float (&value)[Components]) {
    Key key;
    key.time = time;
    std::copy_n(value, Components, key.value);
    keys_.push_back(key);
}

template <int Components>
void KeyCurve<Components>::SetLoop(bool on, float end_time) {
    loop_ = on;
    loop_end_ = end_time;
}

template <int Components>
void KeyCurve<Components>::ComputeTangents(float tension) {
    if (keys_.empty()) return;
    const std::size_t last = keys_.size() - 1;
    loop_end_ = std::max(loop_end_, keys_[last].time);
    const float seam = loop_end_ - keys_[last].time;
    for (std::size_t i = 0; i <= last; ++i) {
        Neighbours<Components> near;
        if (i > 0) {
            near.previous = &keys_[i - 1];
            near.to_previous = keys_[i].time - near.previous->time;
        } else if (loop_) {
            near.previous = &keys_[last];
            near.to_previous = seam;
        }
        if (i < last) {
            near.next = &keys_[i + 1];
            near.to_next = near.next->time - keys_[i].time;
        } else if (loop_) {
            near.next = &keys_[0];
            near.to_next = seam;
        }
        SetTangents(keys_[i], near, tension);
    }
}

template <int Components>
inline typename KeyCurve<Components>::Place KeyCurve<Components>::Find(double time) const {
    const Key& first = keys_.front();
    const Key& last = keys_.back();
    const double loop_end = Seam();
    if (loop_) {
        const double period = loop_end - first.time;
        if (!(period > 0) || keys_.size() == 1) return {first};
        time = first.time + WrapFloat(time, period);
    } else {
        if (time <= first.time) return {first};
        if (time >= last.time) return {last};
    }
    const auto segment = static_cast<std::size_t>(FindSegment(keys_, time));
    const bool at_seam = segment + 1 == keys_.size();   // only in a loop
    const Key& from = keys_[segment];
    const Key& to = at_seam ? first : keys_[segment + 1];
    const double interval = (at_seam ? loop_end : to.time) - from.time;
    return {from, &to, interval, interval > 0 ? static_cast<float>((time - from.time) / interval) : 0.0f};
}

template <int Components>
void KeyCurve<Components>::EvaluateCurve(double time, float (&value)[Components]) const {
    std::fill_n(value, Components, 0.0f);
    if (keys_.empty()) return;
    const Place place = Find(time);
    const Key& from = place.from;
    if (!place.to) return void(std::copy_n(from.value, Components, value));
    const Key& to = *place.to;
    if (mode_ == CurveMode::Hermite) {
        const HermiteWeights w(place.s);
        for (int i = 0; i < Components; ++i)
            value[i] = from.value[i] * w.from + to.value[i] * w.to + from.out[i] * w.out - to.in[i] * w.in;
    } else {
        for (int i = 0; i < Components; ++i) value[i] = from.value[i] + (to.value[i] - from.value[i]) * place.s;
    }
}

template <int Components>
void KeyCurve<Components>::EvaluateDerivative(double time, float (&slope)[Components]) const {
    std::fill_n(slope, Components, 0.0f);
    if (keys_.empty()) return;
    const Place place = Find(time);
    if (!place.to || !(place.interval > 0)) return;
    const Key& from = place.from;
    const Key& to = *place.to;
    const HermiteSlopes w(place.s);
    const auto interval = static_cast<float>(place.interval);
    for (int i = 0; i < Components; ++i) {
        const float rise = mode_ == CurveMode::Hermite
                               ? from.value[i] * w.from + to.value[i] * w.to + from.out[i] * w.out - to.in[i] * w.in
                               : to.value[i] - from.value[i];
        slope[i] = rise / interval;
    }
}

template int FindSegment(const std::vector<CurveKey<4>>&, double);
template int FindSegment(const std::vector<CurveKey<3>>&, double);
template int FindSegment(const std::vector<CurveKey<1>>&, double);
template class KeyCurve<4>;
template class KeyCurve<3>;
template class KeyCurve<1>;

}   // namespace sparkrig
