// How a map is moved, tiled and turned over time.
#pragma once
#include "base/error.h"
#include "scene/key_curve.h"
#include "scene/texture_matrix.h"

namespace sparkrig {

/// One track for each of the five values of a texture matrix. A value whose track has no keys is constant.
class KRN_TextMatrixAni : public KRN_Base {
  public:
    KRN_TextMatrixAni() { SetName("KRN_TextMatrixAni"); }
    ~KRN_TextMatrixAni() = default;

    bool IsAnimated() const;
    /// At t seconds.
    TextureMatrixValues ValuesAt(double t) const;

    ScalarCurve offset_u, offset_v, tiling_u, tiling_v, angle_w;
    TextureMatrixValues constants;
};

}   // namespace sparkrig
