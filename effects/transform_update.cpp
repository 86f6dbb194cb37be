#include "effects/transform_update.h"

#include <algorithm>

namespace sparkrig {
namespace {

/// v turned by the base orientation, the identity for everything that the system starts itself.
D3DXVECTOR3 Oriented(const D3DXQUATERNION& orientation, const D3DXVECTOR3& v) {
    if (orientation == D3DXQUATERNION()) return v;
    D3DXMATRIX matrix;
    D3DXVECTOR3 turned;
    D3DXMatrixRotationQuaternion(&matrix, &orientation);
    return *D3DXVec3TransformNormal(&turned, &v, &matrix);
}

constexpr float kFullAlpha = 255.0f;

}   // namespace

void GatherLanes(VisualEffectObject* const* objects, int count, MotionLanes& in) {
    in.count = count;
    for (int i = 0; i < count; ++i) {
        const VisualEffectObject& object = *objects[i];
        in.t[i] = std::max(object.Age(), 0.0);
        in.c[i] = object.count_value;
        in.r[0][i] = object.random[0];
        in.r[1][i] = object.random[1];
        in.r[2][i] = object.random[2];
        in.r[3][i] = object.random[3];
        in.life[i] = object.life;
    }
}

void TransformUpdate::Group::Evaluate() {
    if (count == 0) return;
    MotionLanes in;
    GatherLanes(objects, count, in);

    VectorLanes position, scale;
    QuaternionLanes rotation;
    alignas(64) float alpha[kLanes];
    alignas(64) float fade[kLanes];
    EvalPosition(*sub, in, position);
    EvalScale(*sub, in, scale);
    EvalRotation(*sub, in, rotation);
    EvalAlpha(*sub, in, alpha);
    FadeFactor(*sub, in, fade);

    for (int i = 0; i < count; ++i) {
        VisualEffectObject& object = *objects[i];
        object.local_offset = {position.x[i], position.y[i], position.z[i]};
        object.position = object.base_position + Oriented(object.base_orientation, object.local_offset);
        object.scale = {scale.x[i], scale.y[i], scale.z[i]};
        object.rotation = {rotation.x[i], rotation.y[i], rotation.z[i], rotation.w[i]};
        object.alpha = alpha[i] * fade[i] * (static_cast<float>(object.colour >> 24) / kFullAlpha);
    }
    count = 0;
}

void TransformUpdate::Add(VisualEffectObject& object) {
    if (object.Age() < 0) {
        object.position = object.base_position;
        return;
    }
    Group& group = groups_[groups_.NumberOf(*object.sub_effect)];
    group.objects[group.count++] = &object;
    if (group.count == kLanes) group.Evaluate();
}

void TransformUpdate::Flush() {
    for (int i = 0; i < groups_.Count(); ++i) groups_[i].Evaluate();
    groups_.Release();
}

}   // namespace sparkrig
