// A node's tracks: chains of keys in the order of their times, searched through tables, evaluated at a time.
//
//     KeyTrack<KRN_PosKeyData> track;
//     track.Add(1.5f, KeyInterpolation::Linear, {.value = {2, 3, 4}});   // as often as wanted
//     track.RebuildLookup();
//     EvaluateTrack(track, 1.75, {.loops = false});
#pragma once
#include <vector>

#include "scene/node_key.h"

namespace sparkrig {

template <class Data>
class KeyTrack {
  public:
    using Key = KRN_KeyBase<Data>;

    KeyTrack() = default;
    KeyTrack(const KeyTrack&) = delete;
    KeyTrack& operator=(const KeyTrack&) = delete;

    bool IsEmpty() const { return !head_; }
    /// As counted by Add, or as said to Read.
    std::uint32_t Count() const { return count_; }
    // Null when empty.
    Key* Head() { return head_.get(); }
    const Key* Head() const { return head_.get(); }
    const Key* Tail() const { return tail_; }

    /// Puts a key before the first one that is later: of equal times the one added last comes last.
    Key& Add(float time, KeyInterpolation interpolation, const Data& data);
    void Clear();
    /// The same keys in the same order; without a lookup table.
    void CopyFrom(const KeyTrack& source);
    /// A chain of keys, none for a count of 0, in the order of the file. The count is believed until RebuildLookup.
    void Read(File& file, std::uint32_t count);
    /// The number of keys written.
    std::uint32_t Write(File& file) const;

    /// To be called when the keys or their times have changed: evaluation sees the first key alone without a table.
    /// False when there are not as many keys as Count says.
    bool RebuildLookup();
    /// Whether the times of the table do not fall, and are numbers.
    bool IsAscending() const { return ascending_ || lookup_.empty(); }
    /// The last key whose time is not above t, or the first key. Of a track with keys; O(log n). `hint`, if given, is
    /// the caller's memory of the place found last: time mostly runs on.
    const Key& FindActive(double t, std::size_t* hint = nullptr) const;

  private:
    struct Lookup {
        const Key* key;
        float time;
    };
    std::unique_ptr<Key> head_;
    Key* tail_ = nullptr;
    std::uint32_t count_ = 0;
    std::vector<Lookup> lookup_;
    bool ascending_ = false;   // the times of the table
};

/// How a track goes on behind its last key: it stays, or it goes back to the first key until the animation's length.
struct TrackEnd {
    bool loops = false;
    float length = 0;   // seconds; of a loop
};

// Of tracks with keys, at t seconds. Pure, whatever the hint of FindActive is. Before the first key they give its
// value.
D3DXVECTOR3 EvaluateTrack(const KeyTrack<KRN_PosKeyData>& track, double t, const TrackEnd& end,
                          std::size_t* hint = nullptr);
D3DXVECTOR3 EvaluateTrack(const KeyTrack<KRN_ScaleKeyData>& track, double t, const TrackEnd& end,
                          std::size_t* hint = nullptr);
D3DXQUATERNION EvaluateTrack(const KeyTrack<KRN_RotKeyData>& track, double t, const TrackEnd& end,
                             std::size_t* hint = nullptr);

/// u, 0 to 1, slowed down along the first `out` and the last `in` of the way. Both count less when together above 1.
float EaseInterval(float u, float out, float in);

/// All that moves a node.
struct NodeTracks {
    KeyTrack<KRN_PosKeyData> position;
    KeyTrack<KRN_RotKeyData> rotation;
    KeyTrack<KRN_ScaleKeyData> scale;

    bool AreEmpty() const { return position.IsEmpty() && rotation.IsEmpty() && scale.IsEmpty(); }
};

extern template class KeyTrack<KRN_PosKeyData>;
extern template class KeyTrack<KRN_RotKeyData>;
extern template class KeyTrack<KRN_ScaleKeyData>;

}   // namespace sparkrig
