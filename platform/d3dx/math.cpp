#include <algorithm>
#include <cmath>
#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>

#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {
namespace {

// GLM keeps matrices by columns and multiplies columns from the right; ours are kept by rows and multiply rows from
// the left. The two transpositions cancel: the same sixteen floats are the same transformation, products swap sides.
glm::mat4 ToGlm(const D3DXMATRIX& matrix) { return glm::make_mat4(&matrix.m[0][0]); }

D3DXMATRIX* Store(D3DXMATRIX* out, const glm::mat4& matrix) {
    std::copy_n(glm::value_ptr(matrix), 16, &out->m[0][0]);
    return out;
}

// Below this distance of the cosine from 1 the sine of the angle is too small to divide by.
constexpr float kNearlyParallel = 1e-6f;

}   // namespace

float D3DXVec3Length(const D3DXVECTOR3& v) { return std::sqrt(D3DXVec3Dot(v, v)); }

D3DXVECTOR3* D3DXVec3Normalize(D3DXVECTOR3* out, const D3DXVECTOR3* v) {
    const float length = D3DXVec3Length(*v);
    *out = length > 0 ? D3DXVECTOR3(v->x / length, v->y / length, v->z / length) : D3DXVECTOR3();
    return out;
}

D3DXVECTOR3* D3DXVec3TransformCoord(D3DXVECTOR3* out, const D3DXVECTOR3* v, const D3DXMATRIX* matrix) {
    const auto& m = matrix->m;
    const D3DXVECTOR3 p = *v;
    const float w = p.x * m[0][3] + p.y * m[1][3] + p.z * m[2][3] + m[3][3];
    *out = {(p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0] + m[3][0]) / w,
            (p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1] + m[3][1]) / w,
            (p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2] + m[3][2]) / w};
    return out;
}

D3DXVECTOR3* D3DXVec3TransformNormal(D3DXVECTOR3* out, const D3DXVECTOR3* v, const D3DXMATRIX* matrix) {
    const auto& m = matrix->m;
    const D3DXVECTOR3 p = *v;
    *out = {p.x * m[0][0] + p.y * m[1][0] + p.z * m[2][0], p.x * m[0][1] + p.y * m[1][1] + p.z * m[2][1],
            p.x * m[0][2] + p.y * m[1][2] + p.z * m[2][2]};
    return out;
}

D3DXMATRIX* D3DXMatrixIdentity(D3DXMATRIX* out) {
    *out = kIdentityMatrix;
    return out;
}

D3DXMATRIX* D3DXMatrixMultiply(D3DXMATRIX* out, const D3DXMATRIX* a, const D3DXMATRIX* b) {
    return Store(out, ToGlm(*b) * ToGlm(*a));
}

D3DXMATRIX* D3DXMatrixTranspose(D3DXMATRIX* out, const D3DXMATRIX* matrix) {
    return Store(out, glm::transpose(ToGlm(*matrix)));
}

D3DXMATRIX* D3DXMatrixInverse(D3DXMATRIX* out, float* determinant, const D3DXMATRIX* matrix) {
    const float found = D3DXMatrixDeterminant(matrix);
    if (determinant) *determinant = found;
    if (found == 0) return nullptr;
    return Store(out, glm::inverse(ToGlm(*matrix)));
}

float D3DXMatrixDeterminant(const D3DXMATRIX* matrix) { return glm::determinant(ToGlm(*matrix)); }

D3DXMATRIX* D3DXMatrixTranslation(D3DXMATRIX* out, float x, float y, float z) {
    *out = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {x, y, z, 1}}};
    return out;
}

D3DXMATRIX* D3DXMatrixScaling(D3DXMATRIX* out, float x, float y, float z) {
    *out = {{{x, 0, 0, 0}, {0, y, 0, 0}, {0, 0, z, 0}, {0, 0, 0, 1}}};
    return out;
}

D3DXMATRIX* D3DXMatrixRotationAxis(D3DXMATRIX* out, const D3DXVECTOR3* axis, float angle) {
    D3DXVECTOR3 n;
    D3DXVec3Normalize(&n, axis);
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    const float k = 1 - c;
    // clang-format off
    *out = {{{k * n.x * n.x + c,       k * n.x * n.y + n.z * s, k * n.x * n.z - n.y * s, 0},
             {k * n.x * n.y - n.z * s, k * n.y * n.y + c,       k * n.y * n.z + n.x * s, 0},
             {k * n.x * n.z + n.y * s, k * n.y * n.z - n.x * s, k * n.z * n.z + c,       0},
             {0,                       0,                       0,                       1}}};
    // clang-format on
    return out;
}

D3DXMATRIX* D3DXMatrixRotationQuaternion(D3DXMATRIX* out, const D3DXQUATERNION* q) {
    const auto [x, y, z, w] = *q;
    // clang-format off
    *out = {{{1 - 2 * (y * y + z * z), 2 * (x * y + z * w),     2 * (x * z - y * w),     0},
             {2 * (x * y - z * w),     1 - 2 * (x * x + z * z), 2 * (y * z + x * w),     0},
             {2 * (x * z + y * w),     2 * (y * z - x * w),     1 - 2 * (x * x + y * y), 0},
             {0,                       0,                       0,                       1}}};
    // clang-format on
    return out;
}

D3DXMATRIX* D3DXMatrixPerspectiveFovLH(D3DXMATRIX* out, float fov_y, float aspect, float z_near, float z_far) {
    const float y_scale = 1 / std::tan(fov_y / 2);
    const float x_scale = y_scale / aspect;
    const float depth = z_far / (z_far - z_near);
    *out = {{{x_scale, 0, 0, 0}, {0, y_scale, 0, 0}, {0, 0, depth, 1}, {0, 0, -z_near * depth, 0}}};
    return out;
}

D3DXMATRIX* D3DXMatrixLookAtLH(D3DXMATRIX* out, const D3DXVECTOR3* eye, const D3DXVECTOR3* at, const D3DXVECTOR3* up) {
    const D3DXVECTOR3 e = *eye;
    const D3DXVECTOR3 direction = *at - e;
    D3DXVECTOR3 x, z;
    D3DXVec3Normalize(&z, &direction);
    const D3DXVECTOR3 side = D3DXVec3Cross(*up, z);
    D3DXVec3Normalize(&x, &side);
    const D3DXVECTOR3 y = D3DXVec3Cross(z, x);
    *out = {{{x.x, y.x, z.x, 0},
             {x.y, y.y, z.y, 0},
             {x.z, y.z, z.z, 0},
             {-D3DXVec3Dot(x, e), -D3DXVec3Dot(y, e), -D3DXVec3Dot(z, e), 1}}};
    return out;
}

D3DXQUATERNION* D3DXQuaternionMultiply(D3DXQUATERNION* out, const D3DXQUATERNION* a, const D3DXQUATERNION* b) {
    const D3DXQUATERNION p = *a, q = *b;
    *out = {q.w * p.x + q.x * p.w + q.y * p.z - q.z * p.y, q.w * p.y - q.x * p.z + q.y * p.w + q.z * p.x,
            q.w * p.z + q.x * p.y - q.y * p.x + q.z * p.w, q.w * p.w - q.x * p.x - q.y * p.y - q.z * p.z};
    return out;
}

D3DXQUATERNION* D3DXQuaternionRotationAxis(D3DXQUATERNION* out, const D3DXVECTOR3* axis, float angle) {
    D3DXVECTOR3 n;
    D3DXVec3Normalize(&n, axis);
    const float s = std::sin(angle / 2);
    *out = {n.x * s, n.y * s, n.z * s, std::cos(angle / 2)};
    return out;
}

void D3DXQuaternionToAxisAngle(const D3DXQUATERNION* q, D3DXVECTOR3* axis, float* angle) {
    const D3DXVECTOR3 direction(q->x, q->y, q->z);
    *angle = 2 * std::acos(std::clamp(q->w, -1.0f, 1.0f));
    D3DXVec3Normalize(axis, &direction);
}

D3DXQUATERNION* D3DXQuaternionNormalize(D3DXQUATERNION* out, const D3DXQUATERNION* q) {
    const float length = std::sqrt(q->x * q->x + q->y * q->y + q->z * q->z + q->w * q->w);
    *out = length > 0 ? D3DXQUATERNION{q->x / length, q->y / length, q->z / length, q->w / length} : *q;
    return out;
}

D3DXQUATERNION* D3DXQuaternionSlerp(D3DXQUATERNION* out, const D3DXQUATERNION* a, const D3DXQUATERNION* b, float t) {
    float cosine = a->x * b->x + a->y * b->y + a->z * b->z + a->w * b->w;
    const float side = cosine < 0 ? -1.0f : 1.0f;   // the shorter of the two arcs
    cosine *= side;
    float weight_a = 1 - t;
    float weight_b = t;
    if (1 - cosine >= kNearlyParallel) {
        const float angle = std::acos(cosine);
        const float sine = std::sin(angle);
        weight_a = std::sin((1 - t) * angle) / sine;
        weight_b = std::sin(t * angle) / sine;
    }
    weight_b *= side;
    *out = {weight_a * a->x + weight_b * b->x, weight_a * a->y + weight_b * b->y, weight_a * a->z + weight_b * b->z,
            weight_a * a->w + weight_b * b->w};
    return out;
}

}   // namespace sparkrig
