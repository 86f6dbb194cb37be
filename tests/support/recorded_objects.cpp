#include "tests/support/recorded_objects.h"

#include <algorithm>

namespace sparkrig {

namespace {

UINT BlockBytes(D3DFORMAT format) {
    switch (format) {
        case D3DFMT_DXT1: return 8;
        case D3DFMT_DXT2:
        case D3DFMT_DXT3:
        case D3DFMT_DXT4:
        case D3DFMT_DXT5: return 16;
        default: return 0;
    }
}

UINT PixelBytes(D3DFORMAT format) {
    switch (format) {
        case D3DFMT_A8:
        case D3DFMT_L8:
        case D3DFMT_P8: return 1;
        case D3DFMT_R5G6B5:
        case D3DFMT_X1R5G5B5:
        case D3DFMT_A1R5G5B5:
        case D3DFMT_A4R4G4B4:
        case D3DFMT_A8L8:
        case D3DFMT_V8U8:
        case D3DFMT_L16:
        case D3DFMT_D16: return 2;
        case D3DFMT_R8G8B8: return 3;
        default: return 4;
    }
}

bool Inside(const RECT& rect, const D3DSURFACE_DESC& desc) {
    return rect.left >= 0 && rect.top >= 0 && rect.left < rect.right && rect.top < rect.bottom &&
           static_cast<UINT>(rect.right) <= desc.Width && static_cast<UINT>(rect.bottom) <= desc.Height;
}

}   // namespace

UINT RowBytes(D3DFORMAT format, UINT width) {
    const UINT block = BlockBytes(format);
    return block ? (width + 3) / 4 * block : width * PixelBytes(format);
}

UINT RowCount(D3DFORMAT format, UINT height) { return BlockBytes(format) ? (height + 3) / 4 : height; }

RecordedImage::RecordedImage(const D3DSURFACE_DESC& description) : desc(description) {
    // Wider than the row, so that code that mistakes the pitch for the width is found out.
    pitch = static_cast<INT>((RowBytes(desc.Format, desc.Width) + 16 + 3) / 4 * 4);
    bytes.resize(static_cast<std::size_t>(pitch) * RowCount(desc.Format, desc.Height));
}

bool RecordedImage::Lockable() const { return desc.Pool != D3DPOOL_DEFAULT || (desc.Usage & D3DUSAGE_DYNAMIC) != 0; }

HRESULT RecordedImage::Lock(D3DLOCKED_RECT* result, const RECT* rect, DWORD flags) {
    if (locked || !Lockable()) return D3DERR_INVALIDCALL;
    if ((flags & D3DLOCK_DISCARD) && (rect || !(desc.Usage & D3DUSAGE_DYNAMIC))) return D3DERR_INVALIDCALL;
    if (rect && !Inside(*rect, desc)) return D3DERR_INVALIDCALL;
    std::size_t offset = 0;
    if (rect) {
        const UINT block = BlockBytes(desc.Format);
        if (block && (rect->left % 4 != 0 || rect->top % 4 != 0)) return D3DERR_INVALIDCALL;
        const UINT row = static_cast<UINT>(rect->top) / (block ? 4 : 1);
        offset = static_cast<std::size_t>(row) * static_cast<UINT>(pitch) +
                 RowBytes(desc.Format, static_cast<UINT>(rect->left));
    }
    locked = true;
    result->Pitch = pitch;
    result->pBits = bytes.data() + offset;
    return D3D_OK;
}

HRESULT RecordedImage::Unlock() {
    if (!locked) return D3DERR_INVALIDCALL;
    locked = false;
    return D3D_OK;
}

RecordedSurface::RecordedSurface(Recording& recording, const D3DSURFACE_DESC& desc)
    : RecordedObject(recording, desc.Pool == D3DPOOL_DEFAULT), image_(std::make_shared<RecordedImage>(desc)) {}

RecordedSurface::RecordedSurface(Recording& recording, RecordedTexture& owner, std::shared_ptr<RecordedImage> image)
    : RecordedObject(recording, image->desc.Pool == D3DPOOL_DEFAULT),
      owner_(DevicePtr<IDirect3DTexture9>::Share(&owner)),
      image_(std::move(image)) {}

RecordedSurface::~RecordedSurface() = default;

HRESULT RecordedSurface::GetDesc(D3DSURFACE_DESC* desc) {
    const HRESULT result = recording_.Record("GetDesc", {Serial()});
    if (SUCCEEDED(result)) *desc = image_->desc;
    return result;
}

HRESULT RecordedSurface::LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
    const HRESULT result = recording_.Record("LockRect", {Serial(), flags});
    return FAILED(result) ? result : image_->Lock(locked, rect, flags);
}

HRESULT RecordedSurface::UnlockRect() {
    const HRESULT result = recording_.Record("UnlockRect", {Serial()});
    return FAILED(result) ? result : image_->Unlock();
}

RecordedTexture::RecordedTexture(Recording& recording, const D3DSURFACE_DESC& top, UINT levels)
    : RecordedObject(recording, top.Pool == D3DPOOL_DEFAULT) {
    D3DSURFACE_DESC desc = top;
    for (UINT level = 0; level < levels; ++level) {
        levels_.push_back(std::make_shared<RecordedImage>(desc));
        desc.Width = std::max(desc.Width / 2, 1u);
        desc.Height = std::max(desc.Height / 2, 1u);
    }
}

HRESULT RecordedTexture::GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) {
    const HRESULT result = recording_.Record("GetLevelDesc", {Serial(), level});
    if (FAILED(result)) return result;
    if (level >= levels_.size()) return D3DERR_INVALIDCALL;
    *desc = levels_[level]->desc;
    return D3D_OK;
}

HRESULT RecordedTexture::GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) {
    const HRESULT result = recording_.Record("GetSurfaceLevel", {Serial(), level});
    if (FAILED(result)) return result;
    if (level >= levels_.size()) return D3DERR_INVALIDCALL;
    *surface = new RecordedSurface(recording_, *this, levels_[level]);
    return D3D_OK;
}

HRESULT RecordedTexture::LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
    const HRESULT result = recording_.Record("LockRect", {Serial(), flags});
    if (FAILED(result)) return result;
    return level < levels_.size() ? levels_[level]->Lock(locked, rect, flags) : D3DERR_INVALIDCALL;
}

HRESULT RecordedTexture::UnlockRect(UINT level) {
    const HRESULT result = recording_.Record("UnlockRect", {Serial()});
    if (FAILED(result)) return result;
    return level < levels_.size() ? levels_[level]->Unlock() : D3DERR_INVALIDCALL;
}

}   // namespace sparkrig
