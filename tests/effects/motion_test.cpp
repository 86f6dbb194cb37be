#include "effects/motion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "effects/motion_lanes.h"
#include "effects/sine.h"

namespace sparkrig {
namespace {

constexpr double kTwoPi = 6.283186;
constexpr MotionRandoms kRandoms = {0.2f, 0.35f, 0.61f, 0.9f};

VisualEffectMotion Stage(AnimationType type, const D3DXVECTOR3& scale = {2, -3, 5}) {
    VisualEffectMotion stage;
    stage.type = type;
    stage.scale = scale;
    return stage;
}

void Prepare(VisualEffectMotion& stage, const D3DXVECTOR3& axis, float degrees, const D3DXVECTOR3& offset) {
    stage.rotation_axis = axis;
    stage.rotation_angle = degrees * kRadiansPerDegree;
    stage.offset = offset;
    PrepareStage(stage);
}

void ExpectNear(const D3DXVECTOR3& found, const D3DXVECTOR3& expected, const char* what = "") {
    EXPECT_NEAR(found.x, expected.x, 2e-5 * (1 + std::abs(expected.x))) << what;
    EXPECT_NEAR(found.y, expected.y, 2e-5 * (1 + std::abs(expected.y))) << what;
    EXPECT_NEAR(found.z, expected.z, 2e-5 * (1 + std::abs(expected.z))) << what;
}

D3DXVECTOR3 Vector(double x, double y, double z) {
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

void Append(MotionChannel& channel, VisualEffectMotion stage, ConcatType concat) {
    stage.concat = concat;
    channel.Add(stage);
}

/// A stage whose value is `value` at every time.
VisualEffectMotion Constant(const D3DXVECTOR3& value) {
    VisualEffectMotion stage = Stage(AnimationType::Linear);
    stage.scale = value;
    stage.speed = 0;
    stage.time_offset = 0;
    stage.time_minimum = stage.time_maximum = 1;
    return stage;
}

TEST(Sine, AgreesWithTheLibraryAtSmallAndLargeAngles) {
    for (const double scale : {1e-6, 0.3, 1.7, 40.0, 1e4, 1e6}) {
        for (int i = -200; i <= 200; ++i) {
            const double angle = scale * i / 61.0;
            EXPECT_NEAR(Sine(angle), std::sin(angle), 3e-10) << angle;
            EXPECT_NEAR(Cosine(angle), std::cos(angle), 3e-10) << angle;
        }
    }
}

TEST(Sine, StaysInRangeForEveryAngle) {
    for (const double angle : {1e12, -1e15, 1e17, 1e300, -1e300})
        EXPECT_LE(std::abs(Sine(angle)) + std::abs(Cosine(angle)), 2.0) << angle;
    EXPECT_TRUE(std::isnan(Sine(std::numeric_limits<double>::infinity())));
}

TEST(Motion, EachTypeGivesItsFormula) {
    const double u = 0.7, a = kTwoPi * u, swing = 1.5 * std::sin(a);
    const double height = 2 * 0.9 - 1, radius = std::sqrt(1 - height * height), longitude = kTwoPi * 0.61;
    const std::tuple<const char*, AnimationType, D3DXVECTOR3> kRows[] = {
        {"none", AnimationType::None, {}},
        {"linear", AnimationType::Linear, Vector(u, u, u)},
        {"swing", AnimationType::Swing, Vector(std::sin(swing), std::sin(swing), 1 - std::cos(swing))},
        {"sin", AnimationType::Sin, Vector(std::sin(a), std::sin(a), std::sin(a))},
        {"cos", AnimationType::Cos, Vector(std::cos(a), std::cos(a), std::cos(a))},
        {"circle", AnimationType::Circle, Vector(std::sin(a), std::cos(a), std::cos(a))},
        {"quadratic", AnimationType::Quadratic, Vector(u * u, u * u, u * u)},
        {"rand1", AnimationType::Rand1, {0.2f, 0.2f, 0.2f}},
        {"rand2", AnimationType::Rand2, {0.35f, 0.35f, 0.35f}},
        {"rand3", AnimationType::Rand3, {0.61f, 0.61f, 0.61f}},
        {"rand4", AnimationType::Rand4, {0.9f, 0.9f, 0.9f}},
        {"randSphere", AnimationType::RandSphere,
         Vector(radius * std::sin(longitude), radius * std::cos(longitude), height)},
        {"unknown", static_cast<AnimationType>(77), {}},
    };
    for (const auto& [name, type, unscaled] : kRows) {
        const D3DXVECTOR3 expected(2 * unscaled.x, -3 * unscaled.y, 5 * unscaled.z);
        ExpectNear(EvaluateMotion(Stage(type), u, 0.4f, kRandoms), expected, name);
    }
}

TEST(Motion, BezierGivesTheCurveWithoutTheScale) {
    VisualEffectMotion stage = Stage(AnimationType::Bezier);
    stage.curve.AddKey(1, {2, 3, 4});
    stage.curve.AddKey(3, {6, -1, 8});
    stage.curve.ComputeTangents(1);
    ExpectNear(EvaluateMotion(stage, 2, 0, kRandoms), {4, 1, 6});   // two keys: a straight line
    ExpectNear(EvaluateMotion(stage, 9, 0, kRandoms), {6, -1, 8});
}

TEST(Motion, StageTimeCombinesSpeedsOffsetsAndCountValue) {
    VisualEffectMotion stage = Stage(AnimationType::Linear, {1, 1, 1});
    stage.speed = 2;
    stage.speed_count_offset = 3;
    stage.local_speed = 0.5f;
    stage.local_speed_count_offset = -0.25f;
    stage.time_offset = 0.7f;
    stage.time_count_offset = 1.1f;
    const double u = (2 + 0.4 * 3) * ((0.5 - 0.4 * 0.25) * 1.7 + 0.7 + 0.4 * 1.1);
    ExpectNear(EvaluateMotion(stage, 1.7, 0.4f, kRandoms), Vector(u, u, u));
}

TEST(Motion, StageTimeIsClamped) {
    VisualEffectMotion stage = Stage(AnimationType::Linear, {7, 2, 3});
    stage.time_minimum = -0.5f;
    stage.time_maximum = 1;
    ExpectNear(EvaluateMotion(stage, 4, 0, kRandoms), {7, 2, 3});
    ExpectNear(EvaluateMotion(stage, -4, 0, kRandoms), {-3.5f, -1, -1.5f});
}

TEST(Motion, TimeFactorScalesByTheStageTimeOrTheRawTime) {
    const std::tuple<TimeScale, bool, double, float> kRows[] = {
        {{0, 1, 0}, true, 3, 1},          {{4, 0, 0}, true, 0.5, 4},   // stage time 1
        {{4, 0, 0}, true, 0, 0},                                       // no division at time 0
        {{4, 0, 0}, false, 0.5, 8},                                    // raw time
        {{3, 2, 0.5f}, true, 1.5, 4.5f},                               // 3 / 3 + 2 + 0.5 * 3
        {{3, 2, 0.5f}, true, -1.5, 0.5f},
    };
    for (const auto& [scale, uses_stage_time, t, factor] : kRows) {
        VisualEffectMotion stage = Stage(AnimationType::Rand1);
        stage.speed = 2;
        stage.time_scale = scale;
        stage.time_scale_uses_stage_time = uses_stage_time;
        ExpectNear(EvaluateMotion(stage, t, 0, kRandoms), D3DXVECTOR3(0.4f, -0.6f, 1) * factor);
    }
}

TEST(Motion, StageTransformTurnsAndMovesBeforeTheTimeFactor) {
    VisualEffectMotion stage = Constant({2, 0, 3});
    stage.time_scale = {0, 10, 0};
    Prepare(stage, {0, 0, 4}, 90, {0.5f, 0.25f, -1});
    ExpectNear(EvaluateMotion(stage, 1, 0, kRandoms), {5, 22.5f, 20});
    Prepare(stage, {}, 0, {0, 0, 7});   // an offset alone is a transform
    ExpectNear(EvaluateMotion(stage, 1, 0, kRandoms), {20, 0, 100});
    Prepare(stage, {}, 60, {});   // without an axis the rotation matrix scales by the cosine
    ExpectNear(EvaluateMotion(stage, 1, 0, kRandoms), {10, 0, 15});
}

TEST(Channels, FoldTheirStagesInOrder) {
    SubEffect sub(SubEffectKind::Particle);
    sub.position_offset = {0.5f, -0.5f, 0.25f};
    Append(sub.position_stages, Constant({2, 3, 4}), ConcatType::Add);
    Append(sub.position_stages, Constant({5, 6, 7}), ConcatType::Multiply);
    Append(sub.position_stages, Constant({1, 1, 1}), ConcatType::Add);
    ExpectNear(EvalPosition(sub, 2, 0, kRandoms), {11.5f, 18.5f, 29.25f});
    Append(sub.position_stages, Constant({0, 0, 90}), ConcatType::Rotate);   // an axis as long as its degrees
    ExpectNear(EvalPosition(sub, 2, 0, kRandoms), {-18.5f, 10.5f, 29.25f});
    Append(sub.position_stages, Constant({0, 0, 0}), ConcatType::Rotate);
    ExpectNear(EvalPosition(sub, 2, 0, kRandoms), {-18.5f, 10.5f, 29.25f});
}

TEST(Channels, WithoutStagesGiveTheSubEffectsOwnValues) {
    SubEffect sub(SubEffectKind::Particle);
    sub.position_offset = {3, 4, 5};
    sub.scale = {6, 7, 8};
    sub.colour = {0.2f, 0.3f, 0.4f};
    sub.start_rotation = {0.6f, 0, 0, 0.8f};
    EXPECT_EQ(EvalPosition(sub, 2, 0, kRandoms), D3DXVECTOR3(3, 4, 5));
    EXPECT_EQ(EvalScale(sub, 2, 0, kRandoms), D3DXVECTOR3(6, 7, 8));
    EXPECT_EQ(EvalColor(sub, 2, 0, kRandoms), D3DXVECTOR3(0.2f, 0.3f, 0.4f));
    EXPECT_EQ(EvalAlpha(sub, 2, 0, kRandoms), 1);
    EXPECT_EQ(EvalRotation(sub, 2, 0, kRandoms), sub.start_rotation);
    EXPECT_EQ(EvalRotationAngle(sub, 2, 0, kRandoms), 0);
}

TEST(Channels, MultiplyStartsFromOneForScaleColourAndAlpha) {
    SubEffect sub(SubEffectKind::Particle);
    sub.scale = {2, 3, 4};
    sub.colour = {0.5f, 0.25f, 2};
    Append(sub.scale_stages, Constant({3, 5, 7}), ConcatType::Multiply);
    Append(sub.colour_stages, Constant({0.1f, 0.2f, 0.3f}), ConcatType::Add);
    Append(sub.alpha_stages, Constant({0.75f, 9, 9}), ConcatType::Multiply);
    ExpectNear(EvalScale(sub, 2, 0, kRandoms), {6, 15, 28});
    ExpectNear(EvalColor(sub, 2, 0, kRandoms), {0.55f, 0.3f, 2.6f});
    EXPECT_FLOAT_EQ(EvalAlpha(sub, 2, 0, kRandoms), 0.75f);
}

TEST(Channels, MirrorTheScaleAtOddHundredths) {
    SubEffect sub(SubEffectKind::Particle);
    sub.scale = {2, 3, 4};
    sub.random_mirror[0] = sub.random_mirror[2] = true;
    EXPECT_EQ(EvalScale(sub, 1, 0, {0.015f, 0.015f, 0.025f, 0}), D3DXVECTOR3(-2, 3, 4));
    EXPECT_EQ(EvalScale(sub, 1, 0, {0.025f, 0, 0.995f, 0}), D3DXVECTOR3(2, 3, -4));
}

TEST(Channels, RotationMultipliesItsStagesThenTheStartRotation) {
    SubEffect sub(SubEffectKind::Mesh);
    const D3DXVECTOR3 first(0, 0, 0.7f), second(1.2f, 0, 0), start_axis(0, 1, 0);
    Append(sub.rotation_stages, Constant(first), ConcatType::Rotate);
    Append(sub.rotation_stages, Constant(second), ConcatType::Add);   // the type makes no difference
    D3DXQuaternionRotationAxis(&sub.start_rotation, &start_axis, 0.4f);
    for (const float sign : {1.0f, -1.0f}) {
        sub.random_reverse_rotation = sign < 0;
        D3DXQUATERNION expected, b;
        D3DXQuaternionRotationAxis(&expected, &first, 0.7f * sign);
        D3DXQuaternionRotationAxis(&b, &second, 1.2f * sign);
        D3DXQuaternionMultiply(&expected, &expected, &b);
        D3DXQuaternionMultiply(&expected, &expected, &sub.start_rotation);
        const D3DXQUATERNION found = EvalRotation(sub, 1, 0, {0, 0, 0, 0.455f});
        ExpectNear({found.x, found.y, found.z}, {expected.x, expected.y, expected.z});
        EXPECT_NEAR(found.w, expected.w, 1e-5);
        EXPECT_FLOAT_EQ(EvalRotationAngle(sub, 1, 0, {0, 0, 0, 0.455f}), 1.2f * sign);
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
    const struct {
        double fade_in, fade_out, life, t;
        float factor;
    } kRows[] = {
        {0.5, 0, 0, 0.25, 0.5f}, {0.5, 0, 0, 0.75, 1},  {0, 1, 2, 1.5, 0.5f},      {0, 1, 2, 2, 0},
        {0, 1, 2, 5, 0},         {0, 1, 0, 1.5, 1},     {0.5, 1, 1, 0.25, 0.375f}, {0, 0, 2, 3, 1},
        {0, 0, 2, 1, 1},         {0.5, 0, 2, -0.25, 0}, {4, 1, 2, 1.5, 0.1875f},
    };
    for (const auto& row : kRows) {
        SubEffect sub(SubEffectKind::Particle);
        sub.fade_in = row.fade_in;
        sub.fade_out = row.fade_out;
        sub.life = row.life;
        EXPECT_FLOAT_EQ(FadeFactor(sub, row.t, 0), row.factor) << row.fade_in << " " << row.fade_out << " " << row.t;
    }
}

/// A sub-effect with every type of stage in every channel.
void FillChannels(SubEffect& sub) {
    int number = 0;
    for (MotionChannel* channel :
         {&sub.position_stages, &sub.rotation_stages, &sub.scale_stages, &sub.colour_stages, &sub.alpha_stages}) {
        for (int type = 0; type <= 12; ++type, ++number) {
            VisualEffectMotion stage = Stage(static_cast<AnimationType>(type), {0.3f + type, 1.7f, -0.9f});
            stage.curve.AddKey(0, {0.2f, 0.5f, 1.25f});
            stage.curve.AddKey(0.6f, {2, -0.5f, 0.75f});
            stage.curve.AddKey(1.5f, {0.1f, 0.3f, 0.8f});
            stage.curve.SetLoop(number % 2 == 0, 2);
            stage.curve.ComputeTangents(1);
            stage.speed_count_offset = 0.3f;
            stage.time_count_offset = 0.1f * number;
            if (number % 3 == 0) Prepare(stage, {0.4f, 1, -2}, 33, {0.1f, 0.2f, 0.3f});
            if (number % 4 == 0) stage.time_scale = {0.2f, 0.9f, 0.1f};
            Append(*channel, stage, static_cast<ConcatType>(number % 3));
        }
    }
    sub.fade_in = 0.3;
    sub.fade_out = 0.8;
    sub.life = 2;
    sub.random_mirror[1] = sub.random_reverse_rotation = true;
}

TEST(MotionLanes, GiveTheBitsOfTheFunctionsForOneInstance) {
    SubEffect sub(SubEffectKind::Particle);
    FillChannels(sub);
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> uniform(0, 1);
    for (const int count : {1, 3, 8, 50, 127, 128}) {
        MotionLanes in;
        in.count = count;
        for (int i = 0; i < count; ++i) {
            in.t[i] = 2.5 * uniform(generator);
            in.c[i] = uniform(generator);
            for (auto& random : in.r) random[i] = uniform(generator);
            in.life[i] = LifeForCount(sub, in.c[i]);
        }
        VectorLanes position, scale, colour;
        QuaternionLanes rotation;
        float angle[kLanes], alpha[kLanes], fade[kLanes];
        EvalPosition(sub, in, position);
        EvalScale(sub, in, scale);
        EvalColor(sub, in, colour);
        EvalRotations(sub, in, rotation, angle);
        EvalAlpha(sub, in, alpha);
        FadeFactor(sub, in, fade);
        for (int i = 0; i < count; ++i) {
            const MotionRandoms r = {in.r[0][i], in.r[1][i], in.r[2][i], in.r[3][i]};
            const auto at = [i](const VectorLanes& v) { return D3DXVECTOR3(v.x[i], v.y[i], v.z[i]); };
            EXPECT_EQ(at(position), EvalPosition(sub, in.t[i], in.c[i], r));
            EXPECT_EQ(at(scale), EvalScale(sub, in.t[i], in.c[i], r));
            EXPECT_EQ(at(colour), EvalColor(sub, in.t[i], in.c[i], r));
            EXPECT_EQ((D3DXQUATERNION{rotation.x[i], rotation.y[i], rotation.z[i], rotation.w[i]}),
                      EvalRotation(sub, in.t[i], in.c[i], r));
            EXPECT_EQ(angle[i], EvalRotationAngle(sub, in.t[i], in.c[i], r));
            EXPECT_EQ(alpha[i], EvalAlpha(sub, in.t[i], in.c[i], r));
            EXPECT_EQ(fade[i], FadeFactor(sub, in.t[i], in.c[i]));
        }
    }
}

TEST(Motion, EveryArgumentHasAResult) {
    SubEffect sub(SubEffectKind::Particle);
    FillChannels(sub);
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double t : {kInfinity, -kInfinity, std::nan(""), 1e300, -1e-300}) {
        for (const float c : {std::nanf(""), 1e38f, -2.5f}) {
            const MotionRandoms r = {c, 1e30f, -7, std::nanf("")};
            (void)EvalPosition(sub, t, c, r);
            (void)EvalRotation(sub, t, c, r);
            (void)EvalScale(sub, t, c, r);
            const float fade = FadeFactor(sub, t, c);
            EXPECT_TRUE(std::isnan(fade) || (fade >= 0 && fade <= 1)) << t;
        }
    }
}

}   // namespace
}   // namespace sparkrig
