#include "effects/motion.h"

#include "effects/motion_lanes.h"

namespace sparkrig {
namespace {

/// One instance as a single lane.
struct SingleLane : MotionLanes {
    SingleLane(double time, float count_value, const MotionRandoms& random, float life_time = 0) {
        count = 1;
        t[0] = time;
        c[0] = count_value;
        for (int i = 0; i < 4; ++i) r[i][0] = random[i];
        life[0] = life_time;
    }
};

D3DXVECTOR3 First(const VectorLanes& lanes) { return {lanes.x[0], lanes.y[0], lanes.z[0]}; }

}   // namespace

D3DXVECTOR3 EvaluateMotion(const VisualEffectMotion& stage, double t, float c, const MotionRandoms& r) {
    VectorLanes out;
    EvaluateMotion(stage, SingleLane(t, c, r), out);
    return First(out);
}

D3DXVECTOR3 EvalPosition(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    VectorLanes out;
    EvalPosition(sub, SingleLane(t, c, r), out);
    return First(out);
}

D3DXQUATERNION EvalRotation(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    QuaternionLanes out;
    float angle[kLanes];
    EvalRotations(sub, SingleLane(t, c, r), out, angle);
    return {out.x[0], out.y[0], out.z[0], out.w[0]};
}

float EvalRotationAngle(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    QuaternionLanes out;
    float angle[kLanes];
    EvalRotations(sub, SingleLane(t, c, r), out, angle);
    return angle[0];
}

D3DXVECTOR3 EvalScale(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    VectorLanes out;
    EvalScale(sub, SingleLane(t, c, r), out);
    return First(out);
}

D3DXVECTOR3 EvalColor(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    VectorLanes out;
    EvalColor(sub, SingleLane(t, c, r), out);
    return First(out);
}

float EvalAlpha(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    float out[kLanes];
    EvalAlpha(sub, SingleLane(t, c, r), out);
    return out[0];
}

double BirthDelay(const SubEffect& sub, float c) {
    return sub.birth_time + static_cast<double>(sub.birth_count_offset) * c;
}

float LifeForCount(const SubEffect& sub, float c) {
    if (sub.life_count.IsEmpty()) return static_cast<float>(sub.life);
    float factor[1];
    sub.life_count.EvaluateCurve(c, factor);
    return static_cast<float>(sub.life * factor[0]);
}

float FadeFactor(const SubEffect& sub, double t, float c) {
    constexpr MotionRandoms kNone = {};
    float out[kLanes];
    FadeFactor(sub, SingleLane(t, c, kNone, LifeForCount(sub, c)), out);
    return out[0];
}

}   // namespace sparkrig
