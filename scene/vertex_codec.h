// Vertices as binary scenes store them: position, texture coordinate, normal in three 16-bit numbers, weights in one
// each, bone indices. Versions below 101 store them as they lie in memory.
#pragma once
#include <cstdint>

#include "scene/mesh_geometry.h"

namespace sparkrig {

/// Bones that move one vertex of the format.
int InfluencesOf(const VertexLayout& layout);
/// Where its four bone indices stand, of a format that has them.
int BoneIndexOffset(const VertexLayout& layout);

/// How a file stores the vertices of a format.
struct StoredVertices {
    VertexLayout layout;   // as stored: the one in memory may have more
    bool compressed = true;
    bool always_texture = false;   // below version 102: a coordinate pair also for a format without any

    std::uint32_t Stride() const;
};

/// Every vertex of the geometry from stored bytes, Stride() each.
void DecodeVertices(const StoredVertices& stored, const std::uint8_t* bytes, MeshGeometry& geometry);
/// One vertex to its stored bytes.
void EncodeVertex(const MeshGeometry& geometry, std::uint32_t vertex, std::uint8_t* bytes);

}   // namespace sparkrig
