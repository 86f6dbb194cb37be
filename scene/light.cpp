#include "scene/light.h"

namespace sparkrig {

KRN_Light::KRN_Light() {
    SetName("KRN_Light");
    record.Falloff = 1.0f;
}

void KRN_Light::ApplyOrientation(const D3DXMATRIX* extra) {
    D3DXMATRIX placement = kIdentityMatrix;   // also that of a flattened node, which has no inverse
    if (D3DXMatrixInverse(&placement, nullptr, &WorldMatrix())) {
        D3DXMatrixMultiply(&placement, &placement, &PivotMatrix());
        D3DXMatrixMultiply(&placement, &placement, &WorldMatrix());
    }
    if (extra) D3DXMatrixMultiply(&placement, &placement, extra);
    D3DXVECTOR3 position, direction;
    D3DXVec3TransformCoord(&position, &eye_, &placement);
    D3DXVec3TransformNormal(&direction, &direction_, &placement);
    record.Position = position;
    record.Direction = direction;
}

}   // namespace sparkrig
