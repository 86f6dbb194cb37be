// Particles as the vertices of camera-facing quads.
#pragma once
#include <cstddef>
#include <span>

#include "effects/instance_store.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

struct EffectParticleVertex {
    static constexpr DWORD kFormat = 0x272;   // position, normal, point size, diffuse colour, two texture coordinates

    D3DXVECTOR3 position;
    D3DXVECTOR3 corner;
    float size;
    D3DCOLOR colour;
    D3DXVECTOR2 uv;
    D3DXVECTOR2 rotation;   // cosine and sine of the angle
};
static_assert(sizeof(EffectParticleVertex) == 48);

inline constexpr int kVerticesPerParticle = 6;   // two triangles

/// Vertices that show when they were never filled: magenta quads 100 wide at the origin.
void InitParticleVertices(EffectParticleVertex* vertices, std::size_t particles);

/// Writes six whole vertices for each particle, front to back, and never reads them. The rotation is within 1e-6 of the
/// angle's.
void FillParticles(std::span<const DrawRecord* const> particles, EffectParticleVertex* vertices);

}   // namespace sparkrig
