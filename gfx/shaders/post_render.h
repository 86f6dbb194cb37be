// With post-render effects on, the scene is drawn into a texture, from which an effect takes it to the screen.
#pragma once
#include "gfx/device/render_targets.h"
#include "gfx/device/surface_registry.h"

namespace sparkrig {

class PostRender {
  public:
    PostRender(const GraphicsDevice& graphics, const RenderTargets& targets, SurfaceRegistry& surfaces)
        : graphics_(graphics), targets_(targets), surfaces_(surfaces) {}

    /// Whether Init makes a target with several samples a pixel. Initially off; switched off by a device that has none.
    void SetMultisampleTarget(bool wish) { multisample_ = wish; }
    bool MultisampleTarget() const { return multisample_; }

    /// Makes texture and target in the size of the back buffer and switches post-render effects on.
    void Init();
    /// Off: nothing is held.
    void Release();
    bool On() const { return on_; }

    /// What the scene is drawn into; null while off. Borrowed.
    IDirect3DSurface9* SceneSurface() const { return surfaces_.Get(surface_); }
    /// The scene as drawn so far, the samples of a pixel put together; null while off. Borrowed.
    IDirect3DTexture9* SceneTexture() const;

    /// The scene is being drawn into its surface: between BeginScene and EndScene.
    void SetInScene(bool in_scene) { in_scene_ = in_scene; }
    bool InScene() const { return in_scene_; }
    /// The scene is on its way to the screen: its texture stands for the copy of the screen.
    void SetDrawing(bool drawing) { drawing_ = drawing; }
    bool Drawing() const { return drawing_; }

  private:
    bool MakeMultisampleSurface();
    DevicePtr<IDirect3DSurface9> Level0() const;

    const GraphicsDevice& graphics_;
    const RenderTargets& targets_;
    SurfaceRegistry& surfaces_;
    DevicePtr<IDirect3DTexture9> texture_;
    int surface_ = -1;   // in surfaces_: level 0 of the texture, or one of its own
    bool multisample_ = false;
    bool resolves_ = false;   // the surface is one of its own
    bool on_ = false;
    bool in_scene_ = false, drawing_ = false;
};

}   // namespace sparkrig
