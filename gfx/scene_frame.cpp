#include "gfx/scene_frame.h"

#include "gfx/device_life.h"

namespace sparkrig {

namespace {

/// Back to the screen, or to the screen buffer of the pass around the scene.
void LeaveSceneTarget(GfxParts& parts) {
    if (!parts.post_render.InScene()) return;
    parts.post_render.SetInScene(false);
    if (IDirect3DSurface9* buffer = parts.pass_switch.Buffer()) {
        parts.targets.Set(buffer, 0);
    } else {
        parts.targets.Set(parts.targets.BackBuffer().Get(), 0);
        SetViewport(parts, parts.transforms.Viewport());
    }
}

/// While it lives, the effect draws the scene to the screen, and nothing else does.
class SceneDrawing {
  public:
    SceneDrawing(GfxParts& parts, KRN_ShaderEffect& effect) : parts_(parts), before_(parts.effects.Force(&effect)) {
        parts_.post_render.SetDrawing(true);
    }
    ~SceneDrawing() {
        parts_.post_render.SetDrawing(false);
        parts_.effects.Force(before_);
    }
    SceneDrawing(const SceneDrawing&) = delete;
    SceneDrawing& operator=(const SceneDrawing&) = delete;

  private:
    GfxParts& parts_;
    KRN_ShaderEffect* before_;
};

}   // namespace

int BeginScene(GfxParts& parts) {
    if (parts.post_render.On()) {
        parts.targets.Set(parts.post_render.SceneSurface(), 0, "BeginScene (post effect SetRenderTarget) failed: ");
        parts.post_render.SetInScene(true);
        SetViewport(parts, parts.transforms.Viewport());
    }
    parts.graphics.Require(parts.graphics.Device()->BeginScene(), "BeginScene failed: ");
    return 1;
}

int EndScene(GfxParts& parts) {
    parts.graphics.Require(parts.graphics.Device()->EndScene(), "EndScene failed: ");
    LeaveSceneTarget(parts);
    return 1;
}

void ReleasePostRenderEffects(GfxParts& parts) {
    LeaveSceneTarget(parts);
    parts.post_render.Release();
}

bool DrawScene(GfxParts& parts, KRN_ShaderEffect& effect) {
    if (!parts.post_render.On()) return false;
    const int culling = parts.culling.Mode();
    const SceneDrawing drawing(parts, effect);
    if (const D3DXHANDLE scene = effect.ParameterBySemantic("SCREENCOPY"))
        effect.SetParameter(scene, parts.post_render.SceneTexture());
    parts.graphics.Require(parts.graphics.Device()->BeginScene(), "BeginScene failed: ");
    parts.culling.Set(0);
    parts.depth.PushOff();
    parts.lists.Draw(parts.immediate.quad, 0, -1);
    parts.depth.PopOff();
    parts.culling.Set(culling);
    parts.graphics.Require(parts.graphics.Device()->EndScene(), "EndScene failed: ");
    return true;
}

}   // namespace sparkrig
