// How a texture stage mixes its texture into the picture, by the kind of the layer and the stage.
#pragma once
#include "gfx/textures/texture.h"

namespace sparkrig {

struct StageRecipe {
    DWORD operation;              // D3DTOP
    DWORD argument1, argument2;   // D3DTA
    bool operator==(const StageRecipe&) const = default;
};

/// Whether a layer of this kind may stand at the stage, over a layer of kind `first` at stage 0. Null, or the text of
/// the error.
const char* WhyNotAtStage(MapKind kind, int stage, MapKind first);

/// The recipe of a layer that may stand there. A diffuse layer at stage 0 follows the render source (1 to 3).
StageRecipe RecipeOf(MapKind kind, int stage, int render_source);

/// Of a stage above 0 that has no layer.
inline constexpr StageRecipe kNoLayerRecipe = {D3DTOP_DISABLE, D3DTA_TEXTURE, D3DTA_CURRENT};

}   // namespace sparkrig
