// Geometry as modelling packages store it: points, faces that name them, texture coordinates with faces of their own.
#pragma once
#include <cstdint>
#include <vector>

#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

inline constexpr int kMostInfluences = 4, kMostSmoothingGroups = 8;

struct RawPoint {
    D3DXVECTOR3 position;
    float weights[kMostInfluences] = {};
    std::uint8_t bones[kMostInfluences] = {};   // by place in the mesh's list
    std::uint8_t pairs = 0;                     // of bone and weight in use
};

/// The smoothing groups of a face, or those that all faces of a vertex share. None: faceted.
struct SmoothingGroups {
    std::uint8_t numbers[kMostSmoothingGroups] = {};
    std::uint8_t count = 0;
};

struct RawFace {
    std::uint32_t corners[3] = {};
    SmoothingGroups smoothing;
    int material_id = 0;
};

struct RawTexturePoint {
    float u = 0, v = 0;
};

struct RawTextureFace {
    std::uint32_t corners[3] = {};
};

struct RawMesh {
    std::vector<RawPoint> points;
    std::vector<RawFace> faces;
    std::vector<RawTexturePoint> texture_points;
    std::vector<RawTextureFace> texture_faces;   // one for each face, or none
};

}   // namespace sparkrig
