// Motion of up to kLanes instances of one sub-effect at once: stage after stage over plain arrays, in loops that the
// compiler turns into vector code. One lane is one instance; motion.h says what the functions give.
#pragma once
#include "effects/effect_definition.h"

namespace sparkrig {

inline constexpr int kLanes = 128;   // the arrays of one call stay in the first-level cache

struct VectorLanes {
    alignas(64) float x[kLanes];
    alignas(64) float y[kLanes];
    alignas(64) float z[kLanes];
};

/// What motion depends on: arrays of `count` numbers, borrowed.
struct MotionLanes {
    int count = 0;
    const double* t = nullptr;                                  // seconds since birth
    const float* c = nullptr;                                   // count value
    const float* r[4] = {nullptr, nullptr, nullptr, nullptr};   // random numbers
};

/// Components that are asked for: a channel whose components do not depend on each other evaluates no others.
enum class Components { X, All };

void EvaluateMotion(const VisualEffectMotion& stage, const MotionLanes& in, VectorLanes& out);
void EvalPosition(const SubEffect& sub, const MotionLanes& in, VectorLanes& out);
void EvalScale(const SubEffect& sub, const MotionLanes& in, Components components, VectorLanes& out);
void EvalRotationAngle(const SubEffect& sub, const MotionLanes& in, float (&out)[kLanes]);
void EvalColor(const SubEffect& sub, const MotionLanes& in, VectorLanes& out);
void EvalAlpha(const SubEffect& sub, const MotionLanes& in, float (&out)[kLanes]);
/// Multiplies `alpha` by FadeFactor. life: LifeForCount of each lane.
void ApplyFade(const SubEffect& sub, const MotionLanes& in, const float* life, float (&alpha)[kLanes]);

}   // namespace sparkrig
