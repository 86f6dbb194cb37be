// Built as motion_lanes.cpp is.
#include "effects/particle_vertices.h"

#include <algorithm>

#include "effects/sine.h"
#include "effects/vector_code.h"

namespace sparkrig {
namespace {

struct Corner {
    D3DXVECTOR3 corner;
    D3DXVECTOR2 uv;
};

// clang-format off
constexpr Corner kCorners[kVerticesPerParticle] = {
    {{-1, -1, 0}, {0, 0}},
    {{ 1,  1, 0}, {1, 1}},
    {{ 1, -1, 0}, {1, 0}},
    {{-1, -1, 0}, {0, 0}},
    {{-1,  1, 0}, {0, 1}},
    {{ 1,  1, 0}, {1, 1}},
};
// clang-format on

constexpr float kUnfilledSize = 100;
constexpr D3DCOLOR kUnfilledColour = 0xFFFF00FF;
constexpr std::size_t kBlock = 64;   // particles whose rotations are computed together
constexpr std::size_t kPrefetch =
    16;   // particles ahead: depth order jumps through the records, which no processor foresees

/// A vertex is three of these.
using Quarter [[gnu::vector_size(16), gnu::aligned(4), gnu::may_alias]] = float;

void WriteVertices(const DrawRecord& particle, float cosine, float sine, EffectParticleVertex* vertices) {
    const auto colour = __builtin_bit_cast(float, particle.colour);
    const auto& [x, y, z] = particle.position;
    for (int i = 0; i < kVerticesPerParticle; ++i) {
        const Corner& corner = kCorners[i];
        auto* quarters = reinterpret_cast<Quarter*>(vertices + i);
        quarters[0] = Quarter{x, y, z, corner.corner.x};
        quarters[1] = Quarter{corner.corner.y, 0, particle.size, colour};
        quarters[2] = Quarter{corner.uv.x, corner.uv.y, cosine, sine};
    }
}

}   // namespace

void InitParticleVertices(EffectParticleVertex* vertices, std::size_t particles) {
    for (std::size_t i = 0; i < particles; ++i) {
        for (const Corner& corner : kCorners)
            *vertices++ = {{}, corner.corner, kUnfilledSize, kUnfilledColour, corner.uv, {1, 0}};
    }
}

SPARKRIG_VECTOR_CODE void FillParticles(std::span<const DrawRecord* const> particles, EffectParticleVertex* vertices) {
    for (std::size_t first = 0; first < particles.size(); first += kBlock) {
        const std::size_t block = std::min(kBlock, particles.size() - first);
        float angles[kBlock], cosines[kBlock], sines[kBlock];
        for (std::size_t i = 0; i < block; ++i) {
            const std::size_t ahead = first + i + kPrefetch;
            if (ahead < particles.size()) __builtin_prefetch(particles[ahead]);
            angles[i] = particles[first + i]->angle;
        }
        for (std::size_t i = 0; i < block; ++i) SineAndCosine(angles[i], sines[i], cosines[i]);
        for (std::size_t i = 0; i < block; ++i, vertices += kVerticesPerParticle)
            WriteVertices(*particles[first + i], cosines[i], sines[i], vertices);
    }
}

}   // namespace sparkrig
