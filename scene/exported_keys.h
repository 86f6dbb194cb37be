// From keys as they are exported to keys that can be evaluated: rotations add up, tangents are measured by intervals,
// ticks become seconds. Text scenes need it; keys of binary ones are finished.
//
//     ExportedRotations rotations(node.Tracks().rotation);
//     rotations.Add(time, interpolation, data);   // each key of the block, and the other tracks' keys likewise
//     FinishExportedKeys(node, times);            // when all are there
#pragma once
#include "scene/object_3d.h"

namespace sparkrig {

/// What a scene's head says about time.
struct TickTimes {
    float first_frame = 0;
    float ticks_per_frame = 160;
    float frames_per_second = 30;

    /// 0 in a scene without speed.
    float Seconds(float ticks) const;
};

/// Adds the rotations of one exported block to a track. Each is the turn since the one before.
class ExportedRotations {
  public:
    explicit ExportedRotations(KeyTrack<KRN_RotKeyData>& track) : track_(track) {}

    /// time in ticks; of `data` the axis and angle as the file has them and, for Tcb, the five parameters. A step of
    /// half a turn and more is split, since interpolation goes the short way. False for a key that is earlier than the
    /// one before it: it is skipped.
    bool Add(float time, KeyInterpolation interpolation, KRN_RotKeyData data);

  private:
    void AddStep(float time, KeyInterpolation interpolation, const KRN_RotKeyData& step);

    KeyTrack<KRN_RotKeyData>& track_;
    float last_accepted_time_ = -89999998976.0f;
};

/// time in ticks. Scale factors lose their signs.
void AddExportedScale(KeyTrack<KRN_ScaleKeyData>& track, float time, KeyInterpolation interpolation,
                      KRN_ScaleKeyData data);

/// Once, when all keys of the node are there: scales tangents, converts times, makes the control points of rotations
/// and the lookup tables.
void FinishExportedKeys(KRN_3dObject& node, const TickTimes& times);

}   // namespace sparkrig
