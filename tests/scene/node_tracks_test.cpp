// Chains of keys, their tables, their evaluation beside a slow and obvious one, and their bytes in a file.
#include "scene/node_tracks.h"

#include <cstring>
#include <random>

#include "base/file.h"
#include "tests/scene/near.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

// ---- The obvious way

const KRN_KeyBase<KRN_PosKeyData>* Scan(const KeyTrack<KRN_PosKeyData>& track, double t) {
    const KRN_KeyBase<KRN_PosKeyData>* active = track.Head();
    for (const auto* key = track.Head(); key; key = key->next.get()) {
        if (key->time <= t) active = key;
    }
    return active;
}

D3DXVECTOR3 Mix(const D3DXVECTOR3& a, const D3DXVECTOR3& b, float u) { return a * (1 - u) + b * u; }

/// The cubic by de Casteljau: its inner control points lie a third of a tangent from its ends.
D3DXVECTOR3 Cubic(const KRN_PosKeyData& from, const KRN_PosKeyData& to, float u) {
    const D3DXVECTOR3 p[4] = {from.value, from.value + from.out_tangent * (1.0f / 3),
                              to.value + to.in_tangent * (1.0f / 3), to.value};
    const D3DXVECTOR3 a = Mix(p[0], p[1], u), b = Mix(p[1], p[2], u), c = Mix(p[2], p[3], u);
    return Mix(Mix(a, b, u), Mix(b, c, u), u);
}

D3DXVECTOR3 SlowValue(const KeyTrack<KRN_PosKeyData>& track, double t, const TrackEnd& end) {
    const auto* from = Scan(track, t);
    const auto* to = from->next ? from->next.get() : track.Head();
    const bool held = t < from->time || (!from->next && !end.loops);
    if (held) return from->data.value;
    const double until = from->next ? to->time : end.length;
    const auto u = static_cast<float>((t - from->time) / (until - from->time));
    return from->interpolation == KeyInterpolation::Bezier ? Cubic(from->data, to->data, u)
                                                           : Mix(from->data.value, to->data.value, u);
}

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

template <class Data>
std::vector<double> TimesAtAndBetween(const KeyTrack<Data>& track, float end) {
    std::vector<double> times;
    for (const float time : Times(track)) {
        for (const double step : {-0.3, -0.05, 0.0, 0.17}) times.push_back(time + step);
    }
    times.push_back(end - 0.25);
    return times;
}

KRN_PosKeyData RandomVectorData(std::mt19937& generator) {
    std::uniform_real_distribution<float> value(-5, 5);
    const auto vector = [&] { return D3DXVECTOR3(value(generator), value(generator), value(generator)); };
    return {.value = vector(), .in_tangent = vector(), .out_tangent = vector()};
}

TEST(PositionTrack, FollowsTheSlowWay) {
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> pause(0.1f, 0.9f);
    KeyTrack<KRN_PosKeyData> track;
    float time = 0.5f;
    for (int i = 0; i < 40; ++i, time += pause(generator)) {
        const auto kind = static_cast<KeyInterpolation>(i % 3 == 0 ? 0 : 1);
        track.Add(time, kind, RandomVectorData(generator));
    }
    ASSERT_TRUE(track.RebuildLookup());
    const float length = time + 2;
    for (const bool loops : {false, true}) {
        for (const double t : TimesAtAndBetween(track, length)) {
            ExpectNear(EvaluateTrack(track, t, {loops, length}), SlowValue(track, t, {loops, length}));
        }
    }
}

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

}   // namespace
}   // namespace sparkrig
