// Any bytes as the keys of a node: they are read, or reported, and then animated, written and read again. The rotations
// are also taken as exported ones.
#include <cmath>

#include "base/file.h"
#include "fuzz/target.h"
#include "scene/exported_keys.h"

namespace sparkrig {
namespace {

struct Node : KRN_3dObject {
    ~Node() = default;
};

/// Each kind of key in turn: a count, and a chain when it is not 0.
void ReadTracks(File& file, NodeTracks& tracks) {
    tracks.position.Read(file, static_cast<std::uint32_t>(file.ReadInt32()));
    tracks.rotation.Read(file, static_cast<std::uint32_t>(file.ReadInt32()));
    tracks.scale.Read(file, static_cast<std::uint32_t>(file.ReadInt32()));
}

std::string WriteTracks(const NodeTracks& tracks) {
    File file;
    Require(file.Open(Put(Input(), "output").c_str(), false, false, true));
    const auto write = [&](const auto& track) {
        file.WriteInt32(static_cast<std::int32_t>(track.Count()));
        Require(track.Write(file) == track.Count());
    };
    write(tracks.position);
    write(tracks.rotation);
    write(tracks.scale);
    file.Close();
    return Get("output");
}

void Animate(KRN_3dObject& node) {
    for (const bool loops : {false, true}) {
        node.SetLooping(loops);
        for (const double time : {-1e30, -2.5, 0.0, 0.25, 3.0, 1e30, static_cast<double>(NAN)}) {
            node.Animate(time, true, true);
        }
    }
}

void TakeAsExported(const KeyTrack<KRN_RotKeyData>& keys) {
    Node node;
    ExportedRotations rotations(node.Tracks().rotation);
    int left = 4;   // each may be thousands of keys
    for (const auto* key = keys.Head(); key && left > 0; key = key->next.get(), --left) {
        rotations.Add(key->time, key->interpolation, key->data);
    }
    FinishExportedKeys(node, {});
    Animate(node);
}

}   // namespace

void Try(Input input) {
    File file;
    Require(file.Open(Put(input).c_str(), true, true, true));
    Node node, again;
    ReadTracks(file, node.Tracks());
    node.RebuildLookupTables();
    Animate(node);
    const std::string written = WriteTracks(node.Tracks());
    Require(written.size() <= input.size());
    Require(file.Open(PathOf("output").c_str(), true, true, true));
    ReadTracks(file, again.Tracks());
    Require(WriteTracks(again.Tracks()) == written);
    TakeAsExported(node.Tracks().rotation);
}

}   // namespace sparkrig
