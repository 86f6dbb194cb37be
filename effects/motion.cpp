#include "effects/motion.h"

#include "effects/motion_lanes.h"
#include "effects/parity_sign.h"
#include "effects/turn.h"
#include "scene/object_3d.h"

namespace sparkrig {
namespace {

/// One instance as a single lane.
struct SingleLane : MotionLanes {
    SingleLane(const double& time, const float& count_value, const MotionRandoms& random) {
        count = 1;
        t = &time;
        c = &count_value;
        for (int i = 0; i < 4; ++i) r[i] = &random[i];
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

namespace {

/// Of the stages and the start rotation.
D3DXQUATERNION ChannelRotation(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    if (sub.rotation_stages.GetCount() == 0) return sub.start_rotation;
    const float sign = sub.random_reverse_rotation ? ParitySign(r[3]) : 1;
    D3DXQUATERNION rotation;
    for (int stage = 0; stage < sub.rotation_stages.GetCount(); ++stage) {
        const D3DXVECTOR3 v = EvaluateMotion(*sub.rotation_stages.GetAt(stage), t, c, r);
        const Turn turn = TurnAbout(v.x, v.y, v.z, sign);
        const D3DXQUATERNION next = {turn.x, turn.y, turn.z, turn.w};
        D3DXQuaternionMultiply(&rotation, &rotation, &next);
    }
    return *D3DXQuaternionMultiply(&rotation, &rotation, &sub.start_rotation);
}

}   // namespace

D3DXQUATERNION EvalRotation(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    D3DXQUATERNION rotation = ChannelRotation(sub, t, c, r);
    if (!sub.transform_object) return rotation;
    const D3DXQUATERNION turn = sub.transform_object->RotationAt(t);
    return *D3DXQuaternionMultiply(&rotation, &rotation, &turn);
}

float EvalRotationAngle(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    float angle[kLanes];
    EvalRotationAngle(sub, SingleLane(t, c, r), angle);
    return angle[0];
}

D3DXVECTOR3 EvalScale(const SubEffect& sub, double t, float c, const MotionRandoms& r) {
    VectorLanes out;
    EvalScale(sub, SingleLane(t, c, r), Components::All, out);
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
    const float life = LifeForCount(sub, c);
    float factor[kLanes] = {1};
    ApplyFade(sub, SingleLane(t, c, {}), &life, factor);
    return factor[0];
}

}   // namespace sparkrig
