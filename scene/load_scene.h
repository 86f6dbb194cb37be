#pragma once
#include "scene/map_files.h"
#include "scene/scene.h"
#include "scene/scene_load_flags.h"

namespace sparkrig {

/// Fills a scene from a file, text or binary, and places it at its first frame. What cannot be read is an error. Flags:
/// see SceneLoadFlags, -1 for none.
void LoadScene(KRN_3dScene& scene, const char* file_name, int flags = -1, const MapFiles& files = MapFiles());

}   // namespace sparkrig
