#include "scene/load_scene.h"

#include <cerrno>
#include <cstring>

#include "base/file.h"
#include "base/file_validator.h"
#include "base/report_listener.h"
#include "scene/binary_scene.h"
#include "scene/kva_loader.h"

namespace sparkrig {

namespace {

/// Where the file's own name begins.
std::size_t NameStart(const std::string& path) {
    const std::size_t last = path.find_last_of("/\\");
    return last == std::string::npos ? 0 : last + 1;
}

}   // namespace

void LoadScene(KRN_3dScene& scene, const char* file_name, int flags, const MapFiles& files) {
    CFileValidator().CheckPath(file_name);
    scene.Clear();
    File file;
    if (!file.Open(file_name, true, true, false)) file.Error("Can not open file %s", file_name);
    const SourceFileScope place(file_name);
    std::uint8_t start[4];
    file.Read(start, sizeof start);
    const SceneLoadFlags load_flags = SceneLoadFlags::FromWord(flags);
    const std::string path = file_name;
    scene.SetNodeName(file_name);
    if (IsBinaryScene(start)) {
        ReadBinaryScene({file, start[3], path, path.substr(0, NameStart(path)), load_flags}, scene);
    } else {
        scene.header.name = path.substr(NameStart(path)).c_str();
        KVALoader(load_flags, files).Load(scene, file_name);
    }
    scene.file_size = file.GetSize();
    scene.SetNodeName(file_name);
}

}   // namespace sparkrig
