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

struct QuaternionLanes {
    alignas(64) float x[kLanes];
    alignas(64) float y[kLanes];
    alignas(64) float z[kLanes];
    alignas(64) float w[kLanes];
};

/// What motion depends on. The first `count` lanes are in use; the others may hold anything.
struct MotionLanes {
    int count = 0;
    alignas(64) double t[kLanes];     // seconds since birth
    alignas(64) float c[kLanes];      // count value
    alignas(64) float r[4][kLanes];   // random numbers
    alignas(64) float life[kLanes];   // LifeForCount
};

void EvaluateMotion(const VisualEffectMotion& stage, const MotionLanes& in, VectorLanes& out);
void EvalPosition(const SubEffect& sub, const MotionLanes& in, VectorLanes& out);
/// Both EvalRotation and EvalRotationAngle: they share their stages.
void EvalRotations(const SubEffect& sub, const MotionLanes& in, QuaternionLanes& out, float (&angle)[kLanes]);
void EvalScale(const SubEffect& sub, const MotionLanes& in, VectorLanes& out);
void EvalColor(const SubEffect& sub, const MotionLanes& in, VectorLanes& out);
void EvalAlpha(const SubEffect& sub, const MotionLanes& in, float (&out)[kLanes]);
void FadeFactor(const SubEffect& sub, const MotionLanes& in, float (&out)[kLanes]);

}   // namespace sparkrig
