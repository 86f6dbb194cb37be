#include "scene/mesh_geometry.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace sparkrig {

namespace {

/// Places in the order of their keys, equal ones in the order they have: a counting sort, since groups are few.
std::vector<std::uint32_t> StableOrder(const std::vector<std::uint32_t>& keys) {
    const std::uint32_t largest = keys.empty() ? 0 : *std::ranges::max_element(keys);
    std::vector<std::uint32_t> next(static_cast<std::size_t>(largest) + 2);
    for (const std::uint32_t key : keys) ++next[key + 1];
    for (std::size_t i = 1; i < next.size(); ++i) next[i] += next[i - 1];
    std::vector<std::uint32_t> order(keys.size());
    for (std::uint32_t i = 0; i < keys.size(); ++i) order[next[keys[i]]++] = i;
    return order;
}

void SortFaces(MeshGeometry& geometry) {
    const auto order = StableOrder({geometry.groups.begin(), geometry.groups.end()});
    const auto indices = geometry.indices, groups = geometry.groups;
    for (std::size_t face = 0; face < order.size(); ++face) {
        geometry.groups[face] = groups[order[face]];
        std::copy_n(&indices[3 * std::size_t{order[face]}], 3, &geometry.indices[3 * face]);
    }
}

/// By number: whether a face uses the vertex.
std::vector<std::uint8_t> FindUsedVertices(const MeshGeometry& geometry) {
    std::vector<std::uint8_t> used(std::size_t{std::numeric_limits<std::uint16_t>::max()} + 1);
    for (const std::uint16_t index : geometry.indices) used[index] = 1;
    return used;
}

void SortVertices(MeshGeometry& geometry) {
    std::vector<std::uint32_t> lowest(geometry.VertexCount(), std::numeric_limits<std::uint16_t>::max() + 1u);
    for (std::size_t i = 0; i < geometry.indices.size(); ++i) {
        std::uint32_t& group = lowest[geometry.indices[i]];
        group = std::min<std::uint32_t>(group, geometry.groups[i / 3]);
    }
    if (std::ranges::is_sorted(lowest)) return;
    const std::vector<std::uint32_t> order = StableOrder(lowest);
    std::vector<std::uint16_t> new_place(order.size());
    const ByteBuffer old = geometry.vertices;
    for (std::uint32_t i = 0; i < order.size(); ++i) {
        new_place[order[i]] = static_cast<std::uint16_t>(i);
        std::memcpy(geometry.Vertex(i), old.data() + std::size_t{order[i]} * geometry.Stride(), geometry.Stride());
    }
    for (std::uint16_t& index : geometry.indices) index = new_place[index];
}

void MakeRanges(MeshGeometry& geometry) {
    const auto& groups = geometry.groups;
    geometry.ranges.clear();
    for (std::uint32_t first = 0, end = 0; first < groups.size(); first = end) {
        const bool last = groups[first] == groups.back();
        end = last ? static_cast<std::uint32_t>(groups.size()) : end;
        while (!last && groups[end] == groups[first]) ++end;
        std::uint32_t low = 0xFFFF, high = 0;
        for (std::size_t i = 3 * std::size_t{first}; i < 3 * std::size_t{end}; ++i) {
            low = std::min<std::uint32_t>(low, geometry.indices[i]);
            high = std::max<std::uint32_t>(high, geometry.indices[i]);
        }
        geometry.ranges.push_back({groups[first], first, end - first, low, high - low + 1u});
    }
}

}   // namespace

MeshGeometry::MeshGeometry(DWORD format, std::uint32_t vertex_count, std::uint32_t face_count)
    : layout(ComputeVertexLayout(format)),
      vertices(static_cast<std::size_t>(vertex_count) * static_cast<std::size_t>(layout.stride)),
      indices(3 * static_cast<std::size_t>(face_count)),
      groups(face_count),
      vertex_count_(vertex_count) {}

bool MeshGeometry::SortByGroup() {
    const std::vector<std::uint8_t> used = FindUsedVertices(*this);
    if (std::memchr(used.data() + vertex_count_, 1, used.size() - vertex_count_)) return false;
    if (!std::ranges::is_sorted(groups)) SortFaces(*this);
    const bool all_in_one_group = !groups.empty() && groups.front() == groups.back();
    if (!all_in_one_group || std::memchr(used.data(), 0, vertex_count_)) SortVertices(*this);
    MakeRanges(*this);
    return true;
}

}   // namespace sparkrig
