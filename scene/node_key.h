// The keys that move a node. The keys of a track are a chain: each owns the next.
#pragma once
#include <cstdint>
#include <memory>

#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

class File;

/// How a track gets from a key to the next. What a file holds beside these counts as Linear.
enum class KeyInterpolation : std::uint16_t {
    Linear = 0,   // rotations: spherical
    Bezier = 1,   // Hermite; positions and scales
    Tcb = 2,      // spherical Bezier; rotations
};

struct KRN_PosKeyData {
    D3DXVECTOR3 value;
    // Tangents are times the interval to the neighbour; the incoming one is stored negated.
    D3DXVECTOR3 in_tangent, out_tangent;
    bool operator==(const KRN_PosKeyData&) const = default;
};

/// The value is the three scale factors.
struct KRN_ScaleKeyData : KRN_PosKeyData {
    bool operator==(const KRN_ScaleKeyData&) const = default;
};

struct KRN_RotKeyData {
    D3DXVECTOR3 axis;   // of the step from the key before
    float angle = 0;    // of that step, radians
    float tension = 0, continuity = 0, bias = 0, ease_in = 0, ease_out = 0;
    // Absolute: the orientation, and the control points before and behind it.
    D3DXQUATERNION rotation, in_control, out_control;
    bool operator==(const KRN_RotKeyData&) const = default;
};

template <class Data>
class KRN_KeyBase {
  public:
    KRN_KeyBase() = default;
    KRN_KeyBase(float key_time, KeyInterpolation kind, const Data& key_data)
        : time(key_time), data(key_data), interpolation(kind) {}
    /// Its successors go with it, so a track goes with its head.
    virtual ~KRN_KeyBase();
    KRN_KeyBase(const KRN_KeyBase&) = delete;
    KRN_KeyBase& operator=(const KRN_KeyBase&) = delete;

    // This key and all behind it. The result is their number.
    virtual int Write(File& file) const;
    /// Drops what was behind this key. A file that ends before the chain does is an error of the file.
    virtual int Read(File& file);

    float time = 0;   // seconds; ticks until a text scene is converted
    std::unique_ptr<KRN_KeyBase> next;
    KRN_KeyBase* previous = nullptr;   // borrowed: the key that owns this one
    Data data;
    KeyInterpolation interpolation = KeyInterpolation::Linear;

  private:
    void WriteAlone(File& file) const;
    bool ReadAlone(File& file);
};

extern template class KRN_KeyBase<KRN_PosKeyData>;
extern template class KRN_KeyBase<KRN_RotKeyData>;
extern template class KRN_KeyBase<KRN_ScaleKeyData>;

}   // namespace sparkrig
