#include "scene/load_scene.h"

#include <cerrno>
#include <cstring>

#include "base/file.h"
#include "base/file_validator.h"
#include "scene/binary_scene.h"
#include "scene/kva_loader.h"

namespace sparkrig {

namespace {

std::string DirectoryOf(const char* file_name) {
    const std::string name = file_name;
    const std::size_t last = name.find_last_of("/\\");
    return last == std::string::npos ? "" : name.substr(0, last + 1);
}

}   // namespace

void LoadScene(KRN_3dScene& scene, const char* file_name, int flags, const MapFiles& files) {
    CFileValidator().CheckPath(file_name);
    scene.Clear();
    File file;
    if (!file.Open(file_name, true, true, false)) file.Error("Can not open file %s", file_name);
    std::uint8_t start[4];
    file.Read(start, sizeof start);
    const SceneLoadFlags load_flags = SceneLoadFlags::FromWord(flags);
    if (IsBinaryScene(start)) {
        ReadBinaryScene({file, start[3], file_name, DirectoryOf(file_name), load_flags}, scene);
    } else {
        KVALoader(load_flags, files).Load(scene, file_name);
    }
    scene.file_size = file.GetSize();
    scene.SetNodeName(file_name);
}

}   // namespace sparkrig
