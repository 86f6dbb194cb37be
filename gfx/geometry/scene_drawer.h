// Draws the meshes of a scene, seen and lit as the scene says.
#pragma once
#include "gfx/geometry/mesh_drawer.h"
#include "gfx/states/gfx_states.h"
#include "scene/scene.h"

namespace sparkrig {

class SceneDrawer {
  public:
    SceneDrawer(GfxStates& states, MeshDrawer& meshes) : states_(states), meshes_(meshes) {}

    /// False for a scene that is null (a warning) or out of view.
    bool Draw(KRN_3dScene* scene);

  private:
    /// What a scene changes beside what its meshes do, as it was.
    struct Remembered {
        D3DXMATRIX view, projection;
        FogSettings fog;
        bool fog_on;
        D3DCOLOR ambient;
        bool lights_on[LightSlots::kCount];
        D3DLIGHT9 lights[LightSlots::kCount];
    };
    Remembered Remember() const;
    void Restore(const Remembered& before, const KRN_3dScene& scene);

    void LookThrough(const KRN_Camera& camera, const D3DXMATRIX& world);
    void SetFog(const RenderSettings& settings);
    void SetLights(const KRN_3dScene& scene);
    void DrawMeshes(const KRN_3dScene& scene);

    GfxStates& states_;
    MeshDrawer& meshes_;
};

}   // namespace sparkrig
