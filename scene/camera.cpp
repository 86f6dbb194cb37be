#include "scene/camera.h"

namespace sparkrig {

KRN_Target3dObject::KRN_Target3dObject() { SetName("KRN_Target3dObject"); }

void KRN_Target3dObject::Animate(double time, bool force) {
    KRN_3dObject::Animate(time, force);
    eye_ = {world_.m[3][0], world_.m[3][1], world_.m[3][2]};
    up_ = {world_.m[1][0], world_.m[1][1], world_.m[1][2]};
    direction_ = {-world_.m[2][0], -world_.m[2][1], -world_.m[2][2]};
    ApplyOrientation(nullptr);
}

void KRN_Target3dObject::SetEye(float x, float y, float z, bool apply) {
    SetPosition(x, y, z, false);
    eye_ = {x, y, z};
    if (apply) ApplyOrientation(nullptr);
}

void KRN_Target3dObject::SetViewDirection(float x, float y, float z, bool apply) {
    direction_ = {x, y, z};
    D3DXVec3Normalize(&direction_, &direction_);
    if (apply) ApplyOrientation(nullptr);
}

void KRN_Target3dObject::RotateView(const D3DXVECTOR3& axis, float angle) {
    D3DXMATRIX rotation;
    D3DXMatrixRotationAxis(&rotation, &axis, angle);
    D3DXVec3TransformNormal(&direction_, &direction_, &rotation);
    D3DXVec3TransformNormal(&up_, &up_, &rotation);
    ApplyOrientation(nullptr);
}

void KRN_Target3dObject::TurnAroundUp(float angle) {
    D3DXMATRIX rotation;
    D3DXMatrixRotationAxis(&rotation, &up_, angle);
    D3DXVec3TransformNormal(&direction_, &direction_, &rotation);
    ApplyOrientation(nullptr);
}

KRN_Camera::KRN_Camera() { SetName("KRN_Camera"); }

}   // namespace sparkrig
