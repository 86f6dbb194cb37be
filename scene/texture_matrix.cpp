#include "scene/texture_matrix.h"

#include <cmath>

namespace sparkrig {

D3DXMATRIX BuildTextureMatrix(const TextureMatrixValues& values) {
    // Translation, then rotation about z by -angle, then scaling, written out for the two components that count.
    const float tx = -0.5f - values.offset_u, ty = values.offset_v - 0.5f;
    const float c = std::cos(values.angle_w), s = std::sin(values.angle_w);
    D3DXMATRIX matrix = kIdentityMatrix;
    matrix.m[0][0] = c * values.tiling_u;
    matrix.m[0][1] = -s * values.tiling_v;
    matrix.m[1][0] = s * values.tiling_u;
    matrix.m[1][1] = c * values.tiling_v;
    matrix.m[2][0] = (tx * c + ty * s) * values.tiling_u + 0.5f;
    matrix.m[2][1] = (ty * c - tx * s) * values.tiling_v + 0.5f;
    return matrix;
}

}   // namespace sparkrig
