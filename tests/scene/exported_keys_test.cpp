// What exported keys become.
#include "scene/exported_keys.h"

#include "tests/scene/near.h"

namespace sparkrig {
namespace {

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

struct Node : KRN_3dObject {
    ~Node() = default;
};

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

}   // namespace
}   // namespace sparkrig
