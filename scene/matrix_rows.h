// Vectors as rows of a matrix: 0 to 2 are the axes, 3 the translation.
#pragma once
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

inline D3DXVECTOR3 Row(const D3DXMATRIX& matrix, int row) {
    return {matrix.m[row][0], matrix.m[row][1], matrix.m[row][2]};
}

inline void SetRow(D3DXMATRIX& matrix, int row, const D3DXVECTOR3& v) {
    matrix.m[row][0] = v.x;
    matrix.m[row][1] = v.y;
    matrix.m[row][2] = v.z;
}

/// Component by component.
inline D3DXVECTOR3 Times(const D3DXVECTOR3& a, const D3DXVECTOR3& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }

}   // namespace sparkrig
