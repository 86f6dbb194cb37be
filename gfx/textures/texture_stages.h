// Binds textures to the device's stages and sets the stages up for the kinds of their layers.
#pragma once
#include "gfx/states/gfx_states.h"
#include "gfx/textures/stage_recipes.h"
#include "gfx/textures/texture.h"
#include "gfx/textures/video_sources.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

class TextureStages final : public TextureBinder {
  public:
    TextureStages(GfxStates& states, VideoSources& videos) : states_(states), videos_(videos) {}

    /// Null, or a texture without a picture, unbinds: every stage in use for stage -1, else that stage. Otherwise layer
    /// n of the texture goes to stage n of the stages in use; a stage above 0 alone gets its layer, or the texture in
    /// use when it has none.
    void SetTexture(KRN_Texture* texture, int stage) override;

    /// Stages that SetTexture sets and clears, 1 to 8.
    void SetStagesInUse(int count);
    int StagesInUse() const { return stages_in_use_; }

    /// What is bound to a stage, as the program bound it.
    struct Map {
        IDirect3DTexture9* texture = nullptr;   // borrowed; null for none
        MapKind kind = MapKind::None;
        D3DXMATRIX matrix = kIdentityMatrix;
    };
    /// The first map of a kind.
    Map MapOf(MapKind kind) const;
    /// The diffuse map: without one of that kind, a texture without kinds.
    Map DiffuseMap() const;
    /// Of either kind of reflection.
    Map ReflectionMap() const;

    /// After a reset: the device has nothing bound.
    void Forget();

  private:
    void Unbind(int stage);
    void SetLayers(const KRN_Texture& texture);
    void SetLayer(const KRN_Texture& texture, int layer, int stage);
    void Bind(int stage, const Map& map);
    void BindNothing(int stage);
    void SendColour(int stage, StageRecipe recipe);
    /// As it stands: its arguments are those that the device takes.
    void SendRecipe(int stage, const StageRecipe& recipe);
    void SendAlpha(int stage, DWORD operation, DWORD argument);
    void SendMatrix(int stage, const D3DXMATRIX& matrix);
    void SendBumpMatrix(int stage, float amount);
    /// The argument by which the diffuse colour is taken now: itself, or the texture factor that stands in for it.
    DWORD DiffuseArgument();

    GfxStates& states_;
    VideoSources& videos_;   // textures that show one are refreshed
    int stages_in_use_ = 2;
    Map bound_[kTextureStages];   // what the device holds is not freed meanwhile
};

}   // namespace sparkrig
