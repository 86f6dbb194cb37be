#include "effects/motion.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "effects/sine.h"
#include "tests/effects/reference.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

constexpr double kTwoPi = 6.283186;

TEST(Sine, AgreesWithTheLibraryAtEveryAngle) {
    for (const double scale : {1e-6, 0.3, 1.7, 40.0, 1e4, 1e6}) {
        for (int i = -200; i <= 200; ++i) {
            const double angle = scale * i / 61.0;
            EXPECT_NEAR(Sine(angle), std::sin(angle), 3e-10) << angle;
            EXPECT_NEAR(Cosine(angle), std::cos(angle), 3e-10) << angle;
        }
    }
    for (int i = -4000; i <= 4000; ++i) {
        const float angle = static_cast<float>(i) * (i % 3 == 0 ? 7.9f : 0.013f);
        float sine, cosine;
        SineAndCosine(angle, sine, cosine);
        EXPECT_NEAR(sine, std::sin(static_cast<double>(angle)), 1e-6) << angle;
        EXPECT_NEAR(cosine, std::cos(static_cast<double>(angle)), 1e-6) << angle;
    }
    for (const double angle : {1e12, -1e15, 1e17, 1e300, -1e300})
        EXPECT_LE(std::abs(Sine(angle)) + std::abs(Cosine(angle)), 2.0) << angle;
    EXPECT_TRUE(std::isnan(Sine(std::numeric_limits<double>::infinity())));
}

// ---- The plain reference: every formula in double, one instance, one stage after the other

/// v turned about a unit axis (Rodrigues).
Vec Rotated(const Vec& v, const Vec& axis, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    return c * v + s * Cross(axis, v) + (1 - c) * Dot(v, axis) * axis;
}

/// A Hermite curve through its keys: each slope is the mean of those to both neighbours, times the own interval.
Vec CurveAt(const std::vector<std::pair<double, Vec>>& keys, double loop_end, double t) {
    const std::size_t last = keys.size() - 1;
    const double first_time = keys[0].first, period = loop_end - first_time;
    const bool loops = loop_end > 0;
    if (loops) t = first_time + (t >= 0 ? std::fmod(t, period) : period + std::fmod(t, period));
    if (!loops && t <= first_time) return keys[0].second;
    if (!loops && t >= keys[last].first) return keys[last].second;
    std::size_t i = 0;
    while (i < last && keys[i + 1].first <= t) ++i;
    const auto rise = [&](std::size_t k) {   // from key k to the next, and the time that it takes
        const std::size_t next = k == last ? 0 : k + 1;
        const double time = (k == last ? loop_end : keys[next].first) - keys[k].first;
        return std::pair(keys[next].second + -1 * keys[k].second, time);
    };
    const auto slope = [&](std::size_t k) {
        Vec sum;
        int sides = 0;
        for (const bool before : {true, false}) {
            if (!loops && k == (before ? 0 : last)) continue;
            const auto [step, time] = rise(before ? (k == 0 ? last : k - 1) : k);
            sum = sum + 1 / time * step;
            ++sides;
        }
        return 1.0 / sides * sum;
    };
    const auto [step, time] = rise(i);
    const std::size_t next = i == last ? 0 : i + 1;
    const double s = (t - keys[i].first) / time, s2 = s * s, s3 = s2 * s;
    return (2 * s3 - 3 * s2 + 1) * keys[i].second + (3 * s2 - 2 * s3) * keys[next].second +
           (s3 - 2 * s2 + s) * time * slope(i) + (s3 - s2) * time * slope(next);
}

/// What was thrown at both, in the words of the effects file.
struct Stage {
    VisualEffectMotion motion;
    std::vector<std::pair<double, Vec>> keys;
    double loop_end = 0;
};

double StageTime(const VisualEffectMotion& m, double t, double c) {
    const double u = (m.speed + c * m.speed_count_offset) *
                     ((m.local_speed + c * m.local_speed_count_offset) * t + m.time_offset + c * m.time_count_offset);
    return std::clamp<double>(u, m.time_minimum, m.time_maximum);
}

Vec ShapeAt(const Stage& stage, double u, const MotionRandoms& r) {
    const double turn = kTwoPi * u, swing = 1.5 * std::sin(turn);
    const double height = 2.0 * r[3] - 1, radius = std::sqrt(1 - height * height), longitude = kTwoPi * r[2];
    switch (stage.motion.type) {
        case AnimationType::Linear: return {u, u, u};
        case AnimationType::Swing: return {std::sin(swing), std::sin(swing), 1 - std::cos(swing)};
        case AnimationType::Sin: return {std::sin(turn), std::sin(turn), std::sin(turn)};
        case AnimationType::Cos: return {std::cos(turn), std::cos(turn), std::cos(turn)};
        case AnimationType::Circle: return {std::sin(turn), std::cos(turn), std::cos(turn)};
        case AnimationType::Quadratic: return {u * u, u * u, u * u};
        case AnimationType::Bezier: return CurveAt(stage.keys, stage.loop_end, u);
        case AnimationType::Rand1: return {r[0], r[0], r[0]};
        case AnimationType::Rand2: return {r[1], r[1], r[1]};
        case AnimationType::Rand3: return {r[2], r[2], r[2]};
        case AnimationType::Rand4: return {r[3], r[3], r[3]};
        case AnimationType::RandSphere: return {radius * std::sin(longitude), radius * std::cos(longitude), height};
        case AnimationType::None: break;
    }
    return {};
}

Vec StageAt(const Stage& stage, double t, double c, const MotionRandoms& r) {
    const VisualEffectMotion& m = stage.motion;
    const double u = StageTime(m, t, c);
    Vec v = ShapeAt(stage, u, r);
    if (m.type != AnimationType::Bezier) v = v * ToVec(m.scale);
    if (m.rotation_angle != 0 || m.offset != D3DXVECTOR3()) {
        const Vec axis = ToVec(m.rotation_axis);
        v = Length(axis) > 0 ? Rotated(v, Unit(axis), m.rotation_angle) : std::cos(m.rotation_angle) * v;
        v = v + ToVec(m.offset);
    }
    const double w = m.time_scale_uses_stage_time ? u : t;
    const double factor = m.time_scale.linear * w + m.time_scale.constant + (w > 0 ? m.time_scale.inverse / w : 0);
    return factor * v;
}

Vec ChannelAt(const std::vector<Stage>& stages, double start, double t, double c, const MotionRandoms& r) {
    Vec sum = {start, start, start};
    for (const Stage& stage : stages) {
        const Vec v = StageAt(stage, t, c, r);
        const double length = Length(v);
        switch (stage.motion.concat) {
            case ConcatType::Add: sum = sum + v; break;
            case ConcatType::Multiply: sum = sum * v; break;
            case ConcatType::Rotate:
                if (length > 0) sum = Rotated(sum, Unit(v), length * 0.01745329238474369);
        }
    }
    return sum;
}

double MirrorSign(bool mirrored, float random) { return mirrored && static_cast<int>(random * 100) % 2 != 0 ? -1 : 1; }

// ---- Random definitions

void AddCurve(Dice& dice, Stage& stage) {
    const int keys = 1 + dice.Below(dice.OneIn(8) ? 40 : 6);
    float time = dice.Between(-0.5f, 0.5f);
    for (int i = 0; i < keys; ++i, time += dice.Between(0.1f, 0.8f)) {
        const D3DXVECTOR3 value = dice.Vector(2);
        stage.motion.curve.AddKey(time, {value.x, value.y, value.z});
        stage.keys.emplace_back(time, ToVec(value));
    }
    if (keys > 1 && dice.OneIn(3)) stage.loop_end = time;
    stage.motion.curve.SetLoop(stage.loop_end > 0, static_cast<float>(stage.loop_end));
    stage.motion.curve.ComputeTangents(1);
}

Stage RandomStage(Dice& dice, AnimationType type) {
    Stage stage;
    VisualEffectMotion& m = stage.motion;
    m.type = type;
    m.concat = static_cast<ConcatType>(dice.Below(3));
    m.scale = dice.Vector(2);
    m.speed = dice.Between(-1, 2);
    if (dice.OneIn(2)) m.local_speed = dice.Between(-1, 2);
    if (dice.OneIn(2)) m.time_offset = dice.Between(-1, 1);
    if (dice.OneIn(3)) m.time_count_offset = dice.Between(-1, 1);
    if (dice.OneIn(3)) m.speed_count_offset = dice.Between(-1, 1);
    if (dice.OneIn(3)) m.local_speed_count_offset = dice.Between(-1, 1);
    if (dice.OneIn(3)) m.time_minimum = dice.Between(-1, 0), m.time_maximum = dice.Between(0, 1);
    if (dice.OneIn(3)) m.time_scale = {dice.Between(-1, 1), dice.Between(-1, 1), dice.Between(-1, 1)};
    m.time_scale_uses_stage_time = dice.OneIn(2);
    if (dice.OneIn(3)) m.rotation_axis = dice.Vector(1), m.rotation_angle = dice.Between(-3, 3);
    if (dice.OneIn(4)) m.offset = dice.Vector(1);
    if (type == AnimationType::Bezier) AddCurve(dice, stage);
    PrepareStage(m);
    return stage;
}

void FillChannel(Dice& dice, AnimationType first, MotionChannel& channel, std::vector<Stage>& stages, int least = 0) {
    for (int i = least + dice.Below(4 - least); i > 0; --i)
        stages.push_back(RandomStage(dice, stages.empty() ? first : static_cast<AnimationType>(dice.Below(14))));
    for (const Stage& stage : stages) channel.Add(stage.motion);
}

/// Within a few roundings of the largest number that went into it.
void ExpectNear(const D3DXVECTOR3& found, const Vec& expected, const std::string& what) {
    const double tolerance = 4e-5 * (1 + Length(expected)) * (1 + Length(expected) / 10);
    EXPECT_LE(Length(ToVec(found) + -1 * expected), tolerance) << what;
}

TEST(Motion, IsThatOfThePlainReferenceForRandomDefinitions) {
    Dice dice(7);
    for (int round = 0; round < 1300; ++round) {
        const auto type = static_cast<AnimationType>(round % 13);
        const std::string what = "round " + std::to_string(round) + " type " + std::to_string(round % 13);
        SubEffect sub(SubEffectKind::Particle);
        std::vector<Stage> position, rotation, scale, colour, alpha;
        FillChannel(dice, type, sub.position_stages, position, 1);
        FillChannel(dice, type, sub.rotation_stages, rotation);
        FillChannel(dice, type, sub.scale_stages, scale);
        FillChannel(dice, type, sub.colour_stages, colour);
        FillChannel(dice, type, sub.alpha_stages, alpha);
        sub.position_offset = dice.Vector(3);
        sub.scale = dice.Vector(3);
        sub.colour = dice.Vector(1);
        for (bool& mirror : sub.random_mirror) mirror = dice.OneIn(2);
        sub.random_reverse_rotation = dice.OneIn(2);
        const D3DXVECTOR3 start_axis = dice.Vector(1);
        D3DXQuaternionRotationAxis(&sub.start_rotation, &start_axis, dice.Between(-3, 3));
        MotionRandoms r;
        for (float& random : r) random = dice.Between(0, 1);
        const double t = dice.Between(0, 2);
        const float c = dice.Between(0, 1);

        ExpectNear(EvaluateMotion(position[0].motion, t, c, r), StageAt(position[0], t, c, r), what + " stage");
        ExpectNear(EvalPosition(sub, t, c, r), ToVec(sub.position_offset) + ChannelAt(position, 0, t, c, r), what);
        const Vec mirror = {MirrorSign(sub.random_mirror[0], r[0]), MirrorSign(sub.random_mirror[1], r[1]),
                            MirrorSign(sub.random_mirror[2], r[2])};
        ExpectNear(EvalScale(sub, t, c, r), ToVec(sub.scale) * mirror * ChannelAt(scale, 1, t, c, r), what + " scale");
        ExpectNear(EvalColor(sub, t, c, r), ToVec(sub.colour) * ChannelAt(colour, 1, t, c, r), what + " colour");
        ExpectNear({EvalAlpha(sub, t, c, r), 0, 0}, {ChannelAt(alpha, 1, t, c, r).x, 0, 0}, what + " alpha");

        const double sign = MirrorSign(sub.random_reverse_rotation, r[3]);
        double angle = 0;
        Vec probe = {0.3, -0.7, 0.5};   // turned by each rotation after the other
        for (const Stage& stage : rotation) {
            const Vec v = StageAt(stage, t, c, r);
            const double length = Length(v);
            angle += v.x;
            if (length > 0) probe = Rotated(probe, Unit(v), length * sign);
        }
        ExpectNear({EvalRotationAngle(sub, t, c, r), 0, 0}, {angle * sign, 0, 0}, what + " angle");
        D3DXMATRIX matrix;
        D3DXVECTOR3 found, start(static_cast<float>(probe.x), static_cast<float>(probe.y), static_cast<float>(probe.z));
        D3DXVECTOR3 expected;
        D3DXVec3TransformNormal(&expected, &start, D3DXMatrixRotationQuaternion(&matrix, &sub.start_rotation));
        const D3DXQUATERNION whole = EvalRotation(sub, t, c, r);
        const D3DXVECTOR3 unturned(0.3f, -0.7f, 0.5f);
        D3DXVec3TransformNormal(&found, &unturned, D3DXMatrixRotationQuaternion(&matrix, &whole));
        EXPECT_NEAR(D3DXVec3Length(found - expected), 0, 3e-4) << what << " rotation";
        if (HasFailure()) return;
    }
}

TEST(Life, FollowsTheCountValue) {
    SubEffect sub(SubEffectKind::Particle);
    sub.life = 3;
    sub.birth_time = 0.5;
    sub.birth_count_offset = 2;
    EXPECT_FLOAT_EQ(LifeForCount(sub, 0.25f), 3);
    EXPECT_DOUBLE_EQ(BirthDelay(sub, 0.25f), 1);
    sub.life_count.AddKey(0, {0.5f});
    sub.life_count.AddKey(1, {1.5f});
    sub.life_count.ComputeTangents(1);
    EXPECT_FLOAT_EQ(LifeForCount(sub, 0.25f), 2.25f);
}

TEST(Fade, RisesFallsAndEnds) {
    const std::tuple<double, double, double, double, float> kRows[] = {
        {0.5, 0, 0, 0.25, 0.5f}, {0.5, 0, 0, 0.75, 1},  {0, 1, 2, 1.5, 0.5f},      {0, 1, 2, 2, 0},
        {0, 1, 2, 5, 0},         {0, 1, 0, 1.5, 1},     {0.5, 1, 1, 0.25, 0.375f}, {0, 0, 2, 3, 1},
        {0, 0, 2, 1, 1},         {0.5, 0, 2, -0.25, 0}, {4, 1, 2, 1.5, 0.1875f},
    };
    for (const auto& [fade_in, fade_out, life, t, factor] : kRows) {
        SubEffect sub(SubEffectKind::Particle);
        sub.fade_in = fade_in;
        sub.fade_out = fade_out;
        sub.life = life;
        EXPECT_FLOAT_EQ(FadeFactor(sub, t, 0), factor) << fade_in << " " << fade_out << " " << t;
    }
}

}   // namespace
}   // namespace sparkrig
