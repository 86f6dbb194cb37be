// A material as states of the device: colours, blending, maps and how they go on beyond their edges.
#pragma once
#include "gfx/geometry/device_maps.h"
#include "gfx/states/gfx_states.h"
#include "gfx/textures/texture_stages.h"
#include "scene/mesh.h"

namespace sparkrig {

class MaterialStates {
  public:
    MaterialStates(GfxStates& states, TextureStages& textures, TextureLoader& loader)
        : states_(states), textures_(textures), loader_(loader) {}

    /// What the program has set and Set changes; End puts it back.
    void Begin();
    void End();

    /// What stands in for the materials' own colours.
    struct Colours {
        const D3DMATERIAL9* material = nullptr;   // null for none
        const D3DCOLOR* colour = nullptr;         // over either; null for none
        bool emitted = false;                     // that colour is all that is seen, whatever the lights
        bool shaded = false;                      // by a shader effect, which finds it as the diffuse colour too
    };
    /// Colours, blending and maps of a group. With `every_stage` each map goes to its stage, however many are in use.
    void Set(KRN_MeshBase& mesh, int group, const Colours& colours, bool every_stage);
    /// Colours without maps.
    void SetPlain(const D3DMATERIAL9& own, const Colours& colours);

  private:
    void SetBlending(const MeshMaterial& material);
    void SetMaps(DeviceMaps& maps, bool every_stage);
    void SetCoordinates(const KRN_MeshBase& mesh, const DeviceMaps& maps);
    void SetAddressing(const TextureAddressing& addressing, const DeviceMaps& maps);

    GfxStates& states_;
    TextureStages& textures_;
    TextureLoader& loader_;
    BlendingState::Setting blending_;   // at Begin
    DWORD address_u_[KRN_Texture::kLayers] = {}, address_v_[KRN_Texture::kLayers] = {};
    int stages_changed_ = 0;   // since Begin
};

}   // namespace sparkrig
