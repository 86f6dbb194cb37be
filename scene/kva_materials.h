#pragma once
#include <memory>
#include <vector>

#include "scene/kva_text.h"
#include "scene/material_info.h"

namespace sparkrig {

/// Reads the materials of a MATERIAL_LIST block behind those there are. False when the file ends inside it.
/// `version`: major x 256 + minor.
bool ReadMaterialList(KvaText& text, int version, std::vector<std::unique_ptr<KRN_MaterialInfo>>& materials);

/// Reads one map block (MAP_DIFFUSE, SCENE_ENVMAP, ...). Its addressing flags belong to the whole material.
bool ReadMap(KvaText& text, TextureAddressing& addressing, MapInfo& map);

}   // namespace sparkrig
