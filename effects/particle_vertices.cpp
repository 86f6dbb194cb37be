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

}   // namespace

void InitParticleVertices(EffectParticleVertex* vertices, std::size_t particles) {
    for (std::size_t i = 0; i < particles; ++i) {
        for (const Corner& corner : kCorners)
            *vertices++ = {{}, corner.corner, kUnfilledSize, kUnfilledColour, corner.uv, {1, 0}};
    }
}

SPARKRIG_VECTOR_CODE void FillParticles(const Particle* particles, std::size_t count, EffectParticleVertex* vertices) {
    for (std::size_t first = 0; first < count; first += kBlock) {
        const std::size_t block = std::min(kBlock, count - first);
        const Particle* particle = particles + first;
        float cosines[kBlock], sines[kBlock];
        for (std::size_t i = 0; i < block; ++i) {
            cosines[i] = static_cast<float>(Cosine(particle[i].angle));
            sines[i] = static_cast<float>(Sine(particle[i].angle));
        }
        for (std::size_t i = 0; i < block; ++i, vertices += kVerticesPerParticle) {
            const Particle& source = particle[i];
            const D3DXVECTOR2 rotation{cosines[i], sines[i]};
            for (int corner = 0; corner < kVerticesPerParticle; ++corner) {
                EffectParticleVertex& vertex = vertices[corner];
                vertex.position = source.position;
                vertex.size = source.size;
                vertex.colour = source.colour;
                vertex.rotation = rotation;
            }
        }
    }
}

}   // namespace sparkrig
