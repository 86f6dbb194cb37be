// Vertices and faces as plain data, ready to become buffers. Meshes share it: a clone draws its source's.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "base/byte_buffer.h"
#include "scene/device_resource.h"
#include "scene/vertex_layout.h"

namespace sparkrig {

/// The faces of one group and the vertices that they use.
struct GroupRange {
    std::uint32_t group = 0, first_face = 0, faces = 0, first_vertex = 0, vertices = 0;
};

struct MeshGeometry {
    static constexpr std::uint32_t kMostVertices = 65535;

    /// Zeros, in the given numbers; the vertices' bytes are the caller's to write.
    MeshGeometry(DWORD format, std::uint32_t vertex_count, std::uint32_t face_count);

    std::uint32_t VertexCount() const { return vertex_count_; }
    std::uint32_t FaceCount() const { return static_cast<std::uint32_t>(groups.size()); }
    std::uint8_t* Vertex(std::uint32_t i) { return vertices.data() + static_cast<std::size_t>(i) * Stride(); }
    const std::uint8_t* Vertex(std::uint32_t i) const {
        return vertices.data() + static_cast<std::size_t>(i) * Stride();
    }
    std::uint32_t Stride() const { return static_cast<std::uint32_t>(layout.stride); }

    /// Orders faces by group, and vertices by the lowest group that uses them, unused ones last; equals keep their
    /// order. Makes `ranges`. False when a face names a vertex that is not there: nothing is changed then.
    bool SortByGroup();

    VertexLayout layout;
    ByteBuffer vertices;                  // layout.stride bytes each
    std::vector<std::uint16_t> indices;   // three a face, counter-clockwise seen from the front
    std::vector<std::uint16_t> groups;    // one a face
    std::vector<GroupRange> ranges;       // of sorted geometry: one a group in use, ascending
    bool system_memory = false;           // where a device is to keep it
    std::unique_ptr<DeviceResource> device;

  private:
    std::uint32_t vertex_count_;
};

}   // namespace sparkrig
