#include "gfx/geometry/scene_loader.h"

#include <map>

#include "gfx/geometry/device_maps.h"
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

/// Null when there is no such effect.
std::shared_ptr<DeviceEffect> FindEffect(ShaderEffectLoader& loader, const char* name) {
    ShaderSearchList candidates;
    candidates.SetBaseName(name);
    candidates.SetShaderDirectory("shader");
    for (const std::string& file : candidates.Files()) {
        if (!loader.CanLoad(file.c_str())) continue;
        auto made = std::make_shared<DeviceEffect>();
        loader.Load(made->effect, file.c_str(), false, 0, true);
        made->effect.SetReapplyDefaults(true);
        return made;
    }
    return nullptr;
}

}   // namespace

void SceneLoader::Load(KRN_3dScene& scene, const char* file, int flags) {
    LoadScene(scene, file, flags, TextureFiles(textures_.Paths(), FolderOf(file)));
    if (graphics_.Caps().VertexShaderVersion > 0) FindEffects(scene, file);
    for (KRN_Mesh& mesh : scene.meshes) {
        if (mesh.Geometry() && mesh.Geometry()->FaceCount() > 0) MakeDeviceMesh(graphics_, mesh);
        for (int group = 0; group < mesh.MaterialCount(); ++group) MakeDeviceMaps(textures_, mesh.Textures(group));
    }
}

/// Materials that name the same effect share it.
void SceneLoader::FindEffects(KRN_3dScene& scene, const char* file) {
    std::map<std::string, std::shared_ptr<DeviceEffect>> found;
    for (KRN_Mesh& mesh : scene.meshes) {
        for (int group = 0; group < mesh.MaterialCount(); ++group) {
            ShaderSettings& shader = mesh.Material(group).shader;
            if (shader.effect.GetLength() == 0) continue;
            const auto [place, is_new] = found.try_emplace(shader.effect.c_str());
            if (is_new) place->second = FindEffect(effects_, shader.effect.c_str());
            shader.device = place->second;
            if (is_new && !place->second)
                graphics_.Reporter().Warning("DirectX shader effect '%s' not found (for scene '%s')",
                                             shader.effect.c_str(), file);
        }
    }
}

}   // namespace sparkrig
