#include "gfx/device_life.h"

#include "gfx/device/display_modes.h"

namespace sparkrig {

namespace {

constexpr DWORD kClipping = TRUE, kPatchEdgeStyle = 0;   // kept numbers that nothing else sets

LONG Width(const RECT& rectangle) { return rectangle.right - rectangle.left; }
LONG Height(const RECT& rectangle) { return rectangle.bottom - rectangle.top; }

D3DPRESENT_PARAMETERS PresentParameters(GfxParts& parts) {
    const D3DPRESENT_PARAMETERS parameters = BuildPresentParameters(parts.graphics.Reporter(), parts.presentation);
    parts.graphics.Environment().client_rectangle(parts.presentation.window, parts.client_rectangle);
    return parameters;
}

void SetWholeViewport(GfxParts& parts) {
    const D3DVIEWPORT9 whole = {0, 0, parts.targets.Width(), parts.targets.Height(), 0.0f, 1.0f};
    SetViewport(parts, whole);
}

// ---- Creation

void ChooseDisplayMode(GfxParts& parts, const DeviceRequest& request) {
    const GraphicsDevice& graphics = parts.graphics;
    parts.presentation = request.presentation;
    if (parts.presentation.windowed) {
        graphics.Require(graphics.Direct3D().GetAdapterDisplayMode(D3DADAPTER_DEFAULT, &parts.presentation.mode),
                         "GetAdapterDisplayMode failed: ");
    } else if (!request.mode) {
        graphics.Reporter().Error("No displaymode specified!");
    } else {
        parts.presentation.mode = *request.mode;
    }
}

void SetFirstStates(GfxParts& parts) {
    parts.states.points.SetFillMode(static_cast<int>(D3DFILL_SOLID), nullptr);
    parts.states.depth.SetMode(parts.presentation.z_buffer_bits > 0 ? 1 : 0);
    parts.targets.Fetch(parts.presentation.z_buffer_bits);
    SetWholeViewport(parts);
    parts.states.transforms.SetProjection(1.0f, 10000.0f, Transforms::kFieldOfView, Transforms::kDerivedAspect);
    parts.states.lighting.Set(true, nullptr);
    parts.states.lighting.SetSpecular(false);
    parts.states.blending.Set(1, 255, 0);
    parts.states.sender.SendRenderState(D3DRS_DITHERENABLE, DWORD{TRUE});
    parts.states.render_sources.Set(kSourceTextureDiffuse, 0, 0);
}

void SetLastStates(GfxParts& parts) {
    parts.immediate.Create(parts.lists);
    parts.text_drawer.CreateVertexList();
    parts.states.lighting.SetNormalizeNormals(true);
    parts.states.bindings.SetSoftwareProcessing(false);
    parts.states.samplers.SetDefaults();
    parts.states.culling.Set(-1);
    parts.states.fog.Set(FogSettings());
    parts.states.fog.Enable(false);
}

// ---- Reset

/// Pumps window messages while the device is lost. Returns whether it was.
bool WaitForDevice(GfxParts& parts) {
    bool was_lost = false;
    while (parts.graphics.Device()->TestCooperativeLevel() == D3DERR_DEVICELOST) {
        was_lost = true;
        parts.graphics.Environment().pump_message();
    }
    return was_lost;
}

void ReleaseDefaultPool(GfxParts& parts) {
    parts.surfaces.ReleaseDefaultPool();
    parts.textures.ReleaseDefaultPool();
    parts.texture_stages.Forget();
    parts.shader_effects.OnLostDevice();
    parts.states.ForgetDevice();
    parts.pass_switch.Forget();
    parts.screen_buffers.Release();
    parts.targets.Release();
}

/// Waits again when the device was lost once more since it was waited for, which is no failure. Returns whether it was.
bool ResetUntilUsable(GfxParts& parts) {
    IDirect3DDevice9& device = *parts.graphics.Device();
    bool was_lost = false;
    while (true) {
        D3DPRESENT_PARAMETERS parameters = PresentParameters(parts);
        const HRESULT result = device.Reset(&parameters);
        const bool lost_again = result == D3DERR_DEVICELOST &&
                                (WaitForDevice(parts) || device.TestCooperativeLevel() == D3DERR_DEVICENOTRESET);
        if (!lost_again) parts.graphics.Require(result, "Device Reset failed: ");
        if (!lost_again) return was_lost;
        was_lost = true;
    }
}

/// The viewport stays where it was; one that covered the whole back buffer, or that leaves the new one, becomes whole.
void ReapplyViewport(GfxParts& parts, UINT old_width, UINT old_height) {
    const D3DVIEWPORT9 kept = parts.states.transforms.Viewport();
    const bool was_whole = kept.X == 0 && kept.Y == 0 && kept.Width == old_width && kept.Height == old_height;
    const bool fits = kept.X + kept.Width <= parts.targets.Width() && kept.Y + kept.Height <= parts.targets.Height();
    if (was_whole || !fits || FAILED(parts.states.transforms.SetViewport(kept))) SetWholeViewport(parts);
}

void ReapplyStates(GfxParts& parts, UINT old_width, UINT old_height) {
    const D3DCOLOR texture_factor = parts.states.texture_factor.Colour();
    ReapplyViewport(parts, old_width, old_height);
    parts.states.transforms.SetProjection(parts.states.transforms.Near(), parts.states.transforms.Far(),
                                          Transforms::kFieldOfView, Transforms::kDerivedAspect);
    parts.states.transforms.Set(D3DTS_VIEW, parts.states.transforms.View());
    parts.states.lighting.Reapply();
    parts.states.render_sources.Reapply();   // before the blending mode, which may set the same stage
    parts.states.blending.Reapply(0);
    parts.states.texture_factor.Set(texture_factor);   // the two before may have left their own
    parts.states.culling.Set(parts.states.culling.Mode());
    parts.states.fog.Set(parts.states.fog.Settings());
    parts.states.fog.Enable(parts.states.fog.Enabled());
    parts.states.sender.SendRenderState(D3DRS_CLIPPING, kClipping);
    parts.states.alpha_cutoff.Reapply();
    parts.states.sender.SendRenderState(D3DRS_PATCHEDGESTYLE, kPatchEdgeStyle);
    parts.states.points.Reapply();
    parts.states.depth.Reapply();
    parts.states.samplers.Reapply();
    parts.gamma.Reapply();
}

/// What creation set and the program may have changed since, beyond the states above.
void ReapplyRest(GfxParts& parts) {
    parts.states.sender.SendRenderState(D3DRS_DITHERENABLE, DWORD{TRUE});
    parts.states.lighting.ReapplyMaterial();
    parts.states.lights.Reapply();
    parts.states.transforms.Set(D3DTS_WORLD, parts.states.transforms.World());
    parts.states.bindings.SetSoftwareProcessing(false);
}

}   // namespace

void InitDevice(GfxParts& parts, const DeviceRequest& request) {
    ChooseDisplayMode(parts, request);
    const D3DPRESENT_PARAMETERS parameters = PresentParameters(parts);
    parts.graphics.Create(parts.presentation.window, request.choice, parameters);
    parts.states.ForgetDevice();
    SetFirstStates(parts);
    parts.graphics.CreateEffectPool();
    parts.frames.Start(parts.graphics.Environment().seconds());
    SetLastStates(parts);
}

int ResetDevice(GfxParts& parts, const D3DDISPLAYMODE* mode, int vsync) {
    bool was_lost = WaitForDevice(parts);
    const UINT old_width = parts.targets.Width(), old_height = parts.targets.Height();
    ReleaseDefaultPool(parts);
    const bool post_render = parts.post_render.On();
    parts.post_render.Release();
    if (mode) parts.presentation.mode = *mode;
    if (vsync >= 0) parts.presentation.vsync = vsync;
    was_lost |= ResetUntilUsable(parts);

    parts.shader_effects.OnResetDevice();
    parts.targets.Fetch(parts.presentation.z_buffer_bits);
    ReapplyStates(parts, old_width, old_height);
    ReapplyRest(parts);
    if (post_render) parts.post_render.Init();
    parts.catalogue.Restore();
    return was_lost ? 0 : 1;
}

int SetViewport(GfxParts& parts, const D3DVIEWPORT9& viewport) {
    const HRESULT result = parts.states.transforms.SetViewport(viewport);
    if (SUCCEEDED(result)) return 1;
    if (!parts.presentation.windowed) parts.graphics.Require(result, "SetViewPort failed: ");
    parts.graphics.Reporter().Warning("SetViewPort failed: %s", DXGetErrorString9(result));
    return 0;
}

int PresentFrame(GfxParts& parts) {
    const GraphicsDevice& graphics = parts.graphics;
    if (parts.presentation.windowed) {
        RECT client = {};
        graphics.Environment().client_rectangle(parts.presentation.window, client);
        const bool resized =
            Width(client) != Width(parts.client_rectangle) || Height(client) != Height(parts.client_rectangle);
        parts.client_rectangle = client;
        if (resized) {
            ResetDevice(parts, nullptr, -1);
            return 0;
        }
    }
    const HRESULT result = graphics.Device()->Present(nullptr, nullptr, nullptr, nullptr);
    parts.frames.Presented(graphics.Environment().seconds());
    parts.frame_cache.NextFrame();
    parts.statistics.NextFrame();
    if (SUCCEEDED(result)) return 1;
    if (result == D3DERR_DRIVERINTERNALERROR) {
        graphics.Reporter().Warning("Present failed! %s", DXGetErrorString9(result));
    } else if (result != D3DERR_DEVICELOST) {
        graphics.Reporter().Error("Present failed! %s", DXGetErrorString9(result));
    }
    ResetDevice(parts, nullptr, -1);
    return 0;
}

}   // namespace sparkrig
