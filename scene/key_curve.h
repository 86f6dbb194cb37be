// Keyed curves: cubic Hermite segments between keys, or straight ones, once or in a loop. Numbers and colours of scenes
// and effects follow them; what moves nodes is in node_tracks.h.
#pragma once
#include <cstdint>
#include <vector>

namespace sparkrig {

enum class CurveMode : std::int32_t { Linear = 0, Hermite = 1 };

template <int Components>
struct CurveKey {
    float time = 0;
    float value[Components] = {};
    float in[Components] = {};    // incoming tangent times the interval, stored negated
    float out[Components] = {};   // outgoing tangent times the interval
};
static_assert(sizeof(CurveKey<4>) == 52 && sizeof(CurveKey<3>) == 40 && sizeof(CurveKey<1>) == 16);

template <int Components>
class KeyCurve {
  public:
    using Key = CurveKey<Components>;

    /// Keys come in ascending order of time; equal times are allowed and make a step.
    void AddKey(float time, const float (&value)[Components]);
    void AddKey(const Key& key) { keys_.push_back(key); }
    /// In a loop the curve runs from its last key on to `end_time`, where the first key's value stands again. An end
    /// before the last key counts as the last key's time.
    void SetLoop(bool on, float end_time);
    /// As it was set.
    float GivenLoopEnd() const { return loop_end_; }
    bool Loops() const { return loop_; }
    /// What a file holds beside the two modes is kept and counts as Linear.
    void SetMode(CurveMode mode) { mode_ = mode; }
    CurveMode Mode() const { return mode_; }
    /// A flag of files that means nothing here; kept.
    bool spare_flag = false;
    /// Catmull-Rom slopes for uneven intervals. To be called after the last key and after SetLoop.
    void ComputeTangents(float tension);

    int KeyCount() const { return static_cast<int>(keys_.size()); }
    bool IsEmpty() const { return keys_.empty(); }
    std::vector<Key>& Keys() { return keys_; }
    const std::vector<Key>& Keys() const { return keys_; }
    const Key& GetKey(int index) const { return keys_[static_cast<std::size_t>(index)]; }
    /// Where the loop of a curve with keys begins again: its end, and not before the last key.
    float Seam() const { return loop_end_ > keys_.back().time ? loop_end_ : keys_.back().time; }

    /// The value at a time, held before the first and after the last key of a curve without loop. Zeros for a curve
    /// without keys.
    void EvaluateCurve(double time, float (&value)[Components]) const;
    /// Its change in a second; zeros where the value is held.
    void EvaluateDerivative(double time, float (&slope)[Components]) const;

  private:
    /// Where a time falls: at `s`, 0 to 1, between two keys, or at `from` alone. `interval` is in seconds.
    struct Place {
        const Key& from;
        const Key* to = nullptr;
        double interval = 0;
        float s = 0;
    };
    /// Of a curve with keys. As a call of its own it makes an evaluation a quarter slower.
    [[gnu::always_inline]] inline Place Find(double time) const;

    CurveMode mode_ = CurveMode::Hermite;
    bool loop_ = false;
    float loop_end_ = 0;
    std::vector<Key> keys_;
};

/// The last key whose time is not above `time`; 0 when there is none. There is at least one key.
template <int Components>
int FindSegment(const std::vector<CurveKey<Components>>& keys, double time);

using ColourCurve = KeyCurve<4>;   // r, g, b, a
using VectorCurve = KeyCurve<3>;
using ScalarCurve = KeyCurve<1>;

extern template class KeyCurve<4>;
extern template class KeyCurve<3>;
extern template class KeyCurve<1>;

}   // namespace sparkrig
