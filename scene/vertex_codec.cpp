#include "scene/vertex_codec.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/little_endian.h"
#include "base/numeric.h"

namespace sparkrig {

namespace {

constexpr float kNormalUnit = 32767.0f, kWeightUnit = 65535.0f;
constexpr int kPairBytes = 8, kIndexBytes = 4;

bool HasIndices(const VertexLayout& layout) { return (layout.format & D3DFVF_LASTBETA_UBYTE4) != 0; }

/// Blend weights that stand in memory as floats.
int StandingWeights(const VertexLayout& layout) { return layout.weights - (HasIndices(layout) ? 1 : 0); }

bool Has(const VertexLayout& layout, DWORD bit) { return (layout.format & bit) != 0; }

template <class Number>
Number Take(const std::uint8_t*& from) {
    const auto value = LoadLittleEndian<Number>(from);
    from += sizeof value;
    return value;
}

void TakeFloats(const std::uint8_t*& from, std::uint8_t* to, int count) {
    for (int i = 0; i < count; ++i) {
        const float value = Take<float>(from);
        std::memcpy(to + 4 * i, &value, sizeof value);
    }
}

void PutFloat(float value, std::uint8_t* to) { std::memcpy(to, &value, sizeof value); }

float FloatAt(const std::uint8_t* from) {
    float value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

void DecodeCompressed(const StoredVertices& stored, const std::uint8_t* from, const VertexLayout& layout,
                      std::uint8_t* vertex) {
    TakeFloats(from, vertex + layout.position, 3);
    if (stored.layout.texture_sets > 0 || stored.always_texture) {
        const std::uint8_t* pair = from;
        if (stored.layout.texture_sets > 0)
            TakeFloats(pair, vertex + layout.texture_offset[0], std::min(layout.texture_floats[0], 2));
        from += kPairBytes;
    }
    const bool has_normal = Has(layout, D3DFVF_NORMAL);
    for (int i = 0; i < 3; ++i) {
        const float component = static_cast<float>(Take<std::int16_t>(from)) / kNormalUnit;
        if (has_normal) PutFloat(component, vertex + layout.normal + 4 * i);
    }
    for (int i = 0; i < stored.layout.weights; ++i) {
        const float weight = static_cast<float>(Take<std::uint16_t>(from)) / kWeightUnit;
        if (i < StandingWeights(layout)) PutFloat(weight, vertex + layout.rhw_or_weights + 4 * i);
    }
    if (HasIndices(layout)) std::memcpy(vertex + BoneIndexOffset(layout), from, kIndexBytes);
}

/// From one layout to another that has all that the first has.
void CopyComponents(const VertexLayout& from, const std::uint8_t* source, const VertexLayout& to,
                    std::uint8_t* vertex) {
    std::memcpy(vertex, source, static_cast<std::size_t>(from.diffuse));
    if (Has(from, D3DFVF_DIFFUSE)) std::memcpy(vertex + to.diffuse, source + from.diffuse, 4);
    if (Has(from, D3DFVF_SPECULAR)) std::memcpy(vertex + to.specular, source + from.specular, 4);
    for (int set = 0; set < std::min(from.texture_sets, to.texture_sets); ++set) {
        const int floats = std::min(from.texture_floats[set], to.texture_floats[set]);
        std::memcpy(vertex + to.texture_offset[set], source + from.texture_offset[set],
                    4 * static_cast<std::size_t>(floats));
    }
}

template <class Integer>
std::uint8_t* Store(Integer value, std::uint8_t* to) {
    StoreLittleEndian(value, to);
    return to + sizeof value;
}

}   // namespace

int InfluencesOf(const VertexLayout& layout) { return layout.weights; }

int BoneIndexOffset(const VertexLayout& layout) { return layout.rhw_or_weights + 4 * StandingWeights(layout); }

std::uint32_t StoredVertices::Stride() const {
    if (!compressed) return static_cast<std::uint32_t>(layout.stride);
    const int pair = layout.texture_sets > 0 || always_texture ? kPairBytes : 0;
    return static_cast<std::uint32_t>(18 + pair + 2 * layout.weights + (HasIndices(layout) ? kIndexBytes : 0));
}

void DecodeVertices(const StoredVertices& stored, const std::uint8_t* bytes, MeshGeometry& geometry) {
    const std::uint32_t stride = stored.Stride();
    if (!stored.compressed && stored.layout.format == geometry.layout.format) {
        std::memcpy(geometry.vertices.data(), bytes, geometry.vertices.size());
        return;
    }
    for (std::uint32_t i = 0; i < geometry.VertexCount(); ++i, bytes += stride) {
        if (stored.compressed) {
            DecodeCompressed(stored, bytes, geometry.layout, geometry.Vertex(i));
        } else {
            CopyComponents(stored.layout, bytes, geometry.layout, geometry.Vertex(i));
        }
    }
}

void EncodeVertex(const MeshGeometry& geometry, std::uint32_t vertex, std::uint8_t* bytes) {
    const VertexLayout& layout = geometry.layout;
    const std::uint8_t* from = geometry.Vertex(vertex);
    for (int i = 0; i < 3; ++i) bytes = Store(FloatAt(from + layout.position + 4 * i), bytes);
    for (int i = 0; i < 2 && layout.texture_sets > 0; ++i) {
        const bool there = i < layout.texture_floats[0];
        bytes = Store(there ? FloatAt(from + layout.texture_offset[0] + 4 * i) : 0.0f, bytes);
    }
    for (int i = 0; i < 3; ++i) {
        const float normal = Has(layout, D3DFVF_NORMAL) ? FloatAt(from + layout.normal + 4 * i) : 0.0f;
        bytes = Store(static_cast<std::int16_t>(std::clamp(TruncateToInt(normal * kNormalUnit), -32768, 32767)), bytes);
    }
    int rest = 65535;
    for (int i = 0; i < layout.weights; ++i) {
        const bool stands = i < StandingWeights(layout);
        const float weight = stands ? FloatAt(from + layout.rhw_or_weights + 4 * i) : 0.0f;
        const int stored = stands ? std::clamp(TruncateToInt(weight * kWeightUnit), 0, 65535) : std::max(rest, 0);
        bytes = Store(static_cast<std::uint16_t>(stored), bytes);
        rest -= stored;
    }
    if (HasIndices(layout)) std::memcpy(bytes, from + BoneIndexOffset(layout), kIndexBytes);
}

}   // namespace sparkrig
