// Any bytes as a scene: loaded, moved through a few times, printed, converted, loaded again. Both prints agree.
#pragma once
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>

#include "base/log.h"
#include "fuzz/input_file.h"
#include "scene/binary_scene.h"
#include "scene/load_scene.h"
#include "tools/scene/dump.h"

namespace sparkrig {

class SceneInput {
  public:
    SceneInput() { SilenceLog(); }

    /// False when the input is reported to be no scene.
    bool Load(const void* data, std::size_t size) {
        input_.Put(data, size);
        try {
            LoadScene(scene_, input_.Name());
            for (const double time : {-1.0, 0.25, 7.5}) scene_.SetSceneTime(time, true);
            DumpScene(scene_, {"input", 7.5f, true});
            return true;
        } catch (const ErrorRecord&) {
            return false;
        }
    }

    /// What was loaded, written and read again prints the same, and is the same bytes when it is written once more.
    void ConvertAndCompare() {
        scene_.SetSceneTime(scene_.header.StartTime(), true);
        const std::string first = Save(scene_);
        scene_.SetSceneTime(7.5, true);
        KRN_3dScene again;
        LoadScene(again, OutputName());
        if (Save(again) != first) std::abort();
        again.SetSceneTime(7.5, true);
        again.header.binary = scene_.header.binary;
        again.header.version = scene_.header.version;
        if (DumpScene(again, {"input", 7.5f, false}) != DumpScene(scene_, {"input", 7.5f, false})) std::abort();
    }

  private:
    static const char* OutputName() {
        static const std::string name = "/tmp/fuzz_scene_" + std::to_string(getpid());
        return name.c_str();
    }
    static std::string Save(const KRN_3dScene& scene) {
        SaveBinaryScene(scene, OutputName());
        std::ostringstream bytes;
        bytes << std::ifstream(OutputName(), std::ios::binary).rdbuf();
        return bytes.str();
    }

    InputFile input_;
    KRN_3dScene scene_;
};

}   // namespace sparkrig
