#pragma once
#include "scene/kva_text.h"
#include "scene/mesh.h"
#include "scene/raw_mesh.h"

namespace sparkrig {

/// Reads a MESH block: geometry into `raw`, bones, box and what is known of the skin into the mesh. False when the file
/// ends first. `version`: major x 256 + minor.
bool ReadMesh(KvaText& text, int version, KRN_Mesh& mesh, RawMesh& raw);

}   // namespace sparkrig
