#pragma once
#include "scene/mesh.h"

namespace sparkrig {

class KRN_Gfx;

/// Makes the backdrop, a floor and a back wall, in its place behind the effects.
void BuildStageMesh(KRN_Gfx& gfx, KRN_Mesh& mesh);

}   // namespace sparkrig
