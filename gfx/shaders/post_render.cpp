#include "gfx/shaders/post_render.h"

#include "platform/d3dx/d3dx_texture.h"

namespace sparkrig {

namespace {

constexpr D3DFORMAT kSceneFormat = D3DFMT_A8R8G8B8;
constexpr DWORD kSamples = D3DMULTISAMPLE_4_SAMPLES;

}   // namespace

void PostRender::Init() {
    if (On()) return;
    Release();
    graphics_.Require(D3DXCreateTexture(graphics_.Device(), targets_.Width(), targets_.Height(), 1,
                                        D3DUSAGE_RENDERTARGET, kSceneFormat, D3DPOOL_DEFAULT, texture_.Receive()),
                      "InitPostRenderEffects failed - can not create render texture: ");
    resolves_ = multisample_ && MakeMultisampleSurface();
    multisample_ = resolves_;
    if (!resolves_) surface_ = surfaces_.Add(Level0());
    on_ = true;
}

bool PostRender::MakeMultisampleSurface() {
    DevicePtr<IDirect3DSurface9> surface;
    const HRESULT result = graphics_.Device()->CreateRenderTarget(targets_.Width(), targets_.Height(), kSceneFormat,
                                                                  kSamples, 0, FALSE, surface.Receive());
    if (FAILED(result)) {
        graphics_.Reporter().Warning("InitPostRenderEffects failed - can not create multisample render target: %s",
                                     DXGetErrorString9(result));
        return false;
    }
    surface_ = surfaces_.Add(std::move(surface));
    return true;
}

DevicePtr<IDirect3DSurface9> PostRender::Level0() const {
    DevicePtr<IDirect3DSurface9> level;
    graphics_.Require(texture_->GetSurfaceLevel(0, level.Receive()),
                      "InitPostRenderEffects failed - can not retrieve target surface: ");
    return level;
}

void PostRender::Release() {
    texture_.Reset();
    surfaces_.Remove(surface_);
    surface_ = -1;
    on_ = in_scene_ = drawing_ = false;
}

IDirect3DTexture9* PostRender::SceneTexture() const {
    if (!On()) return nullptr;
    if (resolves_) {
        DevicePtr<IDirect3DSurface9> level;
        graphics_.Require(texture_->GetSurfaceLevel(0, level.Receive()), "GetSurfaceLevel failed: ");
        graphics_.Require(graphics_.Device()->StretchRect(SceneSurface(), nullptr, level.Get(), nullptr, D3DTEXF_NONE),
                          "StretchRect failed: ");
    }
    return texture_.Get();
}

}   // namespace sparkrig
