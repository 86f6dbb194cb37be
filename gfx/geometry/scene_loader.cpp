#include "gfx/geometry/scene_loader.h"

#include "gfx/geometry/device_mesh.h"
#include "scene/load_scene.h"

namespace sparkrig {

namespace {

std::string FolderOf(const std::string& file) { return file.substr(0, file.find_last_of("/\\") + 1); }

/// Finds maps as textures are found, and then beside the scene.
class TextureFiles final : public MapFiles {
  public:
    TextureFiles(const TexturePaths& paths, const std::string& folder) : MapFiles(folder), paths_(paths) {}
    std::string Find(const char* name) const override {
        std::string found;
        return paths_.Find(name, found) ? found : MapFiles::Find(name);
    }

  private:
    const TexturePaths& paths_;
};

}   // namespace

void SceneLoader::Load(KRN_3dScene& scene, const char* file, int flags) {
    LoadScene(scene, file, flags, TextureFiles(textures_.Paths(), FolderOf(file)));
    for (KRN_Mesh& mesh : scene.meshes)
        if (mesh.Geometry() && mesh.Geometry()->FaceCount() > 0) MakeDeviceMesh(graphics_, mesh);
}

}   // namespace sparkrig
