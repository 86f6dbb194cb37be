// World, view and projection, the viewport, and what follows from them: the camera, rays, and what is in view.
#pragma once
#include "gfx/device/render_targets.h"
#include "gfx/states/culling.h"
#include "gfx/states/state_sender.h"
#include "platform/d3dx/d3dx_math.h"
#include "scene/clip_object.h"

namespace sparkrig {

class Transforms {
  public:
    static constexpr float kFieldOfView = 0.7854f;   // radians, of the projection after creation and reset
    static constexpr float kDerivedAspect = -1.0f;

    Transforms(StateSender& sender, CullingState& culling, RenderTargets& targets)
        : sender_(sender), culling_(culling), targets_(targets) {}

    /// A projection is scaled so that its element _34 is 1. World, view and projection are kept.
    void Set(D3DTRANSFORMSTATETYPE kind, const D3DXMATRIX& matrix);
    const D3DXMATRIX& World() const { return world_; }
    const D3DXMATRIX& View() const { return view_; }
    const D3DXMATRIX& Projection() const { return projection_; }

    /// The view of a camera: direction x up is the screen's right, so that the right-handed world is not mirrored.
    void SetView(const D3DXVECTOR3& eye, const D3DXVECTOR3& direction, const D3DXVECTOR3& up);
    /// fov in radians from bottom to top; kDerivedAspect takes the viewport's.
    void SetProjection(float z_near, float z_far, float fov, float aspect);
    void SetNearFar(float z_near, float z_far);   // kept without sending
    float Near() const { return near_; }
    float Far() const { return far_; }
    void SetAspectFactor(float factor) { aspect_factor_ = factor; }
    /// Mirrors the picture left to right, and culling with it.
    void MirrorProjection();

    /// The device's answer; kept when the device takes it.
    HRESULT SetViewport(const D3DVIEWPORT9& viewport);
    const D3DVIEWPORT9& Viewport() const { return viewport_; }

    D3DXVECTOR3 CameraPosition() const;
    D3DXVECTOR3 PixelRay(int x, int y) const;
    const ViewPlane (&Planes() const)[6];

  private:
    float ViewportAspect() const;

    StateSender& sender_;
    CullingState& culling_;
    RenderTargets& targets_;
    D3DXMATRIX world_ = kIdentityMatrix, view_ = kIdentityMatrix, projection_ = kIdentityMatrix;
    float near_ = 1.0f, far_ = 10000.0f;
    float aspect_factor_ = 1.0f;
    D3DVIEWPORT9 viewport_ = {};
    mutable bool planes_stale_ = true;   // view, projection or viewport changed
    mutable ViewPlane planes_[6];
};

}   // namespace sparkrig
