#include "scene/camera.h"

namespace sparkrig {

KRN_Target3dObject::KRN_Target3dObject() { SetName("KRN_Target3dObject"); }

int KRN_Target3dObject::Animate(double time, bool force, bool update_parent) {
    KRN_3dObject::Animate(time, force, update_parent);
    // Only its place counts, not where it looks in turn: two nodes may look at each other.
    if (target_) target_->KRN_3dObject::Animate(AnimationTime(time), true, false);
    TurnToTarget();
    return 1;
}

void KRN_Target3dObject::TurnToTarget() {
    const D3DXMATRIX& world = WorldMatrix();
    eye_ = {world.m[3][0], world.m[3][1], world.m[3][2]};
    if (target_) {
        const D3DXMATRIX& place = target_->WorldMatrix();
        direction_ = D3DXVECTOR3(place.m[3][0], place.m[3][1], place.m[3][2]) - eye_;
    } else {
        up_ = {world.m[1][0], world.m[1][1], world.m[1][2]};
        direction_ = {-world.m[2][0], -world.m[2][1], -world.m[2][2]};
    }
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
