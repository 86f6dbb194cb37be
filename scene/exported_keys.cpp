#include "scene/exported_keys.h"

#include <algorithm>
#include <cmath>

#include "base/numeric.h"
#include "scene/slerp.h"

namespace sparkrig {
namespace {

// As exported scenes were tuned to, not the exact values.
constexpr float kHalfTurn = 3.141592f, kFullTurn = 6.283184f;

// A step of more counts as this many; a file may say any angle, and each half turn is a key.
constexpr int kMostHalfTurns = 4096;

float Dot(const D3DXQUATERNION& a, const D3DXQUATERNION& b) { return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w; }

int PiecesOf(float angle) { return 1 + std::min(TruncateToInt(std::abs(angle) / kHalfTurn), kMostHalfTurns - 1); }

/// What the pieces of a step have but the last one.
KRN_RotKeyData Piece(const KRN_RotKeyData& step) {
    KRN_RotKeyData piece;
    piece.axis = step.axis;
    piece.angle = step.angle;
    return piece;
}

/// Of the leading Bezier keys, by the intervals to their neighbours, in ticks.
template <class Data>
void ScaleTangents(KeyTrack<Data>& track) {
    for (auto* key = track.Head(); key && key->interpolation == KeyInterpolation::Bezier; key = key->next.get()) {
        if (key->previous) key->data.in_tangent *= key->time - key->previous->time;
        if (key->next) key->data.out_tangent *= key->next->time - key->time;
    }
}

template <class Data>
void ConvertTimes(KeyTrack<Data>& track, const TickTimes& times) {
    for (auto* key = track.Head(); key; key = key->next.get()) key->time = times.Seconds(key->time);
}

void MakeControls(KRN_KeyBase<KRN_RotKeyData>& key) {
    const auto *previous = key.previous, *next = key.next.get();
    KRN_RotKeyData& data = key.data;
    const D3DXQUATERNION& q = data.rotation;
    data.in_control = data.out_control = q;
    if (previous && next) {
        const D3DXQUATERNION beyond_previous = Slerp(q, previous->data.rotation, -1.0f / 3);
        const D3DXQUATERNION towards_next = Slerp(q, next->data.rotation, 1.0f / 3);
        const D3DXQUATERNION middle = Slerp(beyond_previous, towards_next, 0.5f);
        const float reach = 1.0f - 0.8f * data.tension;
        data.in_control = Slerp(q, middle, -reach);
        data.out_control = Slerp(q, middle, reach);
    } else if (previous) {
        data.in_control = Slerp(previous->data.rotation, q, (0.63f * data.tension + 1) * 0.5f);
    } else if (next) {
        data.out_control = Slerp(q, next->data.rotation, (1 - 0.63f * data.tension) * 0.5f);
    }
}

}   // namespace

float TickTimes::Seconds(float ticks) const {
    const float ticks_per_second = ticks_per_frame * frames_per_second;
    return ticks_per_second != 0 ? (ticks - first_frame * ticks_per_frame) / ticks_per_second : 0;
}

bool ExportedRotations::Add(float time, KeyInterpolation interpolation, KRN_RotKeyData data) {
    if (time < last_accepted_time_) return false;
    last_accepted_time_ = time;
    data.axis = -data.axis;
    if (interpolation == KeyInterpolation::Linear && data.angle > kHalfTurn && data.angle < kFullTurn) {
        data.angle -= kFullTurn;
    }
    if (track_.IsEmpty()) {
        AddStep(time, interpolation, data);
        return true;
    }
    const int pieces = PiecesOf(data.angle);
    const float start = track_.Tail()->time;
    const float interval = (time - start) / static_cast<float>(pieces);
    data.angle /= static_cast<float>(pieces);
    for (int i = 1; i < pieces; ++i) AddStep(start + static_cast<float>(i) * interval, interpolation, Piece(data));
    AddStep(time, interpolation, data);
    return true;
}

void ExportedRotations::AddStep(float time, KeyInterpolation interpolation, const KRN_RotKeyData& step) {
    KRN_KeyBase<KRN_RotKeyData>& key = track_.Add(time, interpolation, step);
    D3DXQUATERNION& rotation = key.data.rotation;
    D3DXQuaternionRotationAxis(&rotation, &step.axis, step.angle);
    if (!key.previous) return;
    const D3DXQUATERNION& before = key.previous->data.rotation;
    if (Dot(rotation, before) < 0) rotation = {-rotation.x, -rotation.y, -rotation.z, -rotation.w};
    D3DXQuaternionMultiply(&rotation, &before, &rotation);
}

void AddExportedScale(KeyTrack<KRN_ScaleKeyData>& track, float time, KeyInterpolation interpolation,
                      KRN_ScaleKeyData data) {
    data.value = {std::abs(data.value.x), std::abs(data.value.y), std::abs(data.value.z)};
    track.Add(time, interpolation, data);
}

void FinishExportedKeys(KRN_3dObject& node, const TickTimes& times) {
    NodeTracks& tracks = node.Tracks();
    ScaleTangents(tracks.position);
    ScaleTangents(tracks.scale);
    ConvertTimes(tracks.position, times);
    ConvertTimes(tracks.scale, times);
    ConvertTimes(tracks.rotation, times);
    for (auto* key = tracks.rotation.Head(); key; key = key->next.get()) {
        if (key->interpolation == KeyInterpolation::Tcb) MakeControls(*key);
    }
    node.RebuildLookupTables();
}

}   // namespace sparkrig
