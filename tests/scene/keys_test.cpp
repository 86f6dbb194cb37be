// Chains of keys, their tables, rotations beside a slow and obvious evaluation, and their bytes in a file (places and
// sizes stand in the answers of the sample scenes); what exported keys become; single curves, whose tangents and loops
// are also those of a plain reference in the tests of the effects' motion.
#include <cmath>
#include <cstring>
#include <random>

#include "base/file.h"
#include "scene/exported_keys.h"
#include "scene/key_curve.h"
#include "scene/node_tracks.h"
#include "tests/scene/near.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

// ---- The obvious way

D3DXQUATERNION Turn(const D3DXVECTOR3& axis, float angle) {
    D3DXQUATERNION q;
    return *D3DXQuaternionRotationAxis(&q, &axis, angle);
}

/// From a to b by turning about the one axis between them.
D3DXQUATERNION SlowSlerp(const D3DXQUATERNION& a, const D3DXQUATERNION& b, float t) {
    const D3DXQUATERNION back = {-a.x, -a.y, -a.z, a.w};
    D3DXQUATERNION step;
    D3DXQuaternionMultiply(&step, &b, &back);
    if (step.w < 0) step = {-step.x, -step.y, -step.z, -step.w};
    D3DXVECTOR3 axis;
    float angle;
    D3DXQuaternionToAxisAngle(&step, &axis, &angle);
    const D3DXQUATERNION part = Turn(axis, angle * t);
    D3DXQUATERNION result;
    return *D3DXQuaternionMultiply(&result, &part, &a);
}

/// The way covered at u by what speeds up along `out`, slows down along `in`, and arrives at 1: summed up.
float SlowEase(float u, float out, float in) {
    constexpr int kSteps = 10000;
    const float both = std::max(1.0f, out + in);
    out /= both;
    in /= both;
    double covered = 0, whole = 0;
    for (int i = 0; i < kSteps; ++i) {
        const float at = (static_cast<float>(i) + 0.5f) / kSteps;
        const float speed = std::min({1.0f, out > 0 ? at / out : 1.0f, in > 0 ? (1 - at) / in : 1.0f});
        whole += speed;
        if (at < u) covered += speed;
    }
    return static_cast<float>(covered / whole);
}

// ---- Chains

template <class Data>
std::vector<float> Times(const KeyTrack<Data>& track) {
    std::vector<float> times;
    const KRN_KeyBase<Data>* before = nullptr;
    for (const auto* key = track.Head(); key; before = key, key = key->next.get()) {
        EXPECT_EQ(key->previous, before);
        times.push_back(key->time);
    }
    return times;
}

KRN_PosKeyData At(float x) { return {.value = {x, 2 * x, -x}, .in_tangent = {}, .out_tangent = {}}; }

TEST(KeyTrack, KeepsKeysInOrderAndEqualTimesAsTheyCame) {
    KeyTrack<KRN_PosKeyData> track;
    EXPECT_TRUE(track.IsEmpty());
    for (const float time : {3.0f, 7.0f, 2.0f, 5.0f, 5.0f, 9.0f}) {
        track.Add(time, KeyInterpolation::Linear, At(static_cast<float>(track.Count()) + 10));
    }
    EXPECT_THAT(Times(track), ElementsAre(2, 3, 5, 5, 7, 9));
    EXPECT_EQ(track.Count(), 6u);
    EXPECT_TRUE(track.RebuildLookup());
    ExpectNear(EvaluateTrack(track, 5, {}), At(14).value);

    KeyTrack<KRN_PosKeyData> copy;
    copy.CopyFrom(track);
    track.Clear();
    EXPECT_TRUE(track.IsEmpty());
    copy.Add(6, KeyInterpolation::Linear, At(3));
    EXPECT_THAT(Times(copy), ElementsAre(2, 3, 5, 5, 6, 7, 9));
    EXPECT_TRUE(copy.RebuildLookup());
    ExpectNear(EvaluateTrack(copy, 6, {}), At(3).value);
}

TEST(KeyTrack, MayHaveOneKeyOrAMillion) {
    KeyTrack<KRN_ScaleKeyData> track;
    track.Add(3, KeyInterpolation::Bezier, {{{2, 4, 6}, {7, 8, 9}, {5, 3, 2}}});
    track.RebuildLookup();
    for (const double t : {-2.0, 3.0, 4.5, 80.0}) ExpectNear(EvaluateTrack(track, t, {true, 9}), {2, 4, 6});
    track.Clear();
    for (int i = 0; i < 1'000'000; ++i) track.Add(static_cast<float>(i), KeyInterpolation::Linear, {});
    EXPECT_EQ(track.FindActive(9).time, 0) << "without a table";
    track.Clear();
    EXPECT_TRUE(track.IsEmpty());
}

// ---- Evaluation

KRN_RotKeyData RandomRotation(std::mt19937& generator) {
    std::uniform_real_distribution<float> angle(0.2f, 1.2f), unit(-1, 1), ease(0, 0.8f);
    const auto turn = [&] { return Turn({unit(generator), unit(generator), 1.5f}, angle(generator)); };
    KRN_RotKeyData data;
    data.axis = {unit(generator), unit(generator), 1.5f};
    data.angle = angle(generator);
    data.continuity = unit(generator) * 0.4f;
    data.ease_in = ease(generator);
    data.ease_out = ease(generator);
    data.rotation = turn();
    data.in_control = turn();
    data.out_control = turn();
    return data;
}

D3DXQUATERNION SlowTcb(const KRN_RotKeyData& from, const KRN_RotKeyData& to, float u) {
    const float s = SlowEase(u, from.ease_out, to.ease_in);
    const float p = s + s * to.continuity;
    const float r = s - (1 - s) * from.continuity;
    const D3DXQUATERNION a = SlowSlerp(from.rotation, from.out_control, p);
    const D3DXQUATERNION b = SlowSlerp(from.out_control, to.in_control, s);
    const D3DXQUATERNION c = SlowSlerp(to.in_control, to.rotation, r);
    return SlowSlerp(SlowSlerp(a, b, p), SlowSlerp(b, c, r), s);
}

TEST(RotationTrack, FollowsTheSlowWay) {
    std::mt19937 generator(11);
    for (int i = 0; i < 60; ++i) {
        const bool tcb = i % 2 == 1;
        KeyTrack<KRN_RotKeyData> track;
        const KRN_RotKeyData first = RandomRotation(generator), second = RandomRotation(generator);
        track.Add(2, tcb ? KeyInterpolation::Tcb : KeyInterpolation::Linear, first);
        track.Add(6, KeyInterpolation::Tcb, second);
        ASSERT_TRUE(track.RebuildLookup());
        for (const float u : {0.0f, 0.125f, 0.5f, 0.8125f}) {
            const D3DXQUATERNION slow = tcb ? SlowTcb(first, second, u) : SlowSlerp(first.rotation, second.rotation, u);
            ExpectSameTurn(EvaluateTrack(track, 2 + 4 * u, {}), slow, 5e-4f);
            // A loop closes straight, whatever the last key is.
            const D3DXQUATERNION closing = SlowSlerp(second.rotation, first.rotation, u);
            ExpectSameTurn(EvaluateTrack(track, 6 + 3 * u, {true, 9}), closing);
        }
        ExpectSameTurn(EvaluateTrack(track, 1, {}), Turn(first.axis, first.angle));
        ExpectSameTurn(EvaluateTrack(track, 99, {}), second.rotation);
    }
}

// ---- Files

class NodeKeyFile : public TemporaryFolder {
  protected:
    /// What a track writes.
    template <class Data>
    static std::string Written(const KeyTrack<Data>& track) {
        WriteFile("keys", "");
        File file;
        file.Open("keys", false, false, true);
        EXPECT_EQ(track.Write(file), track.Count());
        file.Close();
        return ReadFile("keys");
    }
    template <class Data>
    static void Read(const std::string& bytes, std::uint32_t count, KeyTrack<Data>& track) {
        WriteFile("keys", bytes);
        File file;
        file.Open("keys", true, true, true);
        track.Read(file, count);
        EXPECT_EQ(file.Tell(), file.GetSize());
    }
};

template <class Value>
void Append(std::string& bytes, Value value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

TEST_F(NodeKeyFile, HoldsTimeInterpolationDataAndWhetherMoreFollow) {
    KeyTrack<KRN_RotKeyData> track;
    const D3DXQUATERNION q = Turn({1, 2, 3}, 0.5f);
    const KRN_RotKeyData data = {
        {2, 3, 4}, 0.25f, 5, 6, 7, 8, 9, q, {0.1f, 0.2f, 0.3f, 0.4f}, {0.5f, 0.6f, 0.7f, 0.8f}};
    track.Add(1.5f, KeyInterpolation::Tcb, data);
    track.Add(2.5f, static_cast<KeyInterpolation>(0x7856), {});
    std::string expected;
    const float times[] = {1.5f, 2.5f};
    for (int i = 0; i < 2; ++i) {
        Append(expected, times[i]);
        Append(expected, static_cast<std::uint16_t>(i == 0 ? 2 : 0x7856));
        Append(expected, i == 0 ? data : KRN_RotKeyData{});   // 21 floats in the order of the record
        Append(expected, static_cast<std::uint8_t>(1 - i));
    }
    EXPECT_EQ(expected.size(), 2u * 91);
    EXPECT_EQ(Written(track), expected);

    KeyTrack<KRN_RotKeyData> read;
    Read(expected, 2, read);
    EXPECT_THAT(Times(read), ElementsAre(1.5f, 2.5f));
    EXPECT_EQ(read.Head()->data, data);
    EXPECT_EQ(read.Head()->next->interpolation, static_cast<KeyInterpolation>(0x7856));
    EXPECT_EQ(Written(read), expected);
    EXPECT_TRUE(read.RebuildLookup());
    read.Add(1, KeyInterpolation::Linear, {});
    EXPECT_THAT(Times(read), ElementsAre(1, 1.5f, 2.5f));
    const float late = 8;
    std::memcpy(expected.data(), &late, sizeof late);
    Read(expected, 2, read);
    EXPECT_THAT(Times(read), ElementsAre(8, 2.5f)) << "as they stand";
    Read("", 0, read);
    EXPECT_TRUE(read.IsEmpty());
}

// ---- Exported keys

constexpr auto kLinear = KeyInterpolation::Linear, kBezier = KeyInterpolation::Bezier, kTcb = KeyInterpolation::Tcb;
constexpr float kFullTurn = 6.283184f;

D3DXQUATERNION TurnAboutZ(float angle) { return {0, 0, std::sin(angle / 2), std::cos(angle / 2)}; }

/// As a file has it: about the axis that points the other way.
KRN_RotKeyData Exported(float angle, float tension = 0) {
    KRN_RotKeyData data;
    data.axis = {0, 0, -2};
    data.angle = angle;
    data.tension = tension;
    data.continuity = tension * 2;
    data.bias = tension * 3;
    data.ease_in = tension * 4;
    data.ease_out = tension * 5;
    return data;
}

TEST(TickTimes, CountFromTheFirstFrame) {
    const TickTimes times{.first_frame = 10, .ticks_per_frame = 80, .frames_per_second = 25};
    EXPECT_FLOAT_EQ(times.Seconds(4800), 2);
    EXPECT_FLOAT_EQ(times.Seconds(300), -0.25f);
    EXPECT_FLOAT_EQ(TickTimes().Seconds(12000), 2.5f);
    EXPECT_EQ(TickTimes({.frames_per_second = 0}).Seconds(7), 0);
}

struct Step {
    float time, angle, tension;
    bool operator==(const Step&) const = default;
};

std::vector<Step> Steps(const KeyTrack<KRN_RotKeyData>& track) {
    std::vector<Step> steps;
    for (const auto* key = track.Head(); key; key = key->next.get()) {
        const KRN_RotKeyData& data = key->data;
        EXPECT_EQ(data.axis, D3DXVECTOR3(0, 0, 2));
        EXPECT_EQ(data.continuity + data.bias + data.ease_in + data.ease_out, 14 * data.tension);
        steps.push_back({key->time, data.angle, data.tension});
    }
    return steps;
}

TEST(ExportedRotations, ALongStepIsSplit) {
    const std::tuple<const char*, KeyInterpolation, float, std::vector<Step>> rows[] = {
        {"short", kTcb, 3, {{900, 3, 0.5f}}},
        {"three quarters", kTcb, 4.5f, {{500, 2.25f, 0}, {900, 2.25f, 0.5f}}},
        {"backwards", kTcb, -7.5f, {{100 + 800.0f / 3, -2.5f, 0}, {100 + 1600.0f / 3, -2.5f, 0}, {900, -2.5f, 0.5f}}},
        {"sampled", kLinear, 4, {{900, 4 - kFullTurn, 0.5f}}},
        {"sampled, more than a turn",
         kLinear,
         7,
         {{100 + 800.0f / 3, 7.0f / 3, 0}, {100 + 1600.0f / 3, 7.0f / 3, 0}, {900, 7.0f / 3, 0.5f}}},
    };
    for (const auto& [name, interpolation, angle, steps] : rows) {
        KeyTrack<KRN_RotKeyData> track;
        ExportedRotations rotations(track);
        EXPECT_TRUE(rotations.Add(100, kTcb, Exported(9, 0.25f))) << "the first is taken as it is";
        EXPECT_TRUE(rotations.Add(900, interpolation, Exported(angle, 0.5f)));
        std::vector<Step> expected = steps;
        expected.insert(expected.begin(), {100, 9, 0.25f});
        EXPECT_EQ(Steps(track), expected) << name;
        ExpectSameTurn(track.Tail()->data.rotation, TurnAboutZ(9 + angle), 1e-5f);
    }
}

TEST(ExportedRotations, OutOfOrderAbsurdAndOppositeStepsAreTaken) {
    KeyTrack<KRN_RotKeyData> track, many;
    ExportedRotations rotations(track), absurd(many);
    EXPECT_TRUE(rotations.Add(300, kTcb, Exported(3)));
    EXPECT_FALSE(rotations.Add(200, kTcb, Exported(0.75f))) << "skipped";
    EXPECT_TRUE(rotations.Add(300, kTcb, Exported(-2.5f)));
    EXPECT_EQ(track.Count(), 2u);
    EXPECT_NEAR(track.Tail()->data.rotation.z, -std::sin(0.25f), 1e-6f)
        << "negated: it looked away from the one before";
    EXPECT_NEAR(track.Tail()->data.rotation.w, -std::cos(0.25f), 1e-6f);
    EXPECT_TRUE(ExportedRotations(track).Add(200, kTcb, Exported(0.75f))) << "another block";
    EXPECT_EQ(track.Head()->time, 200);
    for (const float angle : {1.0f, 1e30f, -INFINITY, NAN}) absurd.Add(many.IsEmpty() ? 2 : 5, kTcb, Exported(angle));
    EXPECT_EQ(many.Count(), 1u + 4096 + 4096 + 1) << "not more";
}

TEST(FinishedKeys, HaveTangentsTimesTheirIntervalsAndSeconds) {
    Node node;
    NodeTracks& tracks = node.Tracks();
    constexpr KRN_PosKeyData kData = {.value = {2, 3, 4}, .in_tangent = {5, 6, 7}, .out_tangent = {8, 9, 10}};
    for (const float time : {100.0f, 300.0f, 800.0f}) tracks.position.Add(time, kBezier, kData);
    tracks.position.Add(1000, kLinear, kData);
    tracks.position.Add(1100, kBezier, kData);
    AddExportedScale(tracks.scale, 200, kBezier, {{{-2, 3, -4}, {5, 6, 7}, {8, 9, 10}}});
    FinishExportedKeys(node, {.first_frame = 2, .ticks_per_frame = 50, .frames_per_second = 4});
    const std::tuple<float, float, float> rows[] = {
        {0, 5, 8 * 200}, {1, 5 * 200, 8 * 500}, {3.5f, 5 * 500, 8 * 200}, {4.5f, 5, 8}, {5, 5, 8}};
    const auto* key = tracks.position.Head();
    for (const auto& [seconds, in, out] : rows) {
        EXPECT_FLOAT_EQ(key->time, seconds);
        EXPECT_FLOAT_EQ(key->data.in_tangent.x, in) << seconds;
        EXPECT_FLOAT_EQ(key->data.out_tangent.x, out) << seconds;
        key = key->next.get();
    }
    EXPECT_EQ(tracks.scale.Head()->data, (KRN_ScaleKeyData{{{2, 3, 4}, {5, 6, 7}, {8, 9, 10}}}));
    EXPECT_EQ(tracks.position.FindActive(3.6).time, 3.5f) << "there is a table";
}

TEST(FinishedKeys, HaveControlPointsByTheirTension) {
    // About one axis orientations are angles, and their interpolation is that of numbers.
    constexpr float kBefore = 0.25f, kHere = 0.75f, kBehind = 1.875f, kTension = 0.5f;
    constexpr float kReach = (kBehind - kBefore) / 6 * (1 - 0.8f * kTension);
    // clang-format off
    const std::tuple<const char*, bool, bool, float, float> rows[] = {
        {"alone", false, false, kHere, kHere},
        {"between", true, true, kHere - kReach, kHere + kReach},
        {"last", true, false, kBefore + (kHere - kBefore) * (1 + 0.63f * kTension) / 2, kHere},
        {"first", false, true, kHere, kHere + (kBehind - kHere) * (1 - 0.63f * kTension) / 2},
    };
    // clang-format on
    for (const auto& [name, before, behind, in, out] : rows) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, name);
        Node node;
        ExportedRotations rotations(node.Tracks().rotation);
        if (before) rotations.Add(160, kLinear, Exported(kBefore));
        rotations.Add(320, kTcb, Exported(before ? kHere - kBefore : kHere, kTension));
        if (behind) rotations.Add(480, kLinear, Exported(kBehind - kHere));
        FinishExportedKeys(node, {});
        const auto* key = node.Tracks().rotation.Head();
        if (before) {
            EXPECT_EQ(key->data.out_control, D3DXQUATERNION()) << "linear keys have none";
            key = key->next.get();
        }
        EXPECT_FLOAT_EQ(key->time, 2 / 30.0f);
        ExpectSameTurn(key->data.in_control, TurnAboutZ(in));
        ExpectSameTurn(key->data.out_control, TurnAboutZ(out));
    }
}

// ---- Curves

float At(const ScalarCurve& curve, double time) {
    float value[1] = {-7};
    curve.EvaluateCurve(time, value);
    return value[0];
}

ScalarCurve CurveOf(std::initializer_list<std::pair<float, float>> keys) {
    ScalarCurve curve;
    for (const auto& [time, value] : keys) curve.AddKey(time, {value});
    return curve;
}

TEST(KeyCurve, HasTheMeanSlopesTimesTheIntervalsAsTangents) {
    ScalarCurve curve = CurveOf({{1, 2}, {2, 5}, {4, -3}, {5, 7}});   // slopes of the segments: 3, -4, 10
    for (const float tension : {1.0f, 0.25f}) {
        curve.ComputeTangents(tension);
        constexpr std::pair<float, float> kRows[] = {{0, 3}, {0.5f, -1}, {-6, 3}, {-10, 0}};   // in, out
        for (int i = 0; i < 4; ++i) {
            EXPECT_FLOAT_EQ(curve.GetKey(i).in[0], kRows[i].first * tension) << i;
            EXPECT_FLOAT_EQ(curve.GetKey(i).out[0], kRows[i].second * tension) << i;
        }
    }
    curve.SetLoop(true, 3);   // ends at the last key all the same: the period is 5 - 1
    curve.ComputeTangents(1);
    EXPECT_NEAR(At(curve, 4), At(curve, 8), 1e-5);
    EXPECT_TRUE(std::isfinite(At(curve, 3.999)));
}

TEST(KeyCurve, ALoopRunsFromTheLastKeyToTheFirst) {
    ScalarCurve curve = CurveOf({{0, 3}, {1, 7}});
    curve.SetLoop(true, 3);
    curve.ComputeTangents(1);
    curve.SetMode(CurveMode::Linear);
    curve.SetLoop(true, 2);
    constexpr std::pair<double, float> kRows[] = {{0.5, 5}, {1, 7},   {1.25, 6},  {1.75, 4},
                                                  {2, 3},   {6.5, 5}, {-0.25, 4}, {-1.5, 5}};
    for (const auto& [time, value] : kRows) EXPECT_FLOAT_EQ(At(curve, time), value) << time;
}

TEST(KeyCurve, MayHaveNoKeyOneKeyOrTwoOfATime) {
    EXPECT_EQ(At(ScalarCurve(), 3), 0);
    for (const bool loop : {false, true}) {
        ScalarCurve one;
        one.AddKey({.time = 2, .value = {6}, .in = {3}, .out = {4}});
        for (const float loop_end : {2.0f, 9.0f}) {
            one.SetLoop(loop, loop_end);
            for (const double time : {-3.0, 2.0, 4.5, 70.0}) EXPECT_FLOAT_EQ(At(one, time), 6) << loop << time;
        }
    }
    ScalarCurve step = CurveOf({{0, 2}, {1, 4}, {1, 9}, {2, 11}});
    step.SetMode(CurveMode::Linear);
    EXPECT_NEAR(At(step, 0.999999), 4, 1e-4);
    EXPECT_FLOAT_EQ(At(step, 1), 9);
    EXPECT_FLOAT_EQ(At(step, 1.5), 10);
}

TEST(KeyCurve, TheDerivativeIsTheSlopeOfTheCurve) {
    for (const CurveMode mode : {CurveMode::Linear, CurveMode::Hermite}) {
        for (const bool loop : {false, true}) {
            ColourCurve curve;
            curve.AddKey({.time = 2, .value = {3, 5, 7, 9}, .in = {-1, 2, 4, 8}, .out = {6, -2, 3, 5}});
            curve.AddKey({.time = 5, .value = {4, -6, 8, 2}, .in = {-3, 7, 2, -5}, .out = {2, 4, -8, 6}});
            curve.SetLoop(loop, 9);
            curve.SetMode(mode);
            for (const double time : {1.0, 2.75, 4.5, 7.25, 13.5}) {
                float before[4], behind[4], slope[4];
                curve.EvaluateCurve(time - 0.001, before);
                curve.EvaluateCurve(time + 0.001, behind);
                curve.EvaluateDerivative(time, slope);
                for (int i = 0; i < 4; ++i) EXPECT_NEAR(slope[i], (behind[i] - before[i]) / 0.002f, 0.01f) << time;
            }
        }
    }
}

TEST(FindSegment, FindsTheSegmentThatAScanFinds) {
    std::mt19937 generator(7);
    for (const std::size_t count : {1, 2, 8, 9, 200}) {
        std::vector<CurveKey<1>> keys(count);
        for (std::size_t i = 1; i < count; ++i)
            keys[i].time = keys[i - 1].time + 0.25f * static_cast<float>(generator() % 4);
        for (double time = -1; time < keys.back().time + 1; time += 0.0625) {
            int last = 0;
            for (std::size_t i = 0; i < count; ++i)
                if (keys[i].time <= time) last = static_cast<int>(i);
            EXPECT_EQ(FindSegment(keys, time), last) << count << " keys, at " << time;
        }
    }
}

}   // namespace
}   // namespace sparkrig
