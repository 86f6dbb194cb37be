// Draws mesh effects: a scene, placed for one instance and drawn at its age.
#pragma once
#include <map>
#include <memory>
#include <string>

#include "effects/effect_instance.h"
#include "scene/scene.h"

namespace sparkrig {

class KRN_Gfx;

/// The scenes of mesh sub-effects, shared by those that name the same file and agree on its looping. Every placement
/// overwrites the one before.
class MeshEffectRenderer {
  public:
    /// Borrows the device.
    void Init(KRN_Gfx& gfx) { gfx_ = &gfx; }
    /// Loads the sub-effect's scene if it has none yet; what is wrong with the file is an error.
    void PreloadMesh(MeshEffect& sub);
    /// Whether the camera sees the scene of an instance, which is placed for that.
    bool IsVisible(const VisualEffectObject& object);
    /// Draws it at `age` seconds with the blending and depth states of the moment.
    void DrawMeshInstance(const VisualEffectObject& object, double age);

  private:
    /// Loads the scene first if need be. It stays where it is in a billboard mode that there is not.
    KRN_3dScene& PlaceMeshInstance(const VisualEffectObject& object);

    KRN_Gfx* gfx_ = nullptr;                                                      // borrowed
    std::map<std::pair<std::string, bool>, std::weak_ptr<KRN_3dScene>> scenes_;   // by file and looping; of sub-effects
};

}   // namespace sparkrig
