#include "scene/object_3d.h"

namespace sparkrig {

KRN_3dObject::KRN_3dObject() { KRN_Base::SetName("KRN_3dObject"); }

void KRN_3dObject::Error(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportError(node_name_.c_str(), format, arguments);
}

void KRN_3dObject::Warning(const char* format, ...) const {
    std::va_list arguments;
    va_start(arguments, format);
    ReportWarning(node_name_.c_str(), format, arguments);
    va_end(arguments);
}

void KRN_3dObject::SetPosition(float x, float y, float z, bool rebuild_now) {
    transform_.position = {x, y, z};
    Placed(rebuild_now);
}

void KRN_3dObject::SetScale(float x, float y, float z, bool rebuild_now) {
    transform_.scale = {x, y, z};
    Placed(rebuild_now);
}

void KRN_3dObject::SetRotation(const D3DXQUATERNION& rotation, bool rebuild_now) {
    D3DXQUATERNION unit;
    D3DXQuaternionNormalize(&unit, &rotation);
    D3DXQuaternionToAxisAngle(&unit, &transform_.rotation_axis, &transform_.rotation_angle);
    Placed(rebuild_now);
}

void KRN_3dObject::Placed(bool rebuild_now) {
    if (rebuild_now) {
        RebuildFromNodeTransform();
    } else {
        dirty_ = true;
    }
}

void KRN_3dObject::Animate(double time, bool force) {
    if (time == last_time_ && !dirty_ && !force) return;
    RebuildFromNodeTransform();
    last_time_ = time;
    dirty_ = false;
}

void KRN_3dObject::RebuildFromNodeTransform() {
    const D3DXVECTOR3 &scale = transform_.scale, &signs = transform_.axis_signs, &position = transform_.position;
    D3DXMATRIX part, local;
    D3DXMatrixScaling(&local, scale.x * signs.x, scale.y * signs.y, scale.z * signs.z);
    D3DXMatrixRotationAxis(&part, &transform_.rotation_axis, transform_.rotation_angle);
    D3DXMatrixMultiply(&local, &local, &part);
    D3DXMatrixTranslation(&part, position.x, position.y, position.z);
    D3DXMatrixMultiply(&local, &local, &part);
    transform_.matrix = local;
    world_ = local;
    position_ = position;
}

}   // namespace sparkrig
