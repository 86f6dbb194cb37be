// Nodes, nodes with a view, cameras and lights.

#include "scene/camera.h"
#include "scene/light.h"
#include "tests/scene/near.h"

namespace sparkrig {
namespace {

constexpr float kQuarterTurn = 1.5707963f;

D3DXQUATERNION QuarterTurnAboutZ() {
    const D3DXVECTOR3 z(0, 0, 1);
    D3DXQUATERNION q;
    D3DXQuaternionRotationAxis(&q, &z, kQuarterTurn);
    return {q.x * 3, q.y * 3, q.z * 3, q.w * 3};   // placing normalises
}

D3DXVECTOR3 Carried(const KRN_3dObject& node, D3DXVECTOR3 point) {
    return *D3DXVec3TransformCoord(&point, &point, &node.WorldMatrix());
}

TEST(Node, IsBuiltFromScaleThenRotationThenPositionWhenSomethingChanged) {
    Node node;
    node.SetScale(2, 3, 4, false);
    node.SetRotation(QuarterTurnAboutZ(), false);
    EXPECT_EQ(node.WorldMatrix(), kIdentityMatrix) << "not rebuilt yet";
    node.SetPosition(10, 20, 30, true);
    ExpectNear(Carried(node, {1, 1, 1}), {10 - 3, 20 + 2, 30 + 4});
    node.Animate(5, false, false);
    node.SetWorldMatrix(kIdentityMatrix);
    node.Animate(5, false, false);
    EXPECT_EQ(node.WorldMatrix(), kIdentityMatrix) << "the same time, nothing dirty";
    node.SetFrozen(true);
    node.Animate(5, true, false);
    EXPECT_EQ(node.WorldMatrix(), kIdentityMatrix) << "frozen";
    node.SetFrozen(false);
    node.Animate(5, true, false);
    ExpectNear(Carried(node, {}), {10, 20, 30});
}

/// Keys at 2 and 4 seconds: from (10, 20, 30) to (30, 60, -10), twice to four times the size, half a turn about z.
void AddKeys(NodeTracks& tracks) {
    constexpr auto kLinear = KeyInterpolation::Linear;
    tracks.position.Add(2, kLinear, {.value = {10, 20, 30}, .in_tangent = {}, .out_tangent = {}});
    tracks.position.Add(4, kLinear, {.value = {30, 60, -10}, .in_tangent = {}, .out_tangent = {}});
    tracks.scale.Add(2, kLinear, {{{2, 2, 2}, {}, {}}});
    tracks.scale.Add(4, kLinear, {{{4, 4, 4}, {}, {}}});
    tracks.rotation.Add(2, kLinear, {});
    KRN_RotKeyData half_turn;
    half_turn.rotation = {0, 0, 1, 0};
    tracks.rotation.Add(4, kLinear, half_turn);
}

TEST(AnimatedNode, TakesItsTimeFromTheLoop) {
    const std::tuple<double, bool, float> rows[] = {{-1, false, 20}, {99, false, 40}, {9, true, 35},     {-3, true, 35},
                                                    {5, true, 25},   {5, false, 40},  {5.5, true, 17.5f}};
    Node node;
    node.Tracks().position.Add(-2, KeyInterpolation::Linear, {{10, 2, 3}, {}, {}});
    node.Tracks().position.Add(4, KeyInterpolation::Linear, {{40, 5, 6}, {}, {}});
    node.RebuildLookupTables();
    node.SetAnimationLength(6);
    for (const auto& [time, loops, x] : rows) {
        node.SetLooping(loops);
        node.Animate(time, false, false);
        EXPECT_NEAR(node.CurrentPosition().x, x, 1e-4f) << time;
    }
}

/// A parent at (10, 20, 30), two, three and four times as large, turned by a quarter.
struct Family {
    Node parent, child;
    Family() {
        parent.SetPosition(10, 20, 30, false);
        parent.SetScale(2, 3, 4, false);
        parent.SetRotation(QuarterTurnAboutZ(), false);
        parent.Animate(0, true, false);
        child.SetPosition(5, 6, 7, false);
        child.SetParent(&parent);
    }
};

TEST(Hierarchy, ANodeTakesOverWhatItInherits) {
    const std::tuple<const char*, InheritFlags, D3DXVECTOR3, D3DXVECTOR3> rows[] = {
        {"all", {}, {10 - 18, 20 + 10, 30 + 28}, {10 - 18, 20 + 12, 30 + 28}},
        {"no position", {.position = false}, {-18, 10, 28}, {-18, 12, 28}},
        {"no scale", {.scale = false}, {10 - 6, 20 + 5, 30 + 7}, {10 - 6, 20 + 6, 30 + 7}},
        {"no rotation", {.rotation = false}, {10 + 10, 20 + 18, 30 + 28}, {10 + 12, 20 + 18, 30 + 28}},
        {"no signs", {.axis_signs = false}, {10 - 18, 20 + 10, 30 + 28}, {10 - 18, 20 + 12, 30 + 28}},
        {"nothing", {false, false, false, false}, {5, 6, 7}, {6, 6, 7}},
    };
    Family family;
    for (const auto& [name, inherits, at, one_x] : rows) {
        const testing::ScopedTrace trace(__FILE__, __LINE__, name);
        family.child.SetInheritance(inherits);
        family.child.Animate(0, false, false);
        ExpectNear(Carried(family.child, {}), at);
        ExpectNear(Carried(family.child, {1, 0, 0}), one_x);
    }
}

TEST(Hierarchy, TheParentIsPlacedFirstWhenAsked) {
    Family family;
    AddKeys(family.parent.Tracks());
    family.parent.RebuildLookupTables();
    family.child.Animate(3, true, false);
    ExpectNear(Carried(family.child, {}), {10 - 18, 20 + 10, 30 + 28});
    family.child.Animate(3, true, true);
    ExpectNear(Carried(family.child, {}), {20 - 18, 40 + 15, 10 + 21});
}

TEST(Hierarchy, RebuildingFollowsTheParentFullyAndOnce) {
    Family family;
    family.child.SetInheritance({false, false, false, false});
    family.child.Animate(0, true, false);
    family.parent.SetWorldMatrix(kIdentityMatrix);
    family.child.RebuildFromCurrent(false);
    ExpectNear(Carried(family.child, {}), {10 - 18, 20 + 10, 30 + 28});
    family.child.SetWorldMatrix(kIdentityMatrix);
    family.child.RebuildFromCurrent(false);
    EXPECT_EQ(family.child.WorldMatrix(), kIdentityMatrix);
    family.child.RebuildFromCurrent(true);
    ExpectNear(Carried(family.child, {}), {10 - 18, 20 + 10, 30 + 28});
    family.child.Animate(0, false, false);
    ExpectNear(Carried(family.child, {}), {5, 6, 7});
}

TEST(Hierarchy, MayBeDeepButNoNodeIsItsOwnAncestor) {
    std::vector<Node> line(100'000);
    for (std::size_t i = 0; i + 1 < line.size(); ++i) line[i].SetParent(&line[i + 1]);
    line.back().SetPosition(3, 5, 7, true);
    line.front().RebuildFromCurrent(true);
    ExpectNear(Carried(line.front(), {}), {3, 5, 7});
    const Reports reports;
    line.back().SetNodeName("Arm");
    line.front().SetNodeName("Hand");
    line.back().SetParent(&line.front());
    EXPECT_EQ(reports.Last(), "warning KRN_3dObject: Arm: Parent object 'Hand' descends from it");
    EXPECT_EQ(line.back().Parent(), nullptr);
}

TEST(CopyNode, CopiesTheNodeAndItsKeysIfAsked) {
    Family family;
    family.child.SetNodeName("Hand");
    family.child.SetKind(ObjectKind::Bone);
    AddKeys(family.child.Tracks());
    for (const bool with_keys : {true, false}) {
        Node copy;
        AddKeys(copy.Tracks());
        KRN_3dObject::CopyNode(family.child, copy, with_keys);
        EXPECT_EQ(copy.Name(), family.child.Name());
        EXPECT_EQ(copy.Kind(), ObjectKind::Bone);
        EXPECT_EQ(copy.Parent(), &family.parent);
        EXPECT_EQ(copy.Tracks().rotation.Count(), with_keys ? 2u : 0u);
        copy.SetParent(nullptr);
        copy.Animate(3, false, false);
        ExpectNear(Carried(copy, {}), with_keys ? D3DXVECTOR3(20, 40, 10) : D3DXVECTOR3(5, 6, 7));
        ExpectNear(copy.CurrentScale(), with_keys ? D3DXVECTOR3(3, 3, 3) : D3DXVECTOR3(1, 1, 1));
    }
}

TEST(Camera, LooksAtItsTarget) {
    KRN_Camera camera, target;
    camera.SetPosition(3, 5, 7, false);
    AddKeys(target.Tracks());
    target.RebuildLookupTables();
    camera.SetTarget(&target);
    target.SetTarget(&camera);   // two that look at each other
    camera.SetLooping(true);
    camera.SetAnimationLength(6);
    camera.Animate(9, false, false);   // in its own loop 3
    ExpectNear(camera.ViewDirection(), {17, 35, 3});
    EXPECT_EQ(camera.Up(), D3DXVECTOR3(0, 0, 1));
    target.Animate(4, false, false);
    ExpectNear(target.ViewDirection(), {-27, -55, 17});
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
