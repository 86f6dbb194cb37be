// Nodes, nodes with a view, cameras and lights.
#include <gtest/gtest.h>

#include "scene/camera.h"
#include "scene/light.h"
#include "tests/base/reports.h"

namespace sparkrig {
namespace {

void ExpectNear(const D3DXVECTOR3& a, const D3DXVECTOR3& b) {
    EXPECT_NEAR(a.x, b.x, 1e-5f);
    EXPECT_NEAR(a.y, b.y, 1e-5f);
    EXPECT_NEAR(a.z, b.z, 1e-5f);
}

constexpr float kQuarterTurn = 1.5707963f;

D3DXQUATERNION QuarterTurnAboutZ() {
    const D3DXVECTOR3 z(0, 0, 1);
    D3DXQUATERNION q;
    D3DXQuaternionRotationAxis(&q, &z, kQuarterTurn);
    return {q.x * 3, q.y * 3, q.z * 3, q.w * 3};   // placing normalises
}

struct Node : KRN_3dObject {
    ~Node() = default;
};

TEST(Node, IsBuiltFromScaleThenRotationThenPosition) {
    Node node;
    EXPECT_EQ(node.WorldMatrix(), kIdentityMatrix);
    node.SetScale(2, 3, 4, false);
    node.SetRotation(QuarterTurnAboutZ(), false);
    EXPECT_EQ(node.WorldMatrix(), kIdentityMatrix) << "not rebuilt yet";
    node.SetPosition(10, 20, 30, true);
    D3DXVECTOR3 point(1, 1, 1);
    D3DXVec3TransformCoord(&point, &point, &node.WorldMatrix());
    ExpectNear(point, {10 - 3, 20 + 2, 30 + 4});
}

TEST(Node, ReportsWithItsName) {
    Node node;
    const Reports reports;
    node.Warning("bent by %i", 7);
    EXPECT_EQ(reports.Last(), "warning KRN_3dObject: *undefined*: bent by 7");
    node.SetNodeName("Roof");
    EXPECT_EQ(ErrorOf([&] { node.Error("gone"); }), "KRN_3dObject: Roof: gone");
}

TEST(Node, IsPlacedAgainOnlyWhenSomethingChanged) {
    Node node;
    node.SetPosition(1, 2, 3, false);
    node.Animate(5, false);
    EXPECT_EQ(node.WorldMatrix().m[3][1], 2);
    node.SetWorldMatrix(kIdentityMatrix);
    node.Animate(5, false);
    EXPECT_EQ(node.WorldMatrix(), kIdentityMatrix) << "the same time, nothing dirty";
    node.Animate(5, true);
    EXPECT_EQ(node.WorldMatrix().m[3][1], 2);
}

TEST(Camera, KeepsEyeDirectionAndUp) {
    KRN_Camera camera;
    EXPECT_STREQ(camera.ReporterName(), "KRN_Camera");
    EXPECT_EQ(camera.ViewDirection(), D3DXVECTOR3(0, 1, 0));
    EXPECT_EQ(camera.Up(), D3DXVECTOR3(0, 0, 1));
    camera.SetEye(3, 5, 7, true);
    camera.SetViewDirection(0, -6, 8, true);
    EXPECT_EQ(camera.Eye(), D3DXVECTOR3(3, 5, 7));
    ExpectNear(camera.ViewDirection(), {0, -0.6f, 0.8f});
    EXPECT_EQ(camera.WorldMatrix(), kIdentityMatrix) << "the node is not rebuilt";
}

TEST(Camera, Turns) {
    KRN_Camera camera;
    camera.SetViewDirection(1, 0, 0, false);
    camera.TurnAroundUp(kQuarterTurn);
    ExpectNear(camera.ViewDirection(), {0, 1, 0});
    ExpectNear(camera.Up(), {0, 0, 1});
    camera.RotateView({1, 0, 0}, kQuarterTurn);
    ExpectNear(camera.ViewDirection(), {0, 0, 1});
    ExpectNear(camera.Up(), {0, -1, 0});
}

TEST(Camera, AnimatedLooksDownItsOwnZAxis) {
    KRN_Camera camera;
    camera.SetPosition(3, 5, 7, false);
    camera.SetRotation(QuarterTurnAboutZ(), false);
    camera.Animate(0, true);
    ExpectNear(camera.Eye(), {3, 5, 7});
    ExpectNear(camera.ViewDirection(), {0, 0, -1});
    ExpectNear(camera.Up(), {-1, 0, 0});
}

TEST(Light, RecordsWhereItStands) {
    KRN_Light light;
    EXPECT_TRUE(light.off);
    EXPECT_EQ(light.record.Falloff, 1.0f);
    light.SetEye(3, 5, 7, false);
    light.SetViewDirection(0, 0, -2, true);
    ExpectNear(light.record.Position, {3, 5, 7});
    ExpectNear(light.record.Direction, {0, 0, -1});
    D3DXMATRIX pivot, moved;
    D3DXMatrixTranslation(&pivot, 10, 0, 0);
    D3DXMatrixTranslation(&moved, 0, 0, 100);
    light.SetPivotMatrix(pivot);
    light.ApplyOrientation(&moved);
    ExpectNear(light.record.Position, {13, 5, 107});
    ExpectNear(light.record.Direction, {0, 0, -1});
}

}   // namespace
}   // namespace sparkrig
