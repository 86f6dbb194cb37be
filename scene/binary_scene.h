// The binary scene file: "3SC", a version byte, the header, the scene's record.
#pragma once
#include <string>

#include "scene/scene.h"
#include "scene/scene_load_flags.h"

namespace sparkrig {

/// Whether these first bytes of a file are those of a binary scene.
bool IsBinaryScene(const std::uint8_t (&start)[4]);

struct BinarySceneSource {
    File& file;   // behind the first four bytes
    int version;
    std::string name, directory;   // of the file
    SceneLoadFlags flags;
};

/// Fills an empty scene: read, sorted, linked, its clones resolved, placed at its first frame.
void ReadBinaryScene(const BinarySceneSource& source, KRN_3dScene& scene);

/// The whole file, in the newest version.
void WriteBinaryScene(const KRN_3dScene& scene, File& file);
/// The same to a file of this name, which is made or replaced at once, when all is written.
void SaveBinaryScene(const KRN_3dScene& scene, const char* name);

}   // namespace sparkrig
