// Built at the level at which the compiler vectorises every loop; see CMakeLists.txt. Each loop is one formula over
// arrays that do not overlap.
#include "effects/motion_lanes.h"

#include <algorithm>
#include <cmath>

#include "effects/curve_lanes.h"
#include "effects/parity_sign.h"
#include "effects/sine.h"
#include "effects/transform_object.h"
#include "effects/turn.h"
#include "effects/vector_code.h"

namespace sparkrig {
namespace {

constexpr float kTwoPi = 6.283186f;   // not the exact value: authored effects are tuned to this one
constexpr float kSwing = 1.5f;        // radians to either side

// ---- Stage times

double Clamped(const VisualEffectMotion& stage, double u) {
    const double minimum = stage.time_minimum, maximum = stage.time_maximum;
    return u < minimum ? minimum : (u > maximum ? maximum : u);
}

/// Calls each(lane, its stage time). Without count offsets the count values are not read: they would add nothing.
template <class Each>
void ForEachTime(const VisualEffectMotion& stage, const MotionLanes& in, Each each) {
    const double speed = stage.speed, speed_offset = stage.speed_count_offset;
    const double local = stage.local_speed, local_offset = stage.local_speed_count_offset;
    const double time = stage.time_offset, time_offset = stage.time_count_offset;
    const double* t = in.t;
    const float* count_values = in.c;
    if (speed_offset == 0 && local_offset == 0 && time_offset == 0) {
        for (int i = 0; i < in.count; ++i) each(i, Clamped(stage, speed * (local * t[i] + time)));
        return;
    }
    for (int i = 0; i < in.count; ++i) {
        const double c = count_values[i];
        each(i,
             Clamped(stage, (speed + c * speed_offset) * ((local + c * local_offset) * t[i] + time + c * time_offset)));
    }
}

// ---- Values

/// What a stage's type gives before it is scaled: one number for all components, or one for each.
struct ShapeLanes {
    VectorLanes v;
    bool shared = true;   // all components are v.x
};

/// v.x = value(stage time)
template <class Value>
void FillShared(const VisualEffectMotion& stage, const MotionLanes& in, ShapeLanes& out, Value value) {
    float* x = out.v.x;
    ForEachTime(stage, in, [=](int i, double u) { x[i] = value(u); });
}

void Swing(const VisualEffectMotion& stage, const MotionLanes& in, ShapeLanes& out) {
    float *x = out.v.x, *z = out.v.z;
    ForEachTime(stage, in, [=](int i, double u) {
        const double angle = kSwing * Sine(kTwoPi * u);
        x[i] = static_cast<float>(Sine(angle));
        z[i] = static_cast<float>(1 - Cosine(angle));
    });
    std::copy_n(x, in.count, out.v.y);
    out.shared = false;
}

void Circle(const VisualEffectMotion& stage, const MotionLanes& in, ShapeLanes& out) {
    float *x = out.v.x, *y = out.v.y;
    ForEachTime(stage, in, [=](int i, double u) {
        const double angle = kTwoPi * u;
        x[i] = static_cast<float>(Sine(angle));
        y[i] = static_cast<float>(Cosine(angle));
    });
    std::copy_n(y, in.count, out.v.z);
    out.shared = false;
}

void RandSphere(const MotionLanes& in, ShapeLanes& out) {
    const float *r2 = in.r[2], *r3 = in.r[3];
    for (int i = 0; i < in.count; ++i) {
        const float height = 2 * r3[i] - 1;
        const float squared = 1 - height * height;
        const float radius = std::sqrt(squared < 0 ? 0 : squared);
        const double longitude = kTwoPi * static_cast<double>(r2[i]);
        out.v.x[i] = radius * static_cast<float>(Sine(longitude));
        out.v.y[i] = radius * static_cast<float>(Cosine(longitude));
        out.v.z[i] = height;
    }
    out.shared = false;
}

void Bezier(const VisualEffectMotion& stage, const MotionLanes& in, Components components, ShapeLanes& out) {
    out.shared = false;
    if (stage.curve.IsEmpty()) {
        for (float* values : {out.v.x, out.v.y, out.v.z}) std::fill_n(values, in.count, 0.0f);
        return;
    }
    alignas(64) double times[kLanes];
    CurvePlaces places;
    ForEachTime(stage, in, [&times](int i, double u) { times[i] = u; });
    FindPlaces(stage.curve, in.count, times, places);
    EvaluateAt(stage.curve, places, 0, in.count, out.v.x);
    if (components == Components::X) return;
    EvaluateAt(stage.curve, places, 1, in.count, out.v.y);
    EvaluateAt(stage.curve, places, 2, in.count, out.v.z);
}

void EvaluateShape(const VisualEffectMotion& stage, const MotionLanes& in, Components components, ShapeLanes& out) {
    const auto fill = [&](auto value) { FillShared(stage, in, out, value); };
    const auto copy = [&](const float* random) { std::copy_n(random, in.count, out.v.x); };
    switch (stage.type) {
        case AnimationType::Linear: return fill([](double u) { return static_cast<float>(u); });
        case AnimationType::Swing: return Swing(stage, in, out);
        case AnimationType::Sin: return fill([](double u) { return static_cast<float>(Sine(kTwoPi * u)); });
        case AnimationType::Cos: return fill([](double u) { return static_cast<float>(Cosine(kTwoPi * u)); });
        case AnimationType::Circle: return Circle(stage, in, out);
        case AnimationType::Quadratic: return fill([](double u) { return static_cast<float>(u * u); });
        case AnimationType::Bezier: return Bezier(stage, in, components, out);
        case AnimationType::Rand1: return copy(in.r[0]);
        case AnimationType::Rand2: return copy(in.r[1]);
        case AnimationType::Rand3: return copy(in.r[2]);
        case AnimationType::Rand4: return copy(in.r[3]);
        case AnimationType::RandSphere: return RandSphere(in, out);
        case AnimationType::None: break;
    }
    std::fill_n(out.v.x, in.count, 0.0f);
}

/// Curves give their values as they are, and the unknown types nothing.
D3DXVECTOR3 ScaleOf(const VisualEffectMotion& stage) {
    if (stage.type == AnimationType::Bezier) return {1, 1, 1};
    const bool known = stage.type >= AnimationType::Linear && stage.type <= AnimationType::RandSphere;
    return known ? stage.scale : D3DXVECTOR3();
}

// ---- Transforms and time factors

void ApplyStageTransform(const D3DXMATRIX& matrix, int count, VectorLanes& v) {
    const auto& m = matrix.m;
    for (int i = 0; i < count; ++i) {
        const float x = v.x[i], y = v.y[i], z = v.z[i];
        v.x[i] = x * m[0][0] + y * m[1][0] + z * m[2][0] + m[3][0];
        v.y[i] = x * m[0][1] + y * m[1][1] + z * m[2][1] + m[3][1];
        v.z[i] = x * m[0][2] + y * m[1][2] + z * m[2][2] + m[3][2];
    }
}

bool IsNeutral(const TimeScale& scale) { return scale.inverse == 0 && scale.constant == 1 && scale.linear == 0; }

void ApplyTimeFactor(const VisualEffectMotion& stage, const MotionLanes& in, VectorLanes& v) {
    const double inverse = stage.time_scale.inverse, constant = stage.time_scale.constant;
    const double linear = stage.time_scale.linear;
    alignas(64) double stage_times[kLanes];
    if (stage.time_scale_uses_stage_time) ForEachTime(stage, in, [&](int i, double u) { stage_times[i] = u; });
    const double* w = stage.time_scale_uses_stage_time ? stage_times : in.t;
    for (int i = 0; i < in.count; ++i) {
        const double hyperbola = w[i] > 0 ? inverse / w[i] : 0;
        const auto factor = static_cast<float>(linear * w[i] + constant + hyperbola);
        v.x[i] *= factor;
        v.y[i] *= factor;
        v.z[i] *= factor;
    }
}

/// Every component of the stage's value.
void EvaluateStage(const VisualEffectMotion& stage, const MotionLanes& in, VectorLanes& out) {
    ShapeLanes shape;
    EvaluateShape(stage, in, Components::All, shape);
    const D3DXVECTOR3 scale = ScaleOf(stage);
    const float* y = shape.shared ? shape.v.x : shape.v.y;
    const float* z = shape.shared ? shape.v.x : shape.v.z;
    for (int i = 0; i < in.count; ++i) out.x[i] = scale.x * shape.v.x[i];
    for (int i = 0; i < in.count; ++i) out.y[i] = scale.y * y[i];
    for (int i = 0; i < in.count; ++i) out.z[i] = scale.z * z[i];
    if (stage.uses_transform) ApplyStageTransform(stage.transform, in.count, out);
    if (!IsNeutral(stage.time_scale)) ApplyTimeFactor(stage, in, out);
}

// ---- Channels

void RotateBy(const VectorLanes& v, int count, VectorLanes& sum) {
    for (int i = 0; i < count; ++i) {   // by the rotation matrix of the quaternion
        const Turn q = TurnAbout(v.x[i], v.y[i], v.z[i], kRadiansPerDegree);
        const float x = q.x, y = q.y, z = q.z, w = q.w;
        const float a = sum.x[i], b = sum.y[i], c = sum.z[i];
        sum.x[i] = a * (1 - 2 * (y * y + z * z)) + b * (2 * (x * y - z * w)) + c * (2 * (x * z + y * w));
        sum.y[i] = a * (2 * (x * y + z * w)) + b * (1 - 2 * (x * x + z * z)) + c * (2 * (y * z - x * w));
        sum.z[i] = a * (2 * (x * z - y * w)) + b * (2 * (y * z + x * w)) + c * (1 - 2 * (x * x + y * y));
    }
}

/// sum = sum and scale x v, one component.
void Fold(ConcatType concat, float scale, const float* v, int count, float* sum) {
    if (concat == ConcatType::Add)
        for (int i = 0; i < count; ++i) sum[i] += scale * v[i];
    else
        for (int i = 0; i < count; ++i) sum[i] *= scale * v[i];
}

bool IsPlain(const VisualEffectMotion& stage) {
    return !stage.uses_transform && stage.concat != ConcatType::Rotate && IsNeutral(stage.time_scale);
}

/// The components of a plain stage do not depend on each other: it is folded in without being written down.
void FoldPlainStage(const VisualEffectMotion& stage, const MotionLanes& in, Components components, VectorLanes& sum) {
    ShapeLanes shape;
    EvaluateShape(stage, in, components, shape);
    const D3DXVECTOR3 scale = ScaleOf(stage);
    Fold(stage.concat, scale.x, shape.v.x, in.count, sum.x);
    if (components == Components::X) return;
    Fold(stage.concat, scale.y, shape.shared ? shape.v.x : shape.v.y, in.count, sum.y);
    Fold(stage.concat, scale.z, shape.shared ? shape.v.x : shape.v.z, in.count, sum.z);
}

void FoldStage(const VisualEffectMotion& stage, const MotionLanes& in, VectorLanes& sum) {
    VectorLanes v;
    EvaluateStage(stage, in, v);
    if (stage.concat == ConcatType::Rotate) return RotateBy(v, in.count, sum);
    Fold(stage.concat, 1, v.x, in.count, sum.x);
    Fold(stage.concat, 1, v.y, in.count, sum.y);
    Fold(stage.concat, 1, v.z, in.count, sum.z);
}

bool MixesComponents(const MotionChannel& channel) {
    for (int i = 0; i < channel.GetCount(); ++i)
        if (channel.GetAt(i)->uses_transform || channel.GetAt(i)->concat == ConcatType::Rotate) return true;
    return false;
}

void EvaluateChannel(const MotionChannel& channel, float start, const MotionLanes& in, Components asked,
                     VectorLanes& sum) {
    const Components components = MixesComponents(channel) ? Components::All : asked;
    std::fill_n(sum.x, in.count, start);
    if (components == Components::All) {
        std::fill_n(sum.y, in.count, start);
        std::fill_n(sum.z, in.count, start);
    }
    for (int i = 0; i < channel.GetCount(); ++i) {
        const VisualEffectMotion& stage = *channel.GetAt(i);
        if (IsPlain(stage))
            FoldPlainStage(stage, in, components, sum);
        else
            FoldStage(stage, in, sum);
    }
}

}   // namespace

SPARKRIG_VECTOR_CODE void EvaluateMotion(const VisualEffectMotion& stage, const MotionLanes& in, VectorLanes& out) {
    EvaluateStage(stage, in, out);
}

SPARKRIG_VECTOR_CODE void EvalPosition(const SubEffect& sub, const MotionLanes& in, VectorLanes& out) {
    EvaluateChannel(sub.position_stages, 0, in, Components::All, out);
    for (int i = 0; i < in.count; ++i) out.x[i] = sub.position_offset.x + out.x[i];
    for (int i = 0; i < in.count; ++i) out.y[i] = sub.position_offset.y + out.y[i];
    for (int i = 0; i < in.count; ++i) out.z[i] = sub.position_offset.z + out.z[i];
    if (sub.transform_object) AddPositions(*sub.transform_object, in, out);
}

SPARKRIG_VECTOR_CODE void EvalRotationAngle(const SubEffect& sub, const MotionLanes& in, float (&out)[kLanes]) {
    std::fill_n(out, in.count, 0.0f);
    const int stages = sub.rotation_stages.GetCount();
    for (int stage = 0; stage < stages; ++stage) {
        const VisualEffectMotion& motion = *sub.rotation_stages.GetAt(stage);
        if (!motion.uses_transform && IsNeutral(motion.time_scale)) {
            ShapeLanes shape;
            EvaluateShape(motion, in, Components::X, shape);
            Fold(ConcatType::Add, ScaleOf(motion).x, shape.v.x, in.count, out);
        } else {
            VectorLanes v;
            EvaluateStage(motion, in, v);
            Fold(ConcatType::Add, 1, v.x, in.count, out);
        }
    }
    if (sub.random_reverse_rotation && stages > 0)
        for (int i = 0; i < in.count; ++i) out[i] *= ParitySign(in.r[3][i]);
}

SPARKRIG_VECTOR_CODE void EvalScale(const SubEffect& sub, const MotionLanes& in, Components components,
                                    VectorLanes& out) {
    EvaluateChannel(sub.scale_stages, 1, in, components, out);
    float* const values[3] = {out.x, out.y, out.z};
    const float scale[3] = {sub.scale.x, sub.scale.y, sub.scale.z};
    for (int axis = 0; axis < (components == Components::X ? 1 : 3); ++axis) {
        if (sub.random_mirror[axis])
            for (int i = 0; i < in.count; ++i) values[axis][i] *= ParitySign(in.r[axis][i]);
        for (int i = 0; i < in.count; ++i) values[axis][i] = scale[axis] * values[axis][i];
    }
    if (sub.transform_object) MultiplyByScales(*sub.transform_object, in, components, out);
}

SPARKRIG_VECTOR_CODE void EvalColor(const SubEffect& sub, const MotionLanes& in, VectorLanes& out) {
    EvaluateChannel(sub.colour_stages, 1, in, Components::All, out);
    for (int i = 0; i < in.count; ++i) out.x[i] = sub.colour.x * out.x[i];
    for (int i = 0; i < in.count; ++i) out.y[i] = sub.colour.y * out.y[i];
    for (int i = 0; i < in.count; ++i) out.z[i] = sub.colour.z * out.z[i];
}

SPARKRIG_VECTOR_CODE void EvalAlpha(const SubEffect& sub, const MotionLanes& in, float (&out)[kLanes]) {
    VectorLanes sum;
    EvaluateChannel(sub.alpha_stages, 1, in, Components::X, sum);
    std::copy_n(sum.x, in.count, out);
}

SPARKRIG_VECTOR_CODE void ApplyFade(const SubEffect& sub, const MotionLanes& in, const float* lives,
                                    float (&alpha)[kLanes]) {
    const double fade_in = sub.fade_in, fade_out = sub.fade_out;
    for (int i = 0; i < in.count; ++i) {
        const double t = in.t[i], life = lives[i];
        double fade = ((fade_in > 0) & (t < fade_in)) ? t / fade_in : 1;
        const double out = t >= life ? 0 : fade * (life - t) / fade_out;
        fade = ((fade_out > 0) & (life > 0) & (t > life - fade_out)) ? out : fade;
        alpha[i] *= static_cast<float>(fade < 0 ? 0 : (fade > 1 ? 1 : fade));
    }
}

}   // namespace sparkrig
