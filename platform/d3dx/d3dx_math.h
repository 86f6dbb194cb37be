// Vectors, matrices and quaternions with the conventions of the D3DX helpers: row vectors, row-major matrices,
// left-handed projections, quaternions (x, y, z, w) whose product applies the first operand first.
// Every function writes and returns its output, which may be one of its inputs.
#pragma once
#include "platform/d3d9/d3d9_types.h"

namespace sparkrig {

struct D3DXVECTOR2 {
    float x = 0, y = 0;
    bool operator==(const D3DXVECTOR2&) const = default;
};

struct D3DXVECTOR3 {
    float x = 0, y = 0, z = 0;

    constexpr D3DXVECTOR3() = default;
    constexpr D3DXVECTOR3(float px, float py, float pz) : x(px), y(py), z(pz) {}
    constexpr D3DXVECTOR3(const D3DVECTOR& v) : x(v.x), y(v.y), z(v.z) {}
    constexpr operator D3DVECTOR() const { return {x, y, z}; }

    constexpr D3DXVECTOR3 operator+(const D3DXVECTOR3& v) const { return {x + v.x, y + v.y, z + v.z}; }
    constexpr D3DXVECTOR3 operator-(const D3DXVECTOR3& v) const { return {x - v.x, y - v.y, z - v.z}; }
    constexpr D3DXVECTOR3 operator*(float f) const { return {x * f, y * f, z * f}; }
    constexpr D3DXVECTOR3 operator-() const { return {-x, -y, -z}; }
    constexpr D3DXVECTOR3& operator+=(const D3DXVECTOR3& v) { return *this = *this + v; }
    constexpr D3DXVECTOR3& operator*=(float f) { return *this = *this * f; }
    constexpr bool operator==(const D3DXVECTOR3&) const = default;
};

struct D3DXVECTOR4 {
    float x = 0, y = 0, z = 0, w = 0;
    bool operator==(const D3DXVECTOR4&) const = default;
};

struct D3DXQUATERNION {
    float x = 0, y = 0, z = 0, w = 1;
    bool operator==(const D3DXQUATERNION&) const = default;
};

using D3DXMATRIX = D3DMATRIX;

inline constexpr D3DXMATRIX kIdentityMatrix = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

inline float D3DXVec3Dot(const D3DXVECTOR3& a, const D3DXVECTOR3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline D3DXVECTOR3 D3DXVec3Cross(const D3DXVECTOR3& a, const D3DXVECTOR3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
float D3DXVec3Length(const D3DXVECTOR3& v);
/// The zero vector stays zero.
D3DXVECTOR3* D3DXVec3Normalize(D3DXVECTOR3* out, const D3DXVECTOR3* v);
/// (x, y, z, 1) x M, divided by the resulting w.
D3DXVECTOR3* D3DXVec3TransformCoord(D3DXVECTOR3* out, const D3DXVECTOR3* v, const D3DXMATRIX* matrix);
/// (x, y, z, 0) x M.
D3DXVECTOR3* D3DXVec3TransformNormal(D3DXVECTOR3* out, const D3DXVECTOR3* v, const D3DXMATRIX* matrix);

D3DXMATRIX* D3DXMatrixIdentity(D3DXMATRIX* out);
D3DXMATRIX* D3DXMatrixMultiply(D3DXMATRIX* out, const D3DXMATRIX* a, const D3DXMATRIX* b);
D3DXMATRIX* D3DXMatrixTranspose(D3DXMATRIX* out, const D3DXMATRIX* matrix);
/// Null for a singular matrix, the output then untouched. The determinant, if asked for, is written in any case.
D3DXMATRIX* D3DXMatrixInverse(D3DXMATRIX* out, float* determinant, const D3DXMATRIX* matrix);
float D3DXMatrixDeterminant(const D3DXMATRIX* matrix);
D3DXMATRIX* D3DXMatrixTranslation(D3DXMATRIX* out, float x, float y, float z);
D3DXMATRIX* D3DXMatrixScaling(D3DXMATRIX* out, float x, float y, float z);
/// About (0, 0, 1) a positive angle (radians) turns +x towards +y. A zero axis counts as (0, 0, 0).
D3DXMATRIX* D3DXMatrixRotationAxis(D3DXMATRIX* out, const D3DXVECTOR3* axis, float angle);
D3DXMATRIX* D3DXMatrixRotationQuaternion(D3DXMATRIX* out, const D3DXQUATERNION* q);
D3DXMATRIX* D3DXMatrixPerspectiveFovLH(D3DXMATRIX* out, float fov_y, float aspect, float z_near, float z_far);
D3DXMATRIX* D3DXMatrixLookAtLH(D3DXMATRIX* out, const D3DXVECTOR3* eye, const D3DXVECTOR3* at, const D3DXVECTOR3* up);

/// The rotation a followed by the rotation b.
D3DXQUATERNION* D3DXQuaternionMultiply(D3DXQUATERNION* out, const D3DXQUATERNION* a, const D3DXQUATERNION* b);
D3DXQUATERNION* D3DXQuaternionRotationAxis(D3DXQUATERNION* out, const D3DXVECTOR3* axis, float angle);
/// The axis is a unit vector, or (0, 0, 0) for the identity.
void D3DXQuaternionToAxisAngle(const D3DXQUATERNION* q, D3DXVECTOR3* axis, float* angle);
D3DXQUATERNION* D3DXQuaternionNormalize(D3DXQUATERNION* out, const D3DXQUATERNION* q);
/// t is not clamped.
D3DXQUATERNION* D3DXQuaternionSlerp(D3DXQUATERNION* out, const D3DXQUATERNION* a, const D3DXQUATERNION* b, float t);

}   // namespace sparkrig
