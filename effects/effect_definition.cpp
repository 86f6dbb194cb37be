#include "effects/effect_definition.h"

namespace sparkrig {

void PrepareStage(VisualEffectMotion& stage) {
    stage.uses_transform = stage.rotation_angle != 0 || stage.offset != D3DXVECTOR3();
    D3DXMatrixRotationAxis(&stage.transform, &stage.rotation_axis, stage.rotation_angle);
    stage.transform.m[3][0] = stage.offset.x;
    stage.transform.m[3][1] = stage.offset.y;
    stage.transform.m[3][2] = stage.offset.z;
}

}   // namespace sparkrig
