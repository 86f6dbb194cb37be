#include <gtest/gtest.h>

#include <cmath>

#include "platform/d3dx/d3dx_math.h"

namespace sparkrig {
namespace {

constexpr float kTolerance = 1e-5f;
constexpr D3DXMATRIX kSheared = {{{2, 0.5f, -1, 0.25f}, {3, -2, 0.75f, 0.5f}, {-0.5f, 4, 1.5f, -0.25f}, {5, -6, 7, 2}}};

void ExpectNear(const D3DXVECTOR3& found, const D3DXVECTOR3& expected) {
    EXPECT_NEAR(found.x, expected.x, kTolerance);
    EXPECT_NEAR(found.y, expected.y, kTolerance);
    EXPECT_NEAR(found.z, expected.z, kTolerance);
}

void ExpectNear(const D3DXMATRIX& found, const D3DXMATRIX& expected) {
    for (int i = 0; i < 16; ++i) EXPECT_NEAR(found.m[i / 4][i % 4], expected.m[i / 4][i % 4], kTolerance) << i;
}

D3DXVECTOR3 Moved(const D3DXVECTOR3& v, const D3DXMATRIX& matrix) {
    D3DXVECTOR3 out;
    return *D3DXVec3TransformCoord(&out, &v, &matrix);
}

D3DXVECTOR3 Turned(const D3DXVECTOR3& v, const D3DXQUATERNION& q) {
    D3DXMATRIX matrix;
    D3DXVECTOR3 out;
    return *D3DXVec3TransformNormal(&out, &v, D3DXMatrixRotationQuaternion(&matrix, &q));
}

D3DXQUATERNION Rotation(const D3DXVECTOR3& axis, float angle) {
    D3DXQUATERNION q;
    return *D3DXQuaternionRotationAxis(&q, &axis, angle);
}

TEST(D3dxVectors, NormalisesToLengthOneAndKeepsZero) {
    D3DXVECTOR3 v(2, -3, 6);
    EXPECT_FLOAT_EQ(D3DXVec3Length(v), 7);
    ExpectNear(*D3DXVec3Normalize(&v, &v), {2 / 7.0f, -3 / 7.0f, 6 / 7.0f});
    D3DXVECTOR3 zero;
    EXPECT_EQ(*D3DXVec3Normalize(&zero, &zero), D3DXVECTOR3());
}

TEST(D3dxVectors, TransformCoordDividesByWAndTransformNormalIgnoresTranslation) {
    const D3DXVECTOR3 v(2, 3, 4);
    D3DXVECTOR3 out;
    // (2, 3, 4, 1) x M = (16, 5, 13.25, 3)
    ExpectNear(*D3DXVec3TransformCoord(&out, &v, &kSheared), {16 / 3.0f, 5 / 3.0f, 13.25f / 3.0f});
    ExpectNear(*D3DXVec3TransformNormal(&out, &v, &kSheared), {11, 11, 6.25f});
}

TEST(D3dxMatrices, MultiplyAppliesTheFirstOperandFirst) {
    D3DXMATRIX scaling, translation, product;
    D3DXMatrixScaling(&scaling, 2, 3, 4);
    D3DXMatrixTranslation(&translation, 5, 6, 7);
    D3DXMatrixMultiply(&product, &scaling, &translation);
    ExpectNear(Moved({-1, 2, 0.5f}, product), {3, 12, 9});
    D3DXMatrixMultiply(&translation, &translation, &scaling);   // the output may be an input
    ExpectNear(Moved({-1, 2, 0.5f}, translation), {8, 24, 30});
}

TEST(D3dxMatrices, InverseUndoesTheMatrixUnlessItIsSingular) {
    D3DXMATRIX inverse, product, flat;
    float determinant = 0;
    ASSERT_NE(D3DXMatrixInverse(&inverse, &determinant, &kSheared), nullptr);
    EXPECT_NEAR(determinant, D3DXMatrixDeterminant(&kSheared), kTolerance);
    ExpectNear(*D3DXMatrixMultiply(&product, &kSheared, &inverse), kIdentityMatrix);
    D3DXMATRIX out = kSheared;
    D3DXMatrixScaling(&flat, 2, 0, 3);
    EXPECT_EQ(D3DXMatrixInverse(&out, &determinant, &flat), nullptr);
    EXPECT_EQ(out, kSheared);
    EXPECT_EQ(determinant, 0);
    D3DXMatrixScaling(&flat, 2, -3, 4);
    flat.m[3][3] = 0.5f;
    EXPECT_FLOAT_EQ(D3DXMatrixDeterminant(&flat), -12);
}

TEST(D3dxMatrices, TransposeSwapsRowsAndColumns) {
    D3DXMATRIX transposed;
    D3DXMatrixTranspose(&transposed, &kSheared);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(transposed.m[i / 4][i % 4], kSheared.m[i % 4][i / 4]);
}

TEST(D3dxMatrices, RotationAxisTurnsXTowardsYAboutZ) {
    constexpr float kQuarter = 1.5707963f;
    const struct {
        D3DXVECTOR3 axis, from, to;
    } kRows[] = {
        {{0, 0, 3}, {2, 0, 5}, {0, 2, 5}}, {{0.5f, 0, 0}, {4, 2, 0}, {4, 0, 2}}, {{0, 7, 0}, {0, 3, 2}, {2, 3, 0}}};
    D3DXMATRIX matrix;
    for (const auto& row : kRows)
        ExpectNear(Moved(row.from, *D3DXMatrixRotationAxis(&matrix, &row.axis, kQuarter)), row.to);
    const D3DXVECTOR3 zero, v(2, -3, 4);
    D3DXMatrixRotationAxis(&matrix, &zero, 0.8f);   // without an axis it scales by the cosine
    ExpectNear(Moved(v, matrix), v * std::cos(0.8f));
}

TEST(D3dxMatrices, PerspectiveMapsTheDepthRangeToZeroAndOne) {
    D3DXMATRIX matrix;
    D3DXMatrixPerspectiveFovLH(&matrix, 0.9f, 1.5f, 2, 50);
    EXPECT_EQ(matrix.m[2][3], 1.0f);
    const float half_height = 10 * std::tan(0.45f);   // at distance 10
    ExpectNear(Moved({0, 0, 2}, matrix), {0, 0, 0});
    ExpectNear(Moved({0, 0, 50}, matrix), {0, 0, 1});
    ExpectNear(Moved({half_height * 1.5f, half_height, 10}, matrix), {1, 1, 50 / 48.0f * (1 - 2 / 10.0f)});
}

TEST(D3dxMatrices, LookAtPutsTheEyeAtTheOriginAndTheTargetAhead) {
    D3DXMATRIX view;
    const D3DXVECTOR3 eye(0, 200, 100), target(0, 0, 100), up(0, 0, 1);
    D3DXMatrixLookAtLH(&view, &eye, &target, &up);
    ExpectNear(Moved(eye, view), {0, 0, 0});
    ExpectNear(Moved(target, view), {0, 0, 200});
    ExpectNear(Moved({3, 200, 100}, view), {3, 0, 0});   // right of the eye
}

TEST(D3dxQuaternions, ProductTurnsByTheFirstOperandFirst) {
    const D3DXQUATERNION a = Rotation({0.2f, 1, -0.4f}, 0.7f), b = Rotation({1, -0.3f, 0.5f}, -1.9f);
    D3DXQUATERNION product;
    D3DXQuaternionMultiply(&product, &a, &b);
    const D3DXVECTOR3 v(2, -3, 5);
    ExpectNear(Turned(v, product), Turned(Turned(v, a), b));
}

TEST(D3dxQuaternions, RotationAxisEqualsTheMatrixOfTheSameAxis) {
    const D3DXVECTOR3 axis(2, -1, 0.5f), v(2, -3, 5);
    D3DXMATRIX matrix;
    ExpectNear(Turned(v, Rotation(axis, 1.3f)), Moved(v, *D3DXMatrixRotationAxis(&matrix, &axis, 1.3f)));
}

TEST(D3dxQuaternions, AxisAngleInvertsRotationAxis) {
    const D3DXQUATERNION q = Rotation({0, 3, 4}, 2.2f), identity;
    D3DXVECTOR3 axis;
    float angle = 0;
    D3DXQuaternionToAxisAngle(&q, &axis, &angle);
    ExpectNear(axis, {0, 0.6f, 0.8f});
    EXPECT_NEAR(angle, 2.2f, kTolerance);
    D3DXQuaternionToAxisAngle(&identity, &axis, &angle);
    EXPECT_EQ(axis, D3DXVECTOR3());
    EXPECT_EQ(angle, 0);
}

TEST(D3dxQuaternions, NormaliseKeepsZero) {
    D3DXQUATERNION q{1, -2, 4, 2}, zero{0, 0, 0, 0};
    D3DXQuaternionNormalize(&q, &q);
    EXPECT_EQ(q, (D3DXQUATERNION{0.2f, -0.4f, 0.8f, 0.4f}));
    D3DXQuaternionNormalize(&zero, &zero);
    EXPECT_EQ(zero, (D3DXQUATERNION{0, 0, 0, 0}));
}

TEST(D3dxQuaternions, SlerpTurnsEvenlyAlongTheShorterArcAndBeyondItsEnds) {
    const D3DXVECTOR3 axis(0, 0, 1), x(1, 0, 0);
    const D3DXQUATERNION a = Rotation(axis, 0.3f), b = Rotation(axis, 1.5f);
    const D3DXQUATERNION minus_b{-b.x, -b.y, -b.z, -b.w};
    for (const float t : {-1 / 3.0f, 0.0f, 0.25f, 1.0f, 1.5f}) {
        const float angle = 0.3f + 1.2f * t;
        D3DXQUATERNION between;
        ExpectNear(Turned(x, *D3DXQuaternionSlerp(&between, &a, &b, t)), {std::cos(angle), std::sin(angle), 0});
        ExpectNear(Turned(x, *D3DXQuaternionSlerp(&between, &a, &minus_b, t)), {std::cos(angle), std::sin(angle), 0});
    }
    D3DXQUATERNION same;
    ExpectNear(Turned(x, *D3DXQuaternionSlerp(&same, &a, &a, 0.5f)), {std::cos(0.3f), std::sin(0.3f), 0});
}

}   // namespace
}   // namespace sparkrig
