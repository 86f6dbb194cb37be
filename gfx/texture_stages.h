// Binds textures to the device's stages and sets the stages up for the kinds of their layers.
#pragma once
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

class KRN_Gfx;
class KRN_Texture;

class TextureStages {
  public:
    /// `gfx` reports and sends the states.
    explicit TextureStages(KRN_Gfx& gfx) : gfx_(gfx) {}

    /// Null, or a texture without a picture, unbinds: every stage in use for stage -1, else that stage. Otherwise layer
    /// n of the texture goes to stage n; with a stage number the current layer goes there.
    void SetTexture(KRN_Texture* texture, int stage);

    /// Stages that SetTexture sets and clears, 1 to 8.
    void SetStagesInUse(int count);
    int StagesInUse() const { return stages_in_use_; }

    /// After a reset: the device has nothing bound.
    void Forget();

  private:
    KRN_Gfx& gfx_;
    int stages_in_use_ = 2;
    const void* bound_[kTextureStages] = {};   // compared, never used
};

}   // namespace sparkrig
