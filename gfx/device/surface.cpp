#include "gfx/device/surface.h"

namespace sparkrig {

void KRN_Surface::Wrap(IDirect3DSurface9* surface) {
    surface_ = DevicePtr<IDirect3DSurface9>::Share(surface);
    D3DSURFACE_DESC desc = {};
    if (surface) {
        const HRESULT result = surface->GetDesc(&desc);
        if (FAILED(result)) Error("GetDesc failed: %s", DXGetErrorString9(result));
    }
    width_ = desc.Width;
    height_ = desc.Height;
    rect_ = {0, 0, static_cast<LONG>(width_), static_cast<LONG>(height_)};
    pool_ = desc.Pool;
    SetFormat(desc.Format);
}

bool KRN_Surface::Lock(const RECT* rectangle, DWORD flags) {
    D3DLOCKED_RECT data = {};
    const HRESULT result = surface_ ? surface_->LockRect(&data, rectangle, flags) : D3DERR_INVALIDCALL;
    if (FAILED(result)) Error("LockRect failed: %s", DXGetErrorString9(result));
    BeginLock(rectangle, width_, height_, data);
    return true;
}

bool KRN_Surface::Unlock() {
    const HRESULT result = surface_ ? surface_->UnlockRect() : D3DERR_INVALIDCALL;
    if (FAILED(result)) Error("UnlockRect failed: %s", DXGetErrorString9(result));
    EndLock();
    return true;
}

bool KRN_Surface::GetSize(UINT& width, UINT& height) const {
    width = width_;
    height = height_;
    return HasSurface();
}

void KRN_Surface::Clear(IDirect3DDevice9& device, D3DCOLOR colour, const RECT* rectangle) {
    if (!surface_) return;
    if (pool_ == D3DPOOL_DEFAULT) return FillSurface(*this, device, *surface_, rectangle, colour);
    if (rectangle) Error("Clear: rec only valid for D3DPOOL_DEFAULT surfaces");
    Lock(nullptr, 0);
    FillLocked(colour);
    Unlock();
}

}   // namespace sparkrig
