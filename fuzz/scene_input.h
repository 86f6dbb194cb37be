// Any bytes as a scene: loaded, moved through a few times, printed.
#pragma once
#include "fuzz/target.h"
#include "scene/load_scene.h"
#include "tools/scene/dump.h"

namespace sparkrig {

inline KRN_3dScene& LoadAndPrint(Input input) {
    static KRN_3dScene scene;   // that of the input before is cleared first
    LoadScene(scene, Put(input).c_str());
    for (const double time : {-1.0, 0.25, 7.5}) scene.SetSceneTime(time, true);
    DumpScene(scene, {"input", 7.5f, true});
    return scene;
}

}   // namespace sparkrig
