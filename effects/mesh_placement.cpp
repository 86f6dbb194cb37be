#include "effects/mesh_placement.h"

#include "effects/effect_definition.h"
#include "scene/matrix_rows.h"

namespace sparkrig {
namespace {

constexpr float kHeldDistance = 100;   // world units before the camera

float ColumnLength(const D3DXMATRIX& matrix, int column) {
    return D3DXVec3Length({matrix.m[0][column], matrix.m[1][column], matrix.m[2][column]});
}

/// Scaling x rotation.
D3DXMATRIX Turned(const D3DXVECTOR3& scale, const D3DXQUATERNION& rotation) {
    D3DXMATRIX scaling, turn;
    D3DXMatrixScaling(&scaling, scale.x, scale.y, scale.z);
    D3DXMatrixRotationQuaternion(&turn, &rotation);
    D3DXMatrixMultiply(&turn, &scaling, &turn);
    return turn;
}

D3DXMATRIX TurnedInCamera(const KRN_3dObject& node, const MeshPlace& place, const D3DXMATRIX& inverse_view) {
    D3DXMATRIX world = Turned(Times(node.CurrentScale(), place.scale), place.rotation);
    D3DXMatrixMultiply(&world, &world, &inverse_view);
    return world;
}

D3DXMATRIX PlaceInWorld(const KRN_3dObject& node, const MeshPlace& place) {
    D3DXQUATERNION unit;
    D3DXQuaternionNormalize(&unit, &place.rotation);
    D3DXMATRIX world = Turned(Times(place.scale, node.RestPose().axis_signs), unit);
    SetRow(world, 3, place.position);
    return world;
}

D3DXMATRIX PlaceUpright(const KRN_3dObject& node, const MeshPlace& place, const D3DXMATRIX& inverse_view) {
    const D3DXMATRIX turned = Turned(Times(node.CurrentScale(), place.scale), place.rotation);
    const D3DXVECTOR3 right = Row(inverse_view, 0), up(0, 0, ColumnLength(turned, 1));
    D3DXMATRIX world = kIdentityMatrix;
    SetRow(world, 0, right * ColumnLength(turned, 0));
    SetRow(world, 1, D3DXVec3Cross(right, up));
    SetRow(world, 2, {0, 0, ColumnLength(turned, 2)});
    SetRow(world, 3, place.position);
    return world;
}

D3DXMATRIX PlaceFacingCamera(const KRN_3dObject& node, const MeshPlace& place, const D3DXMATRIX& inverse_view) {
    D3DXMATRIX world = TurnedInCamera(node, place, inverse_view);
    SetRow(world, 3, place.position);
    return world;
}

D3DXMATRIX PlaceBeforeCamera(const KRN_3dObject& node, const MeshPlace& place, const D3DXMATRIX& inverse_view) {
    D3DXVECTOR3 forward = Row(inverse_view, 2);
    D3DXVec3Normalize(&forward, &forward);
    D3DXMATRIX world = TurnedInCamera(node, place, inverse_view);
    SetRow(world, 3, Row(inverse_view, 3) + forward * kHeldDistance);
    return world;
}

}   // namespace

std::optional<D3DXMATRIX> PlaceScene(int billboard, const KRN_3dObject& node, const MeshPlace& place,
                                     const D3DXMATRIX& view) {
    const auto mode = static_cast<BillboardMode>(billboard);
    if (mode == BillboardMode::Flat) return PlaceInWorld(node, place);
    D3DXMATRIX inverse_view;
    if (!D3DXMatrixInverse(&inverse_view, nullptr, &view)) return std::nullopt;
    switch (mode) {
        case BillboardMode::Upright: return PlaceUpright(node, place, inverse_view);
        case BillboardMode::FacingCamera: return PlaceFacingCamera(node, place, inverse_view);
        case BillboardMode::BeforeCamera: return PlaceBeforeCamera(node, place, inverse_view);
        case BillboardMode::Flat: break;
    }
    return std::nullopt;
}

}   // namespace sparkrig
