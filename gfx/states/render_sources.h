// Where a texture stage takes its colour from.
#pragma once
#include "gfx/states/modes.h"
#include "gfx/states/texture_factor.h"

namespace sparkrig {

class RenderSources {
  public:
    RenderSources(StateSender& sender, TextureFactor& factor) : sender_(sender), factor_(factor) {}

    /// -1 counts as kSourceTextureDiffuse; the texture factor of kSourceFactor becomes `colour`. Another source, or a
    /// stage outside 0 to 7, is an error.
    int Set(int source, int stage, D3DCOLOR colour);
    int Source(int stage) const { return sources_[stage]; }
    /// After a reset: stage 0 again; the later ones are set up with the textures bound to them.
    void Reapply() { Set(sources_[0], 0, factor_.Colour()); }

  private:
    StateSender& sender_;
    TextureFactor& factor_;
    int sources_[kTextureStages] = {1, 1, 1, 1, 1, 1, 1, 1};
};

}   // namespace sparkrig
