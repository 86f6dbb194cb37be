#pragma once
#include <string>

#include "scene/scene.h"

namespace sparkrig {

struct DumpOptions {
    std::string file;   // as given
    float time = 0;     // that the scene has been set to
    bool geometry = false;
};

/// The scene as one JSON object (docs/scene-dump.md). The same scene gives the same bytes.
std::string DumpScene(const KRN_3dScene& scene, const DumpOptions& options);

}   // namespace sparkrig
