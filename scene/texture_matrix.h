// The matrix that moves, tiles and turns a layer's texture coordinates.
#pragma once
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

struct TextureMatrixValues {
    float offset_u = 0, offset_v = 0;
    float tiling_u = 1, tiling_v = 1;
    float angle_w = 0;   // radians
    bool operator==(const TextureMatrixValues&) const = default;
};

/// For coordinates of two components: offset, turned and tiled about the middle (0.5, 0.5). The translation stands in
/// the third row.
D3DXMATRIX BuildTextureMatrix(const TextureMatrixValues& values);

}   // namespace sparkrig
