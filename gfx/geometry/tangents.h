// The tangent frame of a mesh's vertices: what a normal map's colours are measured in.
#pragma once
#include <vector>

#include "platform/d3dx/d3dx_math.h"
#include "scene/mesh_geometry.h"

namespace sparkrig {

/// One a vertex: the direction in which the first texture coordinate's u grows, at right angles to the normal and of
/// unit length (Lengyel's method: the sums of the faces' directions, by Gram and Schmidt); w is 1 or -1, the side of
/// the binormal, normal x tangent x w, along which v grows. Where the map has no direction: any one beside the normal.
/// Of geometry with normals and texture coordinates.
std::vector<D3DXVECTOR4> ComputeTangents(const MeshGeometry& geometry);

}   // namespace sparkrig
