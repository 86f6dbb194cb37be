// Drawing primitives from the bound buffers.
#include <algorithm>
#include <cstring>

#include "platform/d3d9_gl/device.h"

namespace sparkrig {

/// The vertices that are drawn as points, in the buffer's bytes.
struct PointVertices {
    const std::byte* vertices;   // the first of those that there are
    std::size_t stride, vertex_bytes;
    const std::byte* indices;         // null: one vertex after the other
    DWORD index_bytes, first_index;   // the index of the first vertex
    std::size_t count;                // vertices that there are

    /// Null when an index points outside.
    const std::byte* At(std::size_t i) const {
        std::size_t vertex = i;
        if (indices != nullptr) {
            std::uint32_t index = 0;
            std::memcpy(&index, indices + i * index_bytes, index_bytes);
            vertex = index - first_index;   // one below the first wraps to far above the last
        }
        return vertex < count ? vertices + vertex * stride : nullptr;
    }
};

namespace {

constexpr std::size_t kPointsPerDraw = 16384;   // four corners each, numbered with 16 bits
constexpr std::size_t kCorners = 4, kIndicesPerPoint = 6;

constexpr GLenum kModes[] = {0, GL_POINTS, GL_LINES, GL_LINE_STRIP, GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_TRIANGLE_FAN};

}   // namespace

StreamView Device::Stream() const {
    if (!bound_.vertices) return {};
    BufferMemory& memory = bound_.vertices->Memory();
    return {true, memory.Locked(), memory.Size(), bound_.stream_offset, bound_.stream_stride};
}

IndexView Device::Indices() const {
    if (!bound_.indices) return {};
    BufferMemory& memory = bound_.indices->Memory();
    return {true, memory.Locked(), memory.Size(), bound_.indices->ElementBytes()};
}

bool Device::DrawnAsPoints(D3DPRIMITIVETYPE type) const {
    if (type == D3DPT_POINTLIST) return true;
    return type >= D3DPT_TRIANGLELIST && state_.render[D3DRS_FILLMODE] == D3DFILL_POINT;
}

const std::byte* Device::VertexBytes(std::size_t vertex) const {
    return bound_.vertices->Memory().Bytes() + bound_.stream_offset + vertex * bound_.stream_stride;
}

GLint Device::PlaceVertices(std::size_t first, std::size_t count) {
    const std::size_t stride = bound_.stream_stride;
    const std::size_t start = bound_.stream_offset + first * stride;
    const std::size_t bytes = (count - 1) * stride + state_.format.stride;
    const GlBytes place = bound_.vertices->Memory().Place(start, bytes, stride);
    pipeline_.BindArray(state_.format).SetVertices(place.buffer, place.offset % stride, bound_.stream_stride);
    return static_cast<GLint>(place.offset / stride);
}

HRESULT Device::DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) {
    if (life_ != DeviceLife::Operational) return D3D_OK;
    const HRESULT result = CheckDraw(state_, Stream(), type, first_vertex, count);
    if (FAILED(result) || blind_ || !context_->Activate()) return result;
    const std::size_t vertices = VertexCount(type, count);
    const bool points = DrawnAsPoints(type);
    if (!pipeline_.Prepare(state_, bindings_, points)) return D3DERR_DRIVERINTERNALERROR;
    if (points) {
        return DrawPoints(
            {VertexBytes(first_vertex), bound_.stream_stride, state_.format.stride, nullptr, 0, 0, vertices}, vertices);
    }
    const GLint first = PlaceVertices(first_vertex, vertices);
    glDrawArrays(kModes[type], first, static_cast<GLsizei>(vertices));
    pipeline_.Drawn();
    return D3D_OK;
}

HRESULT Device::DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                     UINT first_index, UINT count) {
    if (life_ != DeviceLife::Operational) return D3D_OK;
    const std::int64_t first_vertex = std::int64_t{base_vertex} + min_index;
    const HRESULT result =
        CheckIndexedDraw(state_, Stream(), Indices(), type, first_vertex, vertices, first_index, count);
    if (FAILED(result) || blind_ || !context_->Activate()) return result;
    BufferMemory& indices = bound_.indices->Memory();
    const std::size_t index_bytes = bound_.indices->ElementBytes(), index_count = VertexCount(type, count);
    const bool points = DrawnAsPoints(type);
    if (!pipeline_.Prepare(state_, bindings_, points)) return D3DERR_DRIVERINTERNALERROR;
    const std::size_t first_byte = first_index * index_bytes;
    if (points) {
        return DrawPoints(
            {VertexBytes(static_cast<std::size_t>(first_vertex)), bound_.stream_stride, state_.format.stride,
             indices.Bytes() + first_byte, static_cast<DWORD>(index_bytes), min_index, vertices},
            index_count);
    }
    const GLint first = PlaceVertices(static_cast<std::size_t>(first_vertex), vertices);
    const GlBytes place = indices.Place(first_byte, index_count * index_bytes, index_bytes);
    pipeline_.BindArray(state_.format).SetIndices(place.buffer);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): OpenGL takes the offset as a pointer
    const void* offset = reinterpret_cast<const void*>(place.offset);
    glDrawElementsBaseVertex(kModes[type], static_cast<GLsizei>(index_count),
                             index_bytes == 2 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT, offset,
                             first - static_cast<GLint>(min_index));
    pipeline_.Drawn();
    return D3D_OK;
}

// Each point becomes a square of two triangles: its vertex is written four times, and the vertex stage moves each to
// the corner that its number says.
HRESULT Device::DrawPoints(const PointVertices& points, std::size_t count) {
    VertexArray& array = pipeline_.BindArray(state_.format);
    array.SetIndices(QuadIndices());
    StreamRing& ring = context_->Ring();
    const std::size_t bytes = points.vertex_bytes;
    for (std::size_t done = 0; done < count; done += kPointsPerDraw) {
        const std::size_t now = std::min(count - done, kPointsPerDraw);
        const StreamRing::Place place = ring.Allocate(now * kCorners * bytes, kCorners * bytes);
        std::byte* corner = place.memory;
        for (std::size_t i = 0; i < now; ++i) {
            const std::byte* vertex = points.At(done + i);
            if (vertex == nullptr) continue;
            for (std::size_t repeat = 0; repeat < kCorners; ++repeat, corner += bytes) {
                std::memcpy(corner, vertex, bytes);
            }
        }
        const std::size_t written = static_cast<std::size_t>(corner - place.memory) / (kCorners * bytes);
        array.SetVertices(ring.Buffer(), 0, static_cast<DWORD>(bytes));
        glDrawElementsBaseVertex(GL_TRIANGLES, static_cast<GLsizei>(written * kIndicesPerPoint), GL_UNSIGNED_SHORT,
                                 nullptr, static_cast<GLint>(place.offset / bytes));
        pipeline_.Drawn();
    }
    return D3D_OK;
}

GLuint Device::QuadIndices() {
    if (quad_indices_ != 0) return quad_indices_;
    constexpr std::uint16_t kPattern[kIndicesPerPoint] = {0, 1, 2, 2, 1, 3};
    std::vector<std::uint16_t> indices(kPointsPerDraw * kIndicesPerPoint);
    for (std::size_t i = 0; i < indices.size(); ++i) {
        indices[i] = static_cast<std::uint16_t>(i / kIndicesPerPoint * kCorners + kPattern[i % kIndicesPerPoint]);
    }
    glCreateBuffers(1, &quad_indices_);
    glNamedBufferStorage(quad_indices_, static_cast<GLsizeiptr>(indices.size() * sizeof indices[0]), indices.data(), 0);
    return quad_indices_;
}

}   // namespace sparkrig
