#include "gfx/scene_frame.h"

#include "gfx/device/with_restore.h"
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
        SetViewport(parts, parts.states.transforms.Viewport());
    }
}

/// A scene of the device's own, which an error ends too.
class OpenScene {
  public:
    explicit OpenScene(const GraphicsDevice& graphics) : graphics_(graphics) {
        graphics_.Require(graphics_.Device()->BeginScene(), "BeginScene failed: ");
    }
    ~OpenScene() {
        if (open_) graphics_.Device()->EndScene();
    }
    void End() {
        open_ = false;
        graphics_.Require(graphics_.Device()->EndScene(), "EndScene failed: ");
    }
    OpenScene(const OpenScene&) = delete;
    OpenScene& operator=(const OpenScene&) = delete;

  private:
    const GraphicsDevice& graphics_;
    bool open_ = true;
};

/// Covers the viewport: whatever states the program left, nothing of what is there stays.
void DrawScreenSquare(GfxParts& parts) {
    const int culling = parts.states.culling.Mode();
    const auto draw = [&] {
        parts.states.blending.Suspend();
        parts.states.alpha_cutoff.Suspend();
        parts.states.culling.Set(0);
        parts.states.depth.PushOff();
        parts.lists.Draw(parts.immediate.quad, 0, -1);
    };
    WithRestore(draw, [&] {
        parts.states.depth.PopOff();
        parts.states.culling.Set(culling);
        parts.states.alpha_cutoff.Resume();
        parts.states.blending.Resume();
    });
}

}   // namespace

int BeginScene(GfxParts& parts) {
    if (parts.post_render.On()) {
        parts.targets.Set(parts.post_render.SceneSurface(), 0, "BeginScene (post effect SetRenderTarget) failed: ");
        parts.post_render.SetInScene(true);
        SetViewport(parts, parts.states.transforms.Viewport());
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

bool DrawScreenEffect(GfxParts& parts, KRN_ShaderEffect& effect) {
    if (!effect.Effect()) return false;
    KRN_ShaderEffect* const before = parts.effects.Force(&effect);
    WithRestore([&] { DrawScreenSquare(parts); }, [&] { parts.effects.Force(before); });
    return true;
}

bool DrawScene(GfxParts& parts, KRN_ShaderEffect& effect) {
    if (!parts.post_render.On() || !effect.Effect()) return false;
    const auto draw = [&] {
        parts.post_render.SetDrawing(true);
        if (const D3DXHANDLE scene = effect.ParameterBySemantic("SCREENCOPY"))
            effect.SetParameter(scene, parts.post_render.SceneTexture());
        OpenScene scene(parts.graphics);
        DrawScreenEffect(parts, effect);
        scene.End();
    };
    WithRestore(draw, [&] { parts.post_render.SetDrawing(false); });
    return true;
}

}   // namespace sparkrig
