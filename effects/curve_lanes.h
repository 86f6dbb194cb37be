// The curve of a stage at many times, without a branch a lane. Gives the bits of VectorCurve::EvaluateCurve.
#pragma once
#include "effects/motion_lanes.h"

namespace sparkrig {

/// Where each lane's time falls: at `s`, 0 to 1, from one key to another, or, where both are the same, at that key.
struct CurvePlaces {
    alignas(64) std::int32_t from[kLanes];
    alignas(64) std::int32_t to[kLanes];
    alignas(64) float s[kLanes];
};

/// The curve has keys. The times are overwritten.
void FindPlaces(const VectorCurve& curve, int count, double (&times)[kLanes], CurvePlaces& places);
/// One component of the values at the places.
void EvaluateAt(const VectorCurve& curve, const CurvePlaces& places, int component, int count, float (&out)[kLanes]);

}   // namespace sparkrig
