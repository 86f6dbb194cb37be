#include "platform/d3dx/texture_levels.h"

#include <cstring>

#include "platform/d3dx/dxt_blocks.h"
#include "platform/d3dx/pixel_formats.h"

namespace sparkrig {
namespace {

/// The formats to try, nearest first, when a device does not take the first one.
struct Substitutes {
    D3DFORMAT format, second, third;
};
// clang-format off
constexpr Substitutes kSubstitutes[] = {
    {D3DFMT_R8G8B8,   D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8},
    {D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_R5G6B5,   D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8},
    {D3DFMT_X1R5G5B5, D3DFMT_A1R5G5B5, D3DFMT_X8R8G8B8},
    {D3DFMT_A1R5G5B5, D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_A4R4G4B4, D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_A8,       D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_A8B8G8R8, D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_L8,       D3DFMT_X8R8G8B8, D3DFMT_A8R8G8B8},
    {D3DFMT_A8L8,     D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_DXT1,     D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_DXT2,     D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_DXT3,     D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_DXT4,     D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN },
    {D3DFMT_DXT5,     D3DFMT_A8R8G8B8, D3DFMT_UNKNOWN }};
// clang-format on

/// Whether another format may be taken: devices refuse one with either code.
bool MayBeTheFormat(HRESULT result) { return result == D3DERR_NOTAVAILABLE || result == D3DERR_INVALIDCALL; }

HRESULT TryCreate(IDirect3DDevice9& device, const TextureShape& shape, D3DFORMAT format, IDirect3DTexture9** texture) {
    return device.CreateTexture(shape.width, shape.height, shape.levels, shape.usage, format, shape.pool, texture);
}

/// A level that is open for writing, from its first row on.
class LockedLevel {
  public:
    LockedLevel(IDirect3DTexture9& texture, UINT level) : texture_(texture), level_(level) {
        result_ = texture.LockRect(level, &locked_, nullptr, 0);
    }
    LockedLevel(const LockedLevel&) = delete;
    LockedLevel& operator=(const LockedLevel&) = delete;
    ~LockedLevel() {
        if (SUCCEEDED(result_)) texture_.UnlockRect(level_);
    }
    HRESULT Result() const { return result_; }
    std::size_t Pitch() const { return static_cast<std::size_t>(locked_.Pitch); }
    BYTE* Row(UINT y) const { return static_cast<BYTE*>(locked_.pBits) + y * Pitch(); }
    HRESULT Unlock() {
        const HRESULT result = FAILED(result_) ? result_ : texture_.UnlockRect(level_);
        result_ = D3DERR_INVALIDCALL;
        return result;
    }

  private:
    IDirect3DTexture9& texture_;
    UINT level_;
    D3DLOCKED_RECT locked_ = {};
    HRESULT result_;
};

}   // namespace

HRESULT CreateSupportedTexture(IDirect3DDevice9& device, const TextureShape& shape, D3DFORMAT format,
                               IDirect3DTexture9** texture) {
    // A format of 24 bits is never a texture's own; devices that took it would be the first.
    HRESULT result = format == D3DFMT_R8G8B8 ? D3DERR_NOTAVAILABLE : TryCreate(device, shape, format, texture);
    if (!MayBeTheFormat(result)) return result;
    for (const Substitutes& row : kSubstitutes) {
        if (row.format != format) continue;
        result = TryCreate(device, shape, row.second, texture);
        if (MayBeTheFormat(result) && row.third != D3DFMT_UNKNOWN)
            result = TryCreate(device, shape, row.third, texture);
    }
    return result;
}

HRESULT FilledTexture::Create(IDirect3DDevice9& device, const TextureShape& shape, D3DFORMAT format) {
    const HRESULT result = CreateSupportedTexture(device, shape, format, texture_.Receive());
    const bool lockable = shape.pool != D3DPOOL_DEFAULT || (shape.usage & D3DUSAGE_DYNAMIC) != 0;
    if (FAILED(result) || lockable) return result;
    D3DSURFACE_DESC desc;
    const HRESULT described = texture_->GetLevelDesc(0, &desc);
    if (FAILED(described)) return described;
    TextureShape twin = shape;
    twin.usage = 0;
    twin.pool = D3DPOOL_SYSTEMMEM;
    return TryCreate(device, twin, desc.Format, twin_.Receive());
}

HRESULT FilledTexture::Finish(IDirect3DDevice9& device, IDirect3DTexture9** texture) {
    const HRESULT result = twin_ ? device.UpdateTexture(twin_.Get(), texture_.Get()) : D3D_OK;
    if (FAILED(result)) return result;
    texture_->AddRef();
    *texture = texture_.Get();
    return result;
}

HRESULT CopyRowsToLevel(IDirect3DTexture9& texture, UINT level, const BYTE* rows, std::size_t row_bytes, UINT count) {
    LockedLevel lock(texture, level);
    if (FAILED(lock.Result())) return lock.Result();
    for (UINT y = 0; y < count; ++y) std::memcpy(lock.Row(y), rows + y * row_bytes, row_bytes);
    return lock.Unlock();
}

HRESULT StoreLevel(IDirect3DTexture9& texture, UINT level, const Image& image) {
    D3DSURFACE_DESC desc;
    const HRESULT result = texture.GetLevelDesc(level, &desc);
    if (FAILED(result)) return result;
    if (desc.Width != image.width || desc.Height != image.height) return D3DERR_INVALIDCALL;
    LockedLevel lock(texture, level);
    if (FAILED(lock.Result())) return lock.Result();
    if (IsDxt(desc.Format)) {
        EncodeDxt(desc.Format, image, lock.Row(0), lock.Pitch());
    } else if (PixelBytes(desc.Format) > 0) {
        for (UINT y = 0; y < image.height; ++y) PackPixels(desc.Format, image.Row(y), image.width, lock.Row(y));
    } else {
        return D3DERR_NOTAVAILABLE;
    }
    return lock.Unlock();
}

}   // namespace sparkrig
