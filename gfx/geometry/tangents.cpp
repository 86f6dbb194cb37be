#include "gfx/geometry/tangents.h"

#include <cmath>
#include <cstring>

namespace sparkrig {

namespace {

constexpr D3DXVECTOR3 kUp(0, 0, 1), kAside(1, 0, 0);

/// Along which u and v grow.
struct MapDirections {
    D3DXVECTOR3 u, v;
};

struct MappedVertex {
    D3DXVECTOR3 position, normal;
    D3DXVECTOR2 map;
};

MappedVertex Read(const MeshGeometry& geometry, std::uint32_t i) {
    const VertexLayout& layout = geometry.layout;
    MappedVertex vertex;
    std::memcpy(&vertex.position, geometry.Vertex(i) + layout.position, sizeof vertex.position);
    std::memcpy(&vertex.normal, geometry.Vertex(i) + layout.normal, sizeof vertex.normal);
    std::memcpy(&vertex.map, geometry.Vertex(i) + layout.texture_offset[0], sizeof vertex.map);
    return vertex;
}

/// Of a face: the solution of edge = u x (its change of u) + v x (its change of v) for two edges. None for a face that
/// has no area on the map.
MapDirections DirectionsOf(const MappedVertex& a, const MappedVertex& b, const MappedVertex& c) {
    const D3DXVECTOR3 edge1 = b.position - a.position, edge2 = c.position - a.position;
    const float u1 = b.map.x - a.map.x, u2 = c.map.x - a.map.x;
    const float v1 = b.map.y - a.map.y, v2 = c.map.y - a.map.y;
    const float area = u1 * v2 - u2 * v1;
    if (area == 0) return {};
    return {(edge1 * v2 - edge2 * v1) * (1 / area), (edge2 * u1 - edge1 * u2) * (1 / area)};
}

D3DXVECTOR4 TangentOf(const D3DXVECTOR3& normal, const MapDirections& sum) {
    D3DXVECTOR3 tangent = sum.u - normal * D3DXVec3Dot(normal, sum.u);
    const bool mapped = D3DXVec3Length(tangent) > 0;
    if (!mapped) tangent = D3DXVec3Cross(normal, std::abs(normal.z) < 0.7f ? kUp : kAside);
    D3DXVec3Normalize(&tangent, &tangent);
    const float side = D3DXVec3Dot(D3DXVec3Cross(normal, tangent), sum.v);
    return {tangent.x, tangent.y, tangent.z, side < 0 ? -1.0f : 1.0f};
}

}   // namespace

std::vector<D3DXVECTOR4> ComputeTangents(const MeshGeometry& geometry) {
    std::vector<MapDirections> sums(geometry.VertexCount());
    for (std::size_t i = 0; i + 2 < geometry.indices.size(); i += 3) {
        const std::uint16_t* face = &geometry.indices[i];
        const MapDirections directions =
            DirectionsOf(Read(geometry, face[0]), Read(geometry, face[1]), Read(geometry, face[2]));
        for (int corner = 0; corner < 3; ++corner) {
            sums[face[corner]].u += directions.u;
            sums[face[corner]].v += directions.v;
        }
    }
    std::vector<D3DXVECTOR4> tangents;
    for (std::uint32_t i = 0; i < geometry.VertexCount(); ++i)
        tangents.push_back(TangentOf(Read(geometry, i).normal, sums[i]));
    return tangents;
}

}   // namespace sparkrig
