// Built at the level at which the compiler vectorises every loop; see CMakeLists.txt. Each loop is one formula over
// arrays that do not overlap.
#include "effects/motion_lanes.h"

#include <algorithm>
#include <cmath>

#include "effects/sine.h"
#include "effects/vector_code.h"

namespace sparkrig {
namespace {

constexpr float kTwoPi = 6.283186f;   // not the exact value: authored effects are tuned to this one
constexpr float kSwing = 1.5f;        // radians to either side
constexpr float kPercent = 100;       // the parity of a random number in hundredths decides about mirroring

struct StageTimes {
    alignas(64) double u[kLanes];
};

void ComputeStageTimes(const VisualEffectMotion& stage, const MotionLanes& in, StageTimes& out) {
    const double speed = stage.speed, speed_offset = stage.speed_count_offset;
    const double local = stage.local_speed, local_offset = stage.local_speed_count_offset;
    const double time = stage.time_offset, time_offset = stage.time_count_offset;
    const double minimum = stage.time_minimum, maximum = stage.time_maximum;
    for (int i = 0; i < in.count; ++i) {
        const double c = in.c[i];
        const double u = (speed + c * speed_offset) * ((local + c * local_offset) * in.t[i] + time + c * time_offset);
        out.u[i] = u < minimum ? minimum : (u > maximum ? maximum : u);
    }
}

/// out = scale x value(lane), the same value for all three components.
template <class Value>
void ScaleValue(const D3DXVECTOR3& scale, int count, VectorLanes& out, Value value) {
    for (int i = 0; i < count; ++i) {
        const float v = value(i);
        out.x[i] = scale.x * v;
        out.y[i] = scale.y * v;
        out.z[i] = scale.z * v;
    }
}

void Swing(const D3DXVECTOR3& scale, int count, const StageTimes& times, VectorLanes& out) {
    for (int i = 0; i < count; ++i) {
        const double angle = kSwing * Sine(kTwoPi * times.u[i]);
        const auto sine = static_cast<float>(Sine(angle));
        out.x[i] = scale.x * sine;
        out.y[i] = scale.y * sine;
        out.z[i] = scale.z * static_cast<float>(1 - Cosine(angle));
    }
}

void Circle(const D3DXVECTOR3& scale, int count, const StageTimes& times, VectorLanes& out) {
    for (int i = 0; i < count; ++i) {
        const double angle = kTwoPi * times.u[i];
        const auto cosine = static_cast<float>(Cosine(angle));
        out.x[i] = scale.x * static_cast<float>(Sine(angle));
        out.y[i] = scale.y * cosine;
        out.z[i] = scale.z * cosine;
    }
}

void Bezier(const VectorCurve& curve, int count, const StageTimes& times, VectorLanes& out) {
    for (int i = 0; i < count; ++i) {
        float value[3];
        curve.EvaluateCurve(times.u[i], value);
        out.x[i] = value[0];
        out.y[i] = value[1];
        out.z[i] = value[2];
    }
}

void RandSphere(const D3DXVECTOR3& scale, const MotionLanes& in, VectorLanes& out) {
    for (int i = 0; i < in.count; ++i) {
        const float height = 2 * in.r[3][i] - 1;
        const float squared = 1 - height * height;
        const float radius = std::sqrt(squared < 0 ? 0 : squared);
        const double longitude = kTwoPi * static_cast<double>(in.r[2][i]);
        out.x[i] = scale.x * (radius * static_cast<float>(Sine(longitude)));
        out.y[i] = scale.y * (radius * static_cast<float>(Cosine(longitude)));
        out.z[i] = scale.z * height;
    }
}

void EvaluateShape(const VisualEffectMotion& stage, const MotionLanes& in, const StageTimes& times, VectorLanes& out) {
    const double* u = times.u;
    const auto scale_value = [&](auto value) { ScaleValue(stage.scale, in.count, out, value); };
    switch (stage.type) {
        case AnimationType::Linear: return scale_value([=](int i) { return static_cast<float>(u[i]); });
        case AnimationType::Swing: return Swing(stage.scale, in.count, times, out);
        case AnimationType::Sin: return scale_value([=](int i) { return static_cast<float>(Sine(kTwoPi * u[i])); });
        case AnimationType::Cos: return scale_value([=](int i) { return static_cast<float>(Cosine(kTwoPi * u[i])); });
        case AnimationType::Circle: return Circle(stage.scale, in.count, times, out);
        case AnimationType::Quadratic: return scale_value([=](int i) { return static_cast<float>(u[i] * u[i]); });
        case AnimationType::Bezier: return Bezier(stage.curve, in.count, times, out);
        case AnimationType::Rand1: return scale_value([&](int i) { return in.r[0][i]; });
        case AnimationType::Rand2: return scale_value([&](int i) { return in.r[1][i]; });
        case AnimationType::Rand3: return scale_value([&](int i) { return in.r[2][i]; });
        case AnimationType::Rand4: return scale_value([&](int i) { return in.r[3][i]; });
        case AnimationType::RandSphere: return RandSphere(stage.scale, in, out);
        case AnimationType::None: break;
    }
    ScaleValue({}, in.count, out, [](int) { return 0.0f; });
}

void ApplyStageTransform(const D3DXMATRIX& matrix, int count, VectorLanes& v) {
    const auto& m = matrix.m;
    for (int i = 0; i < count; ++i) {
        const float x = v.x[i], y = v.y[i], z = v.z[i];
        v.x[i] = x * m[0][0] + y * m[1][0] + z * m[2][0] + m[3][0];
        v.y[i] = x * m[0][1] + y * m[1][1] + z * m[2][1] + m[3][1];
        v.z[i] = x * m[0][2] + y * m[1][2] + z * m[2][2] + m[3][2];
    }
}

void ApplyTimeFactor(const TimeScale& scale, int count, const double* w, VectorLanes& v) {
    const double inverse = scale.inverse, constant = scale.constant, linear = scale.linear;
    for (int i = 0; i < count; ++i) {
        const double hyperbola = w[i] > 0 ? inverse / w[i] : 0;
        const auto factor = static_cast<float>(linear * w[i] + constant + hyperbola);
        v.x[i] *= factor;
        v.y[i] *= factor;
        v.z[i] *= factor;
    }
}

bool IsNeutral(const TimeScale& scale) { return scale.inverse == 0 && scale.constant == 1 && scale.linear == 0; }

/// The rotation about v by |v| x `unit` radians. Nothing is turned by a vector of length 0.
SPARKRIG_VECTOR_CODE void RotationsOf(const VectorLanes& v, int count, const float* unit, QuaternionLanes& out) {
    for (int i = 0; i < count; ++i) {
        const float length = std::sqrt(v.x[i] * v.x[i] + v.y[i] * v.y[i] + v.z[i] * v.z[i]);
        const double half = 0.5 * (length * unit[i]);
        const float axis = length > 0 ? static_cast<float>(Sine(half)) / length : 0;
        out.x[i] = v.x[i] * axis;
        out.y[i] = v.y[i] * axis;
        out.z[i] = v.z[i] * axis;
        out.w[i] = static_cast<float>(Cosine(half));
    }
}

SPARKRIG_VECTOR_CODE void RotateBy(const VectorLanes& v, int count, VectorLanes& sum) {
    alignas(64) float unit[kLanes];
    QuaternionLanes q;
    std::fill_n(unit, kLanes, kRadiansPerDegree);
    RotationsOf(v, count, unit, q);
    for (int i = 0; i < count; ++i) {   // by the rotation matrix of the quaternion
        const float x = q.x[i], y = q.y[i], z = q.z[i], w = q.w[i];
        const float a = sum.x[i], b = sum.y[i], c = sum.z[i];
        sum.x[i] = a * (1 - 2 * (y * y + z * z)) + b * (2 * (x * y - z * w)) + c * (2 * (x * z + y * w));
        sum.y[i] = a * (2 * (x * y + z * w)) + b * (1 - 2 * (x * x + z * z)) + c * (2 * (y * z - x * w));
        sum.z[i] = a * (2 * (x * z - y * w)) + b * (2 * (y * z + x * w)) + c * (1 - 2 * (x * x + y * y));
    }
}

SPARKRIG_VECTOR_CODE void Fold(ConcatType concat, const VectorLanes& v, int count, VectorLanes& sum) {
    switch (concat) {
        case ConcatType::Add:
            for (int i = 0; i < count; ++i) sum.x[i] += v.x[i];
            for (int i = 0; i < count; ++i) sum.y[i] += v.y[i];
            for (int i = 0; i < count; ++i) sum.z[i] += v.z[i];
            return;
        case ConcatType::Multiply:
            for (int i = 0; i < count; ++i) sum.x[i] *= v.x[i];
            for (int i = 0; i < count; ++i) sum.y[i] *= v.y[i];
            for (int i = 0; i < count; ++i) sum.z[i] *= v.z[i];
            return;
        case ConcatType::Rotate: RotateBy(v, count, sum); return;
    }
}

void EvaluateChannel(const MotionChannel& channel, float start, const MotionLanes& in, VectorLanes& sum) {
    for (int i = 0; i < in.count; ++i) sum.x[i] = sum.y[i] = sum.z[i] = start;
    for (int stage = 0; stage < channel.GetCount(); ++stage) {
        VectorLanes v;
        const VisualEffectMotion& motion = *channel.GetAt(stage);
        EvaluateMotion(motion, in, v);
        Fold(motion.concat, v, in.count, sum);
    }
}

/// -1 for an odd number of whole hundredths, else 1.
float ParitySign(float random) {
    const float hundredths = random * kPercent;
    const bool in_range = hundredths >= -2147483648.0f && hundredths < 2147483648.0f;
    return (static_cast<std::int32_t>(in_range ? hundredths : 0.0f) & 1) != 0 ? -1.0f : 1.0f;
}

}   // namespace

SPARKRIG_VECTOR_CODE void EvaluateMotion(const VisualEffectMotion& stage, const MotionLanes& in, VectorLanes& out) {
    StageTimes times;
    ComputeStageTimes(stage, in, times);
    EvaluateShape(stage, in, times, out);
    if (stage.uses_transform) ApplyStageTransform(stage.transform, in.count, out);
    if (IsNeutral(stage.time_scale)) return;
    ApplyTimeFactor(stage.time_scale, in.count, stage.time_scale_uses_stage_time ? times.u : in.t, out);
}

void EvalPosition(const SubEffect& sub, const MotionLanes& in, VectorLanes& out) {
    EvaluateChannel(sub.position_stages, 0, in, out);
    for (int i = 0; i < in.count; ++i) out.x[i] = sub.position_offset.x + out.x[i];
    for (int i = 0; i < in.count; ++i) out.y[i] = sub.position_offset.y + out.y[i];
    for (int i = 0; i < in.count; ++i) out.z[i] = sub.position_offset.z + out.z[i];
}

namespace {

/// out = out followed by next.
SPARKRIG_VECTOR_CODE void TurnOn(QuaternionLanes& out, const QuaternionLanes& next, int count) {
    for (int i = 0; i < count; ++i) {
        const float px = out.x[i], py = out.y[i], pz = out.z[i], pw = out.w[i];
        const float qx = next.x[i], qy = next.y[i], qz = next.z[i], qw = next.w[i];
        out.x[i] = qw * px + qx * pw + qy * pz - qz * py;
        out.y[i] = qw * py - qx * pz + qy * pw + qz * px;
        out.z[i] = qw * pz + qx * py - qy * px + qz * pw;
        out.w[i] = qw * pw - qx * px - qy * py - qz * pz;
    }
}

void Fill(const D3DXQUATERNION& q, int count, QuaternionLanes& out) {
    for (int i = 0; i < count; ++i) {
        out.x[i] = q.x;
        out.y[i] = q.y;
        out.z[i] = q.z;
        out.w[i] = q.w;
    }
}

void RotationSigns(const SubEffect& sub, const MotionLanes& in, float (&signs)[kLanes]) {
    if (sub.random_reverse_rotation)
        for (int i = 0; i < in.count; ++i) signs[i] = ParitySign(in.r[3][i]);
    else
        for (int i = 0; i < in.count; ++i) signs[i] = 1;
}

}   // namespace

void EvalRotations(const SubEffect& sub, const MotionLanes& in, QuaternionLanes& out, float (&angle)[kLanes]) {
    for (int i = 0; i < in.count; ++i) angle[i] = 0;
    const int stages = sub.rotation_stages.GetCount();
    if (stages == 0) return Fill(sub.start_rotation, in.count, out);
    alignas(64) float signs[kLanes];
    RotationSigns(sub, in, signs);
    Fill({0, 0, 0, 1}, in.count, out);
    for (int stage = 0; stage < stages; ++stage) {
        VectorLanes v;
        QuaternionLanes turn;
        EvaluateMotion(*sub.rotation_stages.GetAt(stage), in, v);
        for (int i = 0; i < in.count; ++i) angle[i] += v.x[i];
        RotationsOf(v, in.count, signs, turn);
        TurnOn(out, turn, in.count);
    }
    for (int i = 0; i < in.count; ++i) angle[i] *= signs[i];
    QuaternionLanes start;
    Fill(sub.start_rotation, in.count, start);
    TurnOn(out, start, in.count);
}

void EvalScale(const SubEffect& sub, const MotionLanes& in, VectorLanes& out) {
    EvaluateChannel(sub.scale_stages, 1, in, out);
    float* const components[3] = {out.x, out.y, out.z};
    const float scale[3] = {sub.scale.x, sub.scale.y, sub.scale.z};
    for (int axis = 0; axis < 3; ++axis) {
        float* const values = components[axis];
        if (sub.random_mirror[axis])
            for (int i = 0; i < in.count; ++i) values[i] *= ParitySign(in.r[axis][i]);
        for (int i = 0; i < in.count; ++i) values[i] = scale[axis] * values[i];
    }
}

void EvalColor(const SubEffect& sub, const MotionLanes& in, VectorLanes& out) {
    EvaluateChannel(sub.colour_stages, 1, in, out);
    for (int i = 0; i < in.count; ++i) out.x[i] = sub.colour.x * out.x[i];
    for (int i = 0; i < in.count; ++i) out.y[i] = sub.colour.y * out.y[i];
    for (int i = 0; i < in.count; ++i) out.z[i] = sub.colour.z * out.z[i];
}

void EvalAlpha(const SubEffect& sub, const MotionLanes& in, float (&out)[kLanes]) {
    VectorLanes sum;
    EvaluateChannel(sub.alpha_stages, 1, in, sum);
    for (int i = 0; i < in.count; ++i) out[i] = sum.x[i];
}

SPARKRIG_VECTOR_CODE void FadeFactor(const SubEffect& sub, const MotionLanes& in, float (&out)[kLanes]) {
    const double fade_in = sub.fade_in, fade_out = sub.fade_out;
    if (!(fade_in > 0) && !(fade_out > 0)) {
        for (int i = 0; i < in.count; ++i) out[i] = 1;
        return;
    }
    for (int i = 0; i < in.count; ++i) {
        const double t = in.t[i], life = in.life[i];
        double fade = fade_in > 0 && t < fade_in ? t / fade_in : 1;
        if (fade_out > 0 && life > 0 && t > life - fade_out) fade = t >= life ? 0 : fade * (life - t) / fade_out;
        out[i] = static_cast<float>(fade < 0 ? 0 : (fade > 1 ? 1 : fade));
    }
}

}   // namespace sparkrig
