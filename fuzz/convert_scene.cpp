// Any bytes as a scene that is converted: what was written and read again prints the same, and is the same bytes when
// it is written once more.
#include "fuzz/scene_input.h"
#include "scene/binary_scene.h"

namespace sparkrig {

std::string Save(const KRN_3dScene& scene) {
    SaveBinaryScene(scene, PathOf("output").c_str());
    return Get("output");
}

/// What was written must load.
void ConvertAndCompare(KRN_3dScene& scene) noexcept {
    scene.SetSceneTime(scene.header.StartTime(), true);
    const std::string first = Save(scene);
    scene.SetSceneTime(7.5, true);
    KRN_3dScene again;
    LoadScene(again, PathOf("output").c_str());
    Require(Save(again) == first);
    again.SetSceneTime(7.5, true);
    again.header.binary = scene.header.binary;
    again.header.version = scene.header.version;
    Require(DumpScene(again, {"input", 7.5f, false}) == DumpScene(scene, {"input", 7.5f, false}));
}

void Try(Input input) { ConvertAndCompare(LoadAndPrint(input)); }

}   // namespace sparkrig
