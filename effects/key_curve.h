// Keyed curves: cubic Hermite segments between keys, or straight ones, once or in a loop.
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
static_assert(sizeof(CurveKey<3>) == 40 && sizeof(CurveKey<1>) == 16);

template <int Components>
class KeyCurve {
  public:
    using Key = CurveKey<Components>;

    /// Keys come in ascending order of time; equal times are allowed and make a step.
    void AddKey(float time, const float (&value)[Components]);
    /// In a loop the curve runs from its last key on to `end_time`, where the first key's value stands again. An end
    /// before the last key counts as the last key's time.
    void SetLoop(bool on, float end_time);
    void SetMode(CurveMode mode) { mode_ = mode; }
    /// Catmull-Rom slopes for uneven intervals. To be called after the last key and after SetLoop.
    void ComputeTangents(float tension);

    int KeyCount() const { return static_cast<int>(keys_.size()); }
    bool IsEmpty() const { return keys_.empty(); }
    const Key& GetKey(int index) const { return keys_[static_cast<std::size_t>(index)]; }

    /// The value at a time, held before the first and after the last key of a curve without loop. Zeros for a curve
    /// without keys.
    void EvaluateCurve(double time, float (&value)[Components]) const;

  private:
    CurveMode mode_ = CurveMode::Hermite;
    bool loop_ = false;
    float loop_end_ = 0;
    std::vector<Key> keys_;
};

/// The last key whose time is not above `time`; 0 when there is none. There is at least one key.
template <int Components>
int FindSegment(const std::vector<CurveKey<Components>>& keys, double time);

using VectorCurve = KeyCurve<3>;
using ScalarCurve = KeyCurve<1>;

extern template class KeyCurve<3>;
extern template class KeyCurve<1>;

}   // namespace sparkrig
