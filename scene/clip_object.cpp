#include "scene/clip_object.h"

#include <algorithm>
#include <iterator>

namespace sparkrig {

namespace {

constexpr std::uint32_t kTestSphere = 1, kTestBox = 2;

/// How far the point lies outside the plane; negative inside.
float Outside(const ViewPlane& plane, const D3DXVECTOR3& point) {
    return D3DXVec3Dot(plane.normal, point - plane.point);
}

/// The plane on which a x + b y + c z + d is 0; inside is where it is positive.
ViewPlane MakePlane(float a, float b, float c, float d) {
    const D3DXVECTOR3 inward(a, b, c);
    const float length = D3DXVec3Length(inward);
    if (length == 0) return {};   // cuts nothing off
    const D3DXVECTOR3 unit = inward * (1 / length);
    return {unit * (-d / length), -unit};
}

/// One of the eight corners, moved by the matrix.
D3DXVECTOR3 Corner(const KRN_ClipObject& bounds, int i, const D3DXMATRIX& matrix) {
    const D3DXVECTOR3 &low = bounds.box_minimum, &high = bounds.box_maximum;
    D3DXVECTOR3 corner(i & 1 ? high.x : low.x, i & 2 ? high.y : low.y, i & 4 ? high.z : low.z);
    return *D3DXVec3TransformCoord(&corner, &corner, &matrix);
}

enum class Verdict { Visible, Invisible, Open };

Verdict TestSphere(const ViewPlane (&planes)[6], const D3DXVECTOR3& centre, float radius) {
    bool inside_all = true;
    for (const ViewPlane& plane : planes) {
        const float distance = Outside(plane, centre);
        if (distance > radius) return Verdict::Invisible;
        inside_all &= distance <= 0;
    }
    return inside_all ? Verdict::Visible : Verdict::Open;
}

Verdict TestBox(const ViewPlane (&planes)[6], const KRN_ClipObject& bounds, const D3DXMATRIX& world) {
    int outside[6] = {};   // corners outside each plane
    for (int i = 0; i < 8; ++i) {
        const D3DXVECTOR3 corner = Corner(bounds, i, world);
        bool inside_all = true;
        for (int p = 0; p < 6; ++p) {
            const bool is_outside = Outside(planes[p], corner) > 0;
            outside[p] += is_outside;
            inside_all &= !is_outside;
        }
        if (inside_all) return Verdict::Visible;
    }
    return std::ranges::find(outside, 8) != std::end(outside) ? Verdict::Invisible : Verdict::Open;
}

/// The largest length of the first three columns.
float LargestScale(const D3DXMATRIX& matrix) {
    float largest = 0;
    for (int column = 0; column < 3; ++column) {
        const D3DXVECTOR3 v(matrix.m[0][column], matrix.m[1][column], matrix.m[2][column]);
        largest = std::max(largest, D3DXVec3Length(v));
    }
    return largest;
}

}   // namespace

D3DXVECTOR3 Smaller(const D3DXVECTOR3& a, const D3DXVECTOR3& b) {
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

D3DXVECTOR3 Larger(const D3DXVECTOR3& a, const D3DXVECTOR3& b) {
    return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

KRN_ClipObject TransformedBounds(const KRN_ClipObject& bounds, const D3DXMATRIX& matrix) {
    KRN_ClipObject moved;
    moved.clip_mode = bounds.clip_mode;
    D3DXVec3TransformCoord(&moved.sphere_centre, &bounds.sphere_centre, &matrix);
    moved.sphere_radius = bounds.sphere_radius * LargestScale(matrix);
    moved.box_minimum = moved.box_maximum = Corner(bounds, 0, matrix);
    for (int i = 1; i < 8; ++i) {
        const D3DXVECTOR3 corner = Corner(bounds, i, matrix);
        moved.box_minimum = Smaller(moved.box_minimum, corner);
        moved.box_maximum = Larger(moved.box_maximum, corner);
    }
    return moved;
}

void ComputeViewPlanes(const D3DXMATRIX& view, const D3DXMATRIX& projection, ViewPlane (&planes)[6]) {
    D3DXMATRIX clip;
    D3DXMatrixMultiply(&clip, &view, &projection);
    const auto plane = [&](float w, float sign, int column) {
        const auto element = [&](int row) { return w * clip.m[row][3] + sign * clip.m[row][column]; };
        return MakePlane(element(0), element(1), element(2), element(3));
    };
    planes[0] = plane(1, 1, 0);    // left:   -w <= x
    planes[1] = plane(1, -1, 0);   // right:   x <= w
    planes[2] = plane(1, 1, 1);    // bottom: -w <= y
    planes[3] = plane(1, -1, 1);   // top:     y <= w
    planes[4] = plane(0, 1, 2);    // near:    0 <= z
    planes[5] = plane(1, -1, 2);   // far:     z <= w
}

bool SphereVisible(const ViewPlane (&planes)[6], const D3DXVECTOR3& centre, float radius) {
    return TestSphere(planes, centre, radius) != Verdict::Invisible;
}

bool BoundsVisible(const ViewPlane (&planes)[6], const KRN_ClipObject& bounds, const D3DXMATRIX& world) {
    if (bounds.clip_mode & kTestSphere) {
        D3DXVECTOR3 centre;
        D3DXVec3TransformCoord(&centre, &bounds.sphere_centre, &world);
        const Verdict verdict = TestSphere(planes, centre, bounds.sphere_radius * LargestScale(world));
        if (verdict != Verdict::Open) return verdict == Verdict::Visible;
    }
    if (bounds.clip_mode & kTestBox) return TestBox(planes, bounds, world) != Verdict::Invisible;
    return true;
}

}   // namespace sparkrig
