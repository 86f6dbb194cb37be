#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/matrices.h"

namespace sparkrig {
namespace {

constexpr float kTolerance = 1e-5f, kQuarter = 1.5707963f;
constexpr D3DXMATRIX kSheared = {{{2, 0.5f, -1, 0.25f}, {3, -2, 0.75f, 0.5f}, {-0.5f, 4, 1.5f, -0.25f}, {5, -6, 7, 2}}};

void ExpectNear(const D3DXVECTOR3& found, const D3DXVECTOR3& expected, const char* what) {
    EXPECT_LT(D3DXVec3Length(found - expected), kTolerance)
        << what << ": " << found.x << ", " << found.y << ", " << found.z;
}
D3DXVECTOR3 Moved(const D3DXVECTOR3& v, const D3DXMATRIX& matrix) {
    D3DXVECTOR3 out;
    return *D3DXVec3TransformCoord(&out, &v, &matrix);
}
D3DXQUATERNION Quaternion(const D3DXVECTOR3& axis, float angle) {
    D3DXQUATERNION q;
    return *D3DXQuaternionRotationAxis(&q, &axis, angle);
}
D3DXQUATERNION operator*(const D3DXQUATERNION& a, const D3DXQUATERNION& b) {
    D3DXQUATERNION product;
    return *D3DXQuaternionMultiply(&product, &a, &b);
}
D3DXMATRIX Matrix(const D3DXQUATERNION& q) {
    D3DXMATRIX matrix;
    return *D3DXMatrixRotationQuaternion(&matrix, &q);
}

TEST(D3dxVectors, NormalisesToLengthOneAndKeepsZero) {
    D3DXVECTOR3 v(2, -3, 6), zero;
    EXPECT_FLOAT_EQ(D3DXVec3Length(v), 7);
    ExpectNear(*D3DXVec3Normalize(&v, &v), {2 / 7.0f, -3 / 7.0f, 6 / 7.0f}, "unit");
    EXPECT_EQ(*D3DXVec3Normalize(&zero, &zero), D3DXVECTOR3());
    D3DXQUATERNION q{1, -2, 4, 2}, none{0, 0, 0, 0};
    EXPECT_EQ(*D3DXQuaternionNormalize(&q, &q), (D3DXQUATERNION{0.2f, -0.4f, 0.8f, 0.4f}));
    EXPECT_EQ(*D3DXQuaternionNormalize(&none, &none), (D3DXQUATERNION{0, 0, 0, 0}));
}

TEST(D3dxMatrices, MovePoints) {
    const D3DXVECTOR3 v(2, -3, 4), axis(2, -1, 0.5f), eye(0, 200, 100), target(0, 0, 100), up(0, 0, 1);
    const D3DXQUATERNION a = Quaternion({0.2f, 1, -0.4f}, 0.7f), b = Quaternion({1, -0.3f, 0.5f}, -1.9f);
    D3DXMATRIX lens, view, in_place = Translation(5, 6, 7);
    D3DXMatrixPerspectiveFovLH(&lens, 0.9f, 1.5f, 2, 50);
    EXPECT_EQ(lens.m[2][3], 1.0f);
    D3DXMatrixLookAtLH(&view, &eye, &target, &up);
    const D3DXMATRIX scaling = Scaling(2, 3, 4);
    D3DXMatrixMultiply(&in_place, &in_place, &scaling);
    const float half_height = 10 * std::tan(0.45f);   // at distance 10
    const std::tuple<const char*, D3DXMATRIX, D3DXVECTOR3, D3DXVECTOR3> kRows[] = {
        {"divided by w", kSheared, {2, 3, 4}, {16 / 3.0f, 5 / 3.0f, 13.25f / 3.0f}},   // (16, 5, 13.25, 3)
        {"scaled, then moved", scaling * Translation(5, 6, 7), {-1, 2, 0.5f}, {3, 12, 9}},
        {"moved, then scaled", in_place, {-1, 2, 0.5f}, {8, 24, 30}},
        {"x to y about z", Rotation({0, 0, 3}, kQuarter), {2, 0, 5}, {0, 2, 5}},
        {"y to z about x", Rotation({0.5f, 0, 0}, kQuarter), {4, 2, 0}, {4, 0, 2}},
        {"z to x about y", Rotation({0, 7, 0}, kQuarter), {0, 3, 2}, {2, 3, 0}},
        {"about no axis", Rotation({0, 0, 0}, 0.8f), v, v * std::cos(0.8f)},   // by the formula
        {"on the near plane", lens, {0, 0, 2}, {0, 0, 0}},
        {"on the far plane", lens, {0, 0, 50}, {0, 0, 1}},
        {"in a corner", lens, {half_height * 1.5f, half_height, 10}, {1, 1, 50 / 48.0f * (1 - 2 / 10.0f)}},
        {"the eye", view, eye, {0, 0, 0}},
        {"the target", view, target, {0, 0, 200}},
        {"right of the eye", view, {3, 200, 100}, {3, 0, 0}},
        {"turned by a quaternion", Matrix(Quaternion(axis, 1.3f)), v, Moved(v, Rotation(axis, 1.3f))},
        {"by a product, the first one first", Matrix(a * b), v, Moved(Moved(v, Matrix(a)), Matrix(b))},
    };
    for (const auto& [name, matrix, from, to] : kRows) ExpectNear(Moved(from, matrix), to, name);
    D3DXVECTOR3 direction(2, 3, 4);   // which nothing shifts or divides
    ExpectNear(*D3DXVec3TransformNormal(&direction, &direction, &kSheared), {11, 11, 6.25f}, "a direction");
}

TEST(D3dxMatrices, AreInvertedUnlessTheyAreSingularAndTransposed) {
    D3DXMATRIX inverse, transposed, out = kSheared;
    float determinant = 0;
    ASSERT_NE(D3DXMatrixInverse(&inverse, &determinant, &kSheared), nullptr);
    EXPECT_NEAR(determinant, D3DXMatrixDeterminant(&kSheared), kTolerance);
    const D3DXMATRIX product = kSheared * inverse, flat = Scaling(2, 0, 3);
    D3DXMatrixTranspose(&transposed, &kSheared);
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            EXPECT_NEAR(product.m[row][column], row == column, kTolerance);
            EXPECT_EQ(transposed.m[row][column], kSheared.m[column][row]);
        }
    }
    EXPECT_EQ(D3DXMatrixInverse(&out, &determinant, &flat), nullptr);
    EXPECT_EQ(out, kSheared);
    EXPECT_EQ(determinant, 0);
    D3DXMATRIX mirrored = Scaling(2, -3, 4);
    mirrored.m[3][3] = 0.5f;
    EXPECT_FLOAT_EQ(D3DXMatrixDeterminant(&mirrored), -12);
}

TEST(D3dxQuaternions, AxisAngleInvertsRotationAxis) {
    const D3DXQUATERNION q = Quaternion({0, 3, 4}, 2.2f), identity;
    D3DXVECTOR3 axis;
    float angle = 0;
    D3DXQuaternionToAxisAngle(&q, &axis, &angle);
    ExpectNear(axis, {0, 0.6f, 0.8f}, "axis");
    EXPECT_NEAR(angle, 2.2f, kTolerance);
    D3DXQuaternionToAxisAngle(&identity, &axis, &angle);
    EXPECT_EQ(axis, D3DXVECTOR3());
    EXPECT_EQ(angle, 0);
}

TEST(D3dxQuaternions, SlerpTurnsEvenlyAlongTheShorterArcAndBeyondItsEnds) {
    const D3DXQUATERNION a = Quaternion({0, 0, 1}, 0.3f), b = Quaternion({0, 0, 1}, 1.5f);
    const D3DXQUATERNION minus_b{-b.x, -b.y, -b.z, -b.w};
    const auto turned = [&](const D3DXQUATERNION& to, float t) {
        D3DXQUATERNION between;
        return Moved({1, 0, 0}, Matrix(*D3DXQuaternionSlerp(&between, &a, &to, t)));
    };
    for (const float t : {-1 / 3.0f, 0.0f, 0.25f, 1.0f, 1.5f}) {
        const D3DXVECTOR3 expected{std::cos(0.3f + 1.2f * t), std::sin(0.3f + 1.2f * t), 0};
        ExpectNear(turned(b, t), expected, "the short way");
        ExpectNear(turned(minus_b, t), expected, "the other name");
    }
    ExpectNear(turned(a, 0.5f), {std::cos(0.3f), std::sin(0.3f), 0}, "nowhere");
}

}   // namespace
}   // namespace sparkrig
