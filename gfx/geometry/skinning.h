// The bones of a mesh as they stand now, and where they take its vertices. The device places vertices by itself; the
// processor does it where something is to be computed from them.
#pragma once
#include <span>
#include <vector>

#include "scene/mesh.h"

namespace sparkrig {

/// Whether bones move the mesh: a single one stands for the mesh itself.
bool IsSkinned(const KRN_MeshBase& mesh);

/// Where the mesh's own transform takes it: its pivot, then its node.
D3DXMATRIX LocalMatrix(const KRN_MeshBase& mesh);

/// The matrix of each bone, in the mesh's order: from where the vertex was when it was bound to where the bone has it
/// now, then `world`. A bone that is missing moves with the mesh.
void MakePalette(const KRN_MeshBase& mesh, const D3DXMATRIX& world, std::vector<D3DXMATRIX>& palette);

struct PlacedVertex {
    D3DXVECTOR3 position, normal;   // the normal is not of unit length
};

/// Vertices from `first` on, as many as `placed` has room for, as linear blend skinning places them: each the sum of
/// what its bones make of it, by their weights. A single matrix moves all of them.
void PlaceVertices(const MeshGeometry& geometry, std::uint32_t first, std::span<const D3DXMATRIX> palette,
                   std::span<PlacedVertex> placed);

}   // namespace sparkrig
