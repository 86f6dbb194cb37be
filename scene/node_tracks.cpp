#include "scene/node_tracks.h"

#include <utility>

#include "scene/hermite.h"
#include "scene/slerp.h"

namespace sparkrig {

// ---- The chain

template <class Data>
KRN_KeyBase<Data>& KeyTrack<Data>::Add(float time, KeyInterpolation interpolation, const Data& data) {
    Key* before = tail_;   // most keys come in order
    if (tail_ && !(tail_->time <= time)) {
        before = nullptr;
        for (Key* key = head_.get(); key && key->time <= time; key = key->next.get()) before = key;
    }
    auto added = std::make_unique<Key>(time, interpolation, data);
    std::unique_ptr<Key>& link = before ? before->next : head_;
    added->previous = before;
    added->next = std::move(link);
    (added->next ? added->next->previous : tail_) = added.get();
    link = std::move(added);
    ++count_;
    return *link;
}

template <class Data>
void KeyTrack<Data>::Clear() {
    lookup_.clear();
    head_.reset();
    tail_ = nullptr;
    count_ = 0;
}

template <class Data>
void KeyTrack<Data>::CopyFrom(const KeyTrack& source) {
    if (this == &source) return;
    Clear();
    count_ = source.count_;
    for (const Key* key = source.Head(); key; key = key->next.get()) {
        auto copy = std::make_unique<Key>(key->time, key->interpolation, key->data);
        copy->previous = tail_;
        std::unique_ptr<Key>& link = tail_ ? tail_->next : head_;
        link = std::move(copy);
        tail_ = link.get();
    }
}

template <class Data>
void KeyTrack<Data>::Read(File& file, std::uint32_t count) {
    Clear();
    if (count == 0) return;
    auto head = std::make_unique<Key>();
    head->Read(file);
    head_ = std::move(head);
    for (tail_ = head_.get(); tail_->next;) tail_ = tail_->next.get();
    count_ = count;
}

template <class Data>
std::uint32_t KeyTrack<Data>::Write(File& file) const {
    return head_ ? static_cast<std::uint32_t>(head_->Write(file)) : 0;
}

// ---- The table

template <class Data>
bool KeyTrack<Data>::RebuildLookup() {
    lookup_.clear();
    ascending_ = true;
    for (const Key* key = Head(); key; key = key->next.get()) {
        ascending_ &= lookup_.empty() ? key->time == key->time : lookup_.back().time <= key->time;
        lookup_.push_back({key, key->time});
    }
    return lookup_.size() == count_;
}

template <class Data>
const KRN_KeyBase<Data>& KeyTrack<Data>::FindActive(double t, std::size_t* hint) const {
    if (lookup_.empty()) return *head_;
    if (hint && ascending_ && *hint + 1 < lookup_.size() && lookup_[*hint].time <= t && t < lookup_[*hint + 1].time)
        return *lookup_[*hint].key;
    std::size_t low = 0, high = lookup_.size();
    while (high - low > 1) {
        const std::size_t middle = (low + high) / 2;
        (lookup_[middle].time <= t ? low : high) = middle;
    }
    if (hint) *hint = low;
    return *lookup_[low].key;
}

template class KeyTrack<KRN_PosKeyData>;
template class KeyTrack<KRN_RotKeyData>;
template class KeyTrack<KRN_ScaleKeyData>;

// ---- Evaluation

namespace {

/// Where a time falls: at u, 0 to 1, between two keys, or at `from` alone.
template <class Data>
struct Place {
    const KRN_KeyBase<Data>& from;
    const KRN_KeyBase<Data>* to = nullptr;
    float u = 0;
};

template <class Data>
Place<Data> FindPlace(const KeyTrack<Data>& track, double t, const TrackEnd& end, std::size_t* hint) {
    const KRN_KeyBase<Data>& from = track.FindActive(t, hint);
    if (t < from.time) return {from};
    const KRN_KeyBase<Data>* to = from.next.get();
    if (!to && end.loops && &from != track.Head()) to = track.Head();
    if (!to) return {from};
    const double interval = (from.next ? to->time : end.length) - static_cast<double>(from.time);
    return {from, to, interval > 0 ? static_cast<float>((t - from.time) / interval) : 0.0f};
}

template <class Data>
D3DXVECTOR3 EvaluateVector(const KeyTrack<Data>& track, double t, const TrackEnd& end, std::size_t* hint) {
    const Place<Data> place = FindPlace(track, t, end, hint);
    const Data& from = place.from.data;
    if (!place.to) return from.value;
    const Data& to = place.to->data;
    if (place.from.interpolation != KeyInterpolation::Bezier) return from.value + (to.value - from.value) * place.u;
    const HermiteWeights w(place.u);
    return from.value * w.from + from.out_tangent * w.out - to.in_tangent * w.in + to.value * w.to;
}

/// De Casteljau on the sphere. Continuity shifts how far the two outer pairs have got.
D3DXQUATERNION EvaluateTcb(const KRN_RotKeyData& from, const KRN_RotKeyData& to, float u) {
    const float s = EaseInterval(u, from.ease_out, to.ease_in);
    const float p = (1 + to.continuity) * s;
    const float r = 1 - (1 - s) * (1 + from.continuity);
    const D3DXQUATERNION a = Slerp(from.rotation, from.out_control, p);
    const D3DXQUATERNION b = Slerp(from.out_control, to.in_control, s);
    const D3DXQUATERNION c = Slerp(to.in_control, to.rotation, r);
    return Slerp(Slerp(a, b, p), Slerp(b, c, r), s);
}

}   // namespace

D3DXVECTOR3 EvaluateTrack(const KeyTrack<KRN_PosKeyData>& track, double t, const TrackEnd& end, std::size_t* hint) {
    return EvaluateVector(track, t, end, hint);
}

D3DXVECTOR3 EvaluateTrack(const KeyTrack<KRN_ScaleKeyData>& track, double t, const TrackEnd& end, std::size_t* hint) {
    return EvaluateVector(track, t, end, hint);
}

D3DXQUATERNION EvaluateTrack(const KeyTrack<KRN_RotKeyData>& track, double t, const TrackEnd& end, std::size_t* hint) {
    const Place<KRN_RotKeyData> place = FindPlace(track, t, end, hint);
    const KRN_RotKeyData& from = place.from.data;
    if (t < place.from.time) {   // the first key's own step, which starts from no rotation
        D3DXQUATERNION rotation;
        return *D3DXQuaternionRotationAxis(&rotation, &from.axis, from.angle);
    }
    if (!place.to) return from.rotation;
    const KRN_RotKeyData& to = place.to->data;
    const bool closes_loop = !place.from.next;
    if (place.from.interpolation == KeyInterpolation::Tcb && !closes_loop) return EvaluateTcb(from, to, place.u);
    return Slerp(from.rotation, to.rotation, place.u);
}

float EaseInterval(float u, float out, float in) {
    const float sum = out + in;
    if (sum == 0) return u;
    if (sum > 1) {
        out /= sum;
        in /= sum;
    }
    const float k = 1 / (2 - out - in);
    if (u < out) return k / out * u * u;
    if (u < 1 - in) return k * (2 * u - out);
    return u < 1 ? 1 - k / in * (1 - u) * (1 - u) : 1;   // `in` may be 0 at the end
}

}   // namespace sparkrig
