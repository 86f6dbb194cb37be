#include "gfx/states/transforms.h"

namespace sparkrig {

namespace {

void ScaleToUnitDepth(D3DXMATRIX& projection) {
    const float scale = projection.m[2][3];
    if (scale == 1.0f || scale == 0.0f) return;   // 0: a parallel projection has nothing to scale by
    for (auto& row : projection.m) {
        for (float& element : row) element /= scale;
    }
}

}   // namespace

void Transforms::Set(D3DTRANSFORMSTATETYPE kind, const D3DXMATRIX& matrix) {
    D3DXMATRIX value = matrix;
    if (kind == D3DTS_PROJECTION) ScaleToUnitDepth(value);
    if (kind == D3DTS_WORLD) world_ = value;
    if (kind == D3DTS_VIEW) view_ = value;
    if (kind == D3DTS_PROJECTION) projection_ = value;
    planes_stale_ |= kind == D3DTS_VIEW || kind == D3DTS_PROJECTION;
    sender_.SetTransform(kind, value);
}

void Transforms::SetView(const D3DXVECTOR3& eye, const D3DXVECTOR3& direction, const D3DXVECTOR3& up) {
    const D3DXVECTOR3 at = eye + direction;
    D3DXMATRIX view;
    D3DXMatrixLookAtLH(&view, &eye, &at, &up);
    for (auto& row : view.m) row[0] = -row[0];   // its x axis is up x direction: the left of a right-handed world
    Set(D3DTS_VIEW, view);
}

void Transforms::SetNearFar(float z_near, float z_far) {
    near_ = z_near;
    far_ = z_far;
}

float Transforms::ViewportAspect() const {
    if (viewport_.Width == 0 || viewport_.Height == 0) return aspect_factor_;   // the device refused every viewport
    return static_cast<float>(viewport_.Width) * aspect_factor_ / static_cast<float>(viewport_.Height);
}

void Transforms::SetProjection(float z_near, float z_far, float fov, float aspect) {
    if (aspect == kDerivedAspect) aspect = ViewportAspect();
    SetNearFar(z_near, z_far);
    D3DXMATRIX projection;
    D3DXMatrixPerspectiveFovLH(&projection, fov, aspect, z_near, z_far);
    Set(D3DTS_PROJECTION, projection);
}

void Transforms::MirrorProjection() {
    D3DXMATRIX mirror;
    D3DXMatrixScaling(&mirror, -1, 1, 1);
    D3DXMATRIX mirrored;
    D3DXMatrixMultiply(&mirrored, &projection_, &mirror);
    culling_.Set(-culling_.Mode());
    Set(D3DTS_PROJECTION, mirrored);
}

HRESULT Transforms::SetViewport(const D3DVIEWPORT9& viewport) {
    const HRESULT result = targets_.SetViewport(viewport);
    if (SUCCEEDED(result)) viewport_ = viewport;
    return result;
}

D3DXVECTOR3 Transforms::CameraPosition() const {
    D3DXMATRIX inverse = kIdentityMatrix;
    D3DXMatrixInverse(&inverse, nullptr, &view_);
    return {inverse.m[3][0], inverse.m[3][1], inverse.m[3][2]};
}

D3DXVECTOR3 Transforms::PixelRay(int x, int y) const {
    const auto part = [](int pixel, DWORD origin, DWORD size) {
        return size == 0 ? 0.0f
                         : (static_cast<float>(pixel) - static_cast<float>(origin)) * 2 / static_cast<float>(size) - 1;
    };
    const D3DXVECTOR3 in_camera(part(x, viewport_.X, viewport_.Width) / projection_.m[0][0],
                                -part(y, viewport_.Y, viewport_.Height) / projection_.m[1][1], 1.0f);
    D3DXMATRIX inverse = kIdentityMatrix;
    D3DXMatrixInverse(&inverse, nullptr, &view_);
    D3DXVECTOR3 ray;
    D3DXVec3TransformNormal(&ray, &in_camera, &inverse);
    D3DXVec3Normalize(&ray, &ray);
    return ray;
}

const ViewPlane (&Transforms::Planes() const)[6] {
    if (planes_stale_) {
        ComputeViewPlanes(view_, projection_, planes_);
        planes_stale_ = false;
    }
    return planes_;
}

}   // namespace sparkrig
