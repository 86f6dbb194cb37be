#include "app/camera_commands.h"

#include "app/tester_state.h"

namespace sparkrig {

namespace {

constexpr float kMoveSpeed = 500;   // units a second along the view
constexpr float kSidewaysSpeed = kMoveSpeed * 0.5f;
constexpr float kTurnSpeed = 2;   // radians a second
const D3DXVECTOR3 kWorldUp = {0, 0, 1};

D3DXVECTOR3 Horizontal(const KRN_Camera& camera) {
    D3DXVECTOR3 horizontal = D3DXVec3Cross(camera.ViewDirection(), camera.Up());
    D3DXVec3Normalize(&horizontal, &horizontal);
    return horizontal;
}

void SetEye(KRN_Camera& camera, const D3DXVECTOR3& position) {
    camera.SetEye(position.x, position.y, position.z, true);
}

void MoveSideways(const KRN_InputKeyboard& keyboard, KRN_Camera& camera, float seconds) {
    const D3DXVECTOR3 horizontal = Horizontal(camera);
    const float step = kSidewaysSpeed * seconds;
    if (keyboard.IsKeyDown(DIK_LEFT)) SetEye(camera, camera.Eye() - horizontal * step);
    if (keyboard.IsKeyDown(DIK_RIGHT)) SetEye(camera, camera.Eye() + horizontal * step);
    if (keyboard.IsKeyDown(DIK_NEXT)) SetEye(camera, camera.Eye() - camera.Up() * step);
    if (keyboard.IsKeyDown(DIK_PRIOR)) SetEye(camera, camera.Eye() + camera.Up() * step);
}

void CircleOrigin(const KRN_InputKeyboard& keyboard, KRN_Camera& camera, float seconds) {
    const D3DXVECTOR3 horizontal = Horizontal(camera);
    const float angle = kTurnSpeed * seconds;
    D3DXVECTOR3 position = camera.Eye();
    const auto turn = [&](const D3DXVECTOR3& axis, float by) {
        D3DXMATRIX rotation;
        D3DXMatrixRotationAxis(&rotation, &axis, by);
        D3DXVec3TransformCoord(&position, &position, &rotation);
        camera.RotateView(axis, by);
    };
    if (keyboard.IsKeyDown(DIK_LEFT)) turn(kWorldUp, angle);
    if (keyboard.IsKeyDown(DIK_RIGHT)) turn(kWorldUp, -angle);
    if (keyboard.IsKeyDown(DIK_UP)) turn(horizontal, angle);
    if (keyboard.IsKeyDown(DIK_DOWN)) turn(horizontal, -angle);
    SetEye(camera, position);
}

void TurnAndMove(const KRN_InputKeyboard& keyboard, KRN_Camera& camera, float seconds) {
    const D3DXVECTOR3 horizontal = Horizontal(camera);
    const float angle = kTurnSpeed * seconds;
    const float step = kMoveSpeed * seconds;
    if (keyboard.IsKeyDown(DIK_LEFT)) camera.TurnAroundUp(angle);
    if (keyboard.IsKeyDown(DIK_RIGHT)) camera.TurnAroundUp(-angle);
    if (keyboard.IsKeyDown(DIK_NEXT)) camera.RotateView(horizontal, -angle);
    if (keyboard.IsKeyDown(DIK_PRIOR)) camera.RotateView(horizontal, angle);
    if (keyboard.IsKeyDown(DIK_UP)) SetEye(camera, camera.Eye() + camera.ViewDirection() * step);
    if (keyboard.IsKeyDown(DIK_DOWN)) SetEye(camera, camera.Eye() - camera.ViewDirection() * step);
}

}   // namespace

void MoveCamera(const KRN_InputKeyboard& keyboard, bool shift, bool ctrl, KRN_Camera& camera, float seconds) {
    if (shift) {
        MoveSideways(keyboard, camera, seconds);
    } else if (ctrl) {
        CircleOrigin(keyboard, camera, seconds);
    } else {
        TurnAndMove(keyboard, camera, seconds);
    }
}

void PlaceCameraAtHome(KRN_Camera& camera) {
    SetEye(camera, kCameraHome);
    camera.SetViewDirection(-kCameraHome.x, -kCameraHome.y, -kCameraHome.z, true);
    camera.SetUp(0, 0, 1);
}

}   // namespace sparkrig
