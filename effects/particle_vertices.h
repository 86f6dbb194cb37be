// Particles as the vertices of camera-facing quads.
#pragma once
#include <cstddef>
#include <cstdint>

#include "platform/d3d9/d3d9.h"
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

struct Particle {
    D3DXVECTOR3 position;       // in the world
    std::uint32_t colour = 0;   // packed ARGB
    float angle = 0;            // radians
    float size = 0;
};
static_assert(sizeof(Particle) == 24);

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

/// Writes whole vertices: corner and texture coordinate of each, which FillParticles leaves alone, and a mark for what
/// FillParticles overwrites. Particles of magenta quads 100 wide at the origin were never filled.
void InitParticleVertices(EffectParticleVertex* vertices, std::size_t particles);

/// Writes position, size, colour and rotation of six vertices for each particle. Never reads the vertices.
void FillParticles(const Particle* particles, std::size_t count, EffectParticleVertex* vertices);

}   // namespace sparkrig
