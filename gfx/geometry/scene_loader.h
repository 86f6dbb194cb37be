// Loads scenes with what a device needs for them.
#pragma once
#include "gfx/device/graphics_device.h"
#include "gfx/shaders/shader_effect_loader.h"
#include "gfx/textures/texture_loader.h"
#include "scene/scene.h"

namespace sparkrig {

class SceneLoader {
  public:
    SceneLoader(const GraphicsDevice& graphics, TextureLoader& textures, ShaderEffectLoader& effects)
        : graphics_(graphics), textures_(textures), effects_(effects) {}

    /// What cannot be read is an error. Flags: see SceneLoadFlags, -1 for none.
    void Load(KRN_3dScene& scene, const char* file, int flags);

  private:
    void FindEffects(KRN_3dScene& scene, const char* file);

    const GraphicsDevice& graphics_;
    TextureLoader& textures_;
    ShaderEffectLoader& effects_;
};

}   // namespace sparkrig
