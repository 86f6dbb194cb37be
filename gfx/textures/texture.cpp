#include "gfx/textures/texture.h"

#include <algorithm>

#include "base/numeric.h"
#include "gfx/device/graphics_device.h"
#include "gfx/device/surface.h"
#include "gfx/textures/texture_registry.h"
#include "platform/d3dx/d3dx_texture.h"

namespace sparkrig {

KRN_Texture::KRN_Texture() {
    SetName("KRN_Texture");
    layers_[0].kind = MapKind::Diffuse;
}

void KRN_Texture::Release() {
    ReleaseFrames();
    for (Layer& layer : layers_) {
        ReleasePicture(layer.picture);
        layer.name = "";
    }
    screen_quad_.Reset();
}

// ---- What is in use

IDirect3DTexture9* KRN_Texture::TextureOf(const Picture& picture) const {
    return registry_ ? registry_->Get(picture.entry) : nullptr;
}

IDirect3DTexture9* KRN_Texture::DeviceTexture() const { return TextureOf(InUse()); }

IDirect3DTexture9* KRN_Texture::LayerTexture(int layer) const { return TextureOf(PictureOf(layer)); }

int KRN_Texture::VideoSourceOf(int layer) const { return PictureOf(layer).video_source; }

bool KRN_Texture::IsValid() const { return InUse().entry < 0 || DeviceTexture(); }

// ---- As a surface

bool KRN_Texture::Lock(const RECT* rectangle, DWORD flags) {
    IDirect3DTexture9* const texture = DeviceTexture();
    D3DSURFACE_DESC desc = {};
    D3DLOCKED_RECT data = {};
    HRESULT result = texture ? texture->GetLevelDesc(mip_level_, &desc) : D3DERR_INVALIDCALL;
    if (SUCCEEDED(result)) result = texture->LockRect(mip_level_, &data, rectangle, flags);
    if (FAILED(result)) Error("LockRect failed: %s", DXGetErrorString9(result));
    SetFormat(desc.Format);
    BeginLock(rectangle, desc.Width, desc.Height, data);
    return true;
}

bool KRN_Texture::Unlock() {
    IDirect3DTexture9* const texture = DeviceTexture();
    const HRESULT result = texture ? texture->UnlockRect(mip_level_) : D3DERR_INVALIDCALL;
    if (FAILED(result)) Error("UnlockRect failed: %s", DXGetErrorString9(result));
    EndLock();
    return true;
}

void KRN_Texture::GetRect(RECT& rectangle) const {
    const Picture& picture = InUse();
    const Rectangle& r = picture.rectangle;
    const auto width = static_cast<float>(picture.texture_width), height = static_cast<float>(picture.texture_height);
    rectangle = {Round(width * r.u), Round(height * r.v), Round(width * (r.u + r.size_u + r.extra_u)),
                 Round(height * (r.v + r.size_v + r.extra_v))};
}

bool KRN_Texture::GetSize(UINT& width, UINT& height) const {
    const UINT shift = std::min(mip_level_, 31u);
    width = std::max(1u, InUse().texture_width >> shift);
    height = std::max(1u, InUse().texture_height >> shift);
    return HasSurface();
}

POINT KRN_Texture::GetSize() const {
    UINT width, height;
    GetSize(width, height);
    return {static_cast<LONG>(width), static_cast<LONG>(height)};
}

DevicePtr<IDirect3DSurface9> KRN_Texture::GetSurfaceLevel(UINT level) {
    IDirect3DTexture9* const texture = DeviceTexture();
    DevicePtr<IDirect3DSurface9> surface;
    const HRESULT result = texture ? texture->GetSurfaceLevel(level, surface.Receive()) : D3DERR_INVALIDCALL;
    if (FAILED(result)) Error("GetSurfaceLevel failed: %s", DXGetErrorString9(result));
    return surface;
}

void KRN_Texture::Clear(D3DCOLOR colour, const RECT* rectangle) {
    const DevicePtr<IDirect3DSurface9> surface = GetSurfaceLevel(mip_level_);
    D3DSURFACE_DESC desc;
    const HRESULT result = surface->GetDesc(&desc);
    if (FAILED(result)) Error("GetDesc failed: %s", DXGetErrorString9(result));
    if (desc.Pool == D3DPOOL_DEFAULT) return FillSurface(*this, *graphics_->Device(), *surface, rectangle, colour);
    if (rectangle) Error("Clear: rec only valid for D3DPOOL_DEFAULT surfaces");
    Lock(nullptr, 0);
    FillLocked(colour);
    Unlock();
}

namespace {

/// Where samples lie along an axis.
struct SampleAxis {
    int count, step, first;
};

SampleAxis SamplesAlong(int size) {
    const int count = std::min(std::clamp(size / 16, 4, 64), size);
    const int step = size / count, rest = size % count;
    return {count, step, (rest == 0 ? step : rest) / 2};
}

}   // namespace

DevicePtr<IDirect3DTexture9> KRN_Texture::Lockable(IDirect3DTexture9& texture, const D3DSURFACE_DESC& desc) const {
    const std::string& file = registry_->OriginOf(InUse().entry).file;
    const bool lockable = desc.Pool != D3DPOOL_DEFAULT || (desc.Usage & D3DUSAGE_DYNAMIC) != 0;
    if (lockable || file.empty()) return DevicePtr<IDirect3DTexture9>::Share(&texture);
    DevicePtr<IDirect3DTexture9> copy;
    const UINT width = InUse().texture_width, height = InUse().texture_height, levels = mip_level_ + 1;
    const HRESULT result = D3DXCreateTextureFromFileExA(graphics_->Device(), file.c_str(), width, height, levels, 0,
                                                        desc.Format, D3DPOOL_SYSTEMMEM, D3DX_FILTER_LINEAR,
                                                        D3DX_FILTER_BOX, 0, nullptr, copy.Receive());
    if (FAILED(result))
        Error(" D3DXCreateTextureFromFileA failed: %s (file:%s)", DXGetErrorString9(result), file.c_str());
    return copy;
}

void KRN_Texture::AnalyseAlpha() {
    partial_alpha_ = false;
    IDirect3DTexture9* const texture = DeviceTexture();
    D3DSURFACE_DESC desc;
    if (!texture || FAILED(texture->GetLevelDesc(mip_level_, &desc))) return;
    if (desc.Format != D3DFMT_A8R8G8B8 && desc.Format != D3DFMT_A4R4G4B4 && desc.Format != D3DFMT_DXT5) return;
    const DevicePtr<IDirect3DTexture9> lockable = Lockable(*texture, desc);
    D3DLOCKED_RECT data = {};
    const HRESULT result = lockable->LockRect(mip_level_, &data, nullptr, D3DLOCK_READONLY);
    if (FAILED(result)) Error("LockRect failed: %s", DXGetErrorString9(result));
    SetFormat(desc.Format);
    BeginLock(nullptr, desc.Width, desc.Height, data);
    const SampleAxis across = SamplesAlong(static_cast<int>(desc.Width)),
                     down = SamplesAlong(static_cast<int>(desc.Height));
    for (int i = 0; i < across.count * down.count && !partial_alpha_; ++i) {
        D3DCOLOR colour = 0;
        const int x = across.first + i % across.count * across.step, y = down.first + i / across.count * down.step;
        GetCompressedPix(x, y, colour);
        partial_alpha_ = colour >> 24 > 0 && colour >> 24 < 255;
    }
    EndLock();
    const HRESULT unlocked = lockable->UnlockRect(mip_level_);
    if (FAILED(unlocked)) Error("UnlockRect failed: %s", DXGetErrorString9(unlocked));
}

// ---- Layers

bool KRN_Texture::SelectLayer(int layer, bool apply) {
    if (!frames_.empty()) Error("No stages with texture sequence allowed");
    if (layer < 0 || layer >= kLayers) Error("Invalid texture stage selected: %i", layer);
    current_layer_ = layer;
    if (apply && binder_) binder_->SetTexture(this, layer);
    return true;
}

bool KRN_Texture::SetStageMap(int layer, MapKind kind, float amount) {
    if (layer < 0 || layer >= kLayers) Error("Invalid texture stage: %i", layer);
    layers_[layer].kind = kind;
    layers_[layer].amount = amount;
    return true;
}

void KRN_Texture::SetLayerMatrix(int layer, const TextureMatrixValues& constants) {
    KRN_TextMatrixAni animation;
    animation.constants = constants;
    SetLayerAnimation(layer, animation);
}

void KRN_Texture::SetLayerAnimation(int layer, const KRN_TextMatrixAni& animation) {
    if (layer < 0 || layer >= kLayers) Error("Invalid texture stage: %i", layer);
    layers_[layer].animation = animation;
    layers_[layer].matrix = BuildTextureMatrix(animation.ValuesAt(0));
}

// ---- Sequences

bool KRN_Texture::SelectSequenceFrame(int frame) {
    if (frame < 0 || frame >= SequenceFrames()) Error("Invalid sequence number");
    current_frame_ = frame;
    return true;
}

void KRN_Texture::FreeSequenceFrame(int frame) {
    if (frame < 0 || frame >= SequenceFrames()) Error("Invalid sequence to free: %i", frame);
    ReleasePicture(frames_[frame]);
}

void KRN_Texture::Update(float t) {
    for (int i = 0; i < kLayers; ++i) {
        Layer& layer = layers_[i];
        if (!layer.animation.IsAnimated() || !LayerTexture(i)) continue;   // what is constant stands already
        layer.matrix = BuildTextureMatrix(layer.animation.ValuesAt(t));
    }
    if (!frames_.empty()) SelectSequenceFrame(FrameAt(timing_, SequenceFrames(), t));
}

// ---- For the loader

void KRN_Texture::Attach(const GraphicsDevice& graphics, TextureRegistry& registry, TextureBinder& binder) {
    graphics_ = &graphics;
    registry_ = &registry;
    binder_ = &binder;
}

void KRN_Texture::ReleasePicture(Picture& picture) {
    if (registry_) registry_->Release(picture.entry);
    picture = {};
}

void KRN_Texture::ReleaseCurrent() {
    ReleasePicture(InUse());
    layers_[current_layer_].name = "";
}

void KRN_Texture::ReleaseFrames() {
    for (int frame = 0; frame < SequenceFrames(); ++frame) FreeSequenceFrame(frame);
    frames_.clear();
    current_frame_ = 0;
}

KRN_Texture::Picture KRN_Texture::PictureOfEntry(int entry) const {
    D3DSURFACE_DESC desc;
    const HRESULT result = registry_->Get(entry)->GetLevelDesc(0, &desc);
    if (FAILED(result)) {
        registry_->Release(entry);
        Error("GetDesc failed: %s", DXGetErrorString9(result));
    }
    Picture picture;
    picture.entry = entry;
    picture.format = desc.Format;
    picture.default_pool = desc.Pool == D3DPOOL_DEFAULT;
    picture.texture_width = desc.Width;
    picture.texture_height = desc.Height;
    picture.width = static_cast<float>(desc.Width);
    picture.height = static_cast<float>(desc.Height);
    return picture;
}

void KRN_Texture::Picture::SetSize(float picture_width, float picture_height) {
    width = picture_width;
    height = picture_height;
    rectangle.size_u = width / static_cast<float>(texture_width);
    rectangle.size_v = height / static_cast<float>(texture_height);
}

void KRN_Texture::Show(const Picture& picture) {
    ReleaseFrames();
    ReleasePicture(InUse());
    InUse() = picture;
    SetFormat(picture.format);
}

void KRN_Texture::ShowFrames(std::vector<Picture> frames) {
    ReleaseFrames();
    frames_ = std::move(frames);
    SetFormat(InUse().format);
}

}   // namespace sparkrig
