// Matrices for tests, as values.
#pragma once
#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {

inline D3DMATRIX operator*(const D3DMATRIX& a, const D3DMATRIX& b) {
    D3DMATRIX product;
    return *D3DXMatrixMultiply(&product, &a, &b);
}
inline D3DMATRIX Scaling(float x, float y, float z) {
    D3DMATRIX matrix;
    return *D3DXMatrixScaling(&matrix, x, y, z);
}
inline D3DMATRIX Translation(float x, float y, float z) {
    D3DMATRIX matrix;
    return *D3DXMatrixTranslation(&matrix, x, y, z);
}
inline D3DMATRIX Rotation(const D3DXVECTOR3& axis, float angle) {
    D3DMATRIX matrix;
    return *D3DXMatrixRotationAxis(&matrix, &axis, angle);
}
/// Ninety degrees wide and high; w is the depth in front of the eye.
inline D3DMATRIX Perspective(float near_z, float far_z) {
    constexpr float kRightAngle = 1.5707963f;
    D3DMATRIX matrix;
    return *D3DXMatrixPerspectiveFovLH(&matrix, kRightAngle, 1.0f, near_z, far_z);
}

}   // namespace sparkrig
