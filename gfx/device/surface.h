// A plain image of the device: the back buffer, a level of a texture.
#pragma once
#include "gfx/device/surface_base.h"

namespace sparkrig {

class KRN_Surface final : public KRN_SurfaceBase {
  public:
    KRN_Surface() { SetName("KRN_Surface"); }
    KRN_Surface(const KRN_Surface&) = delete;
    KRN_Surface& operator=(const KRN_Surface&) = delete;

    /// Takes a further reference; null lets go.
    void Wrap(IDirect3DSurface9* surface);
    IDirect3DSurface9* Get() const { return surface_.Get(); }

    bool Lock(const RECT* rectangle, DWORD flags) override;
    bool Unlock() override;
    void GetRect(RECT& rectangle) const override { rectangle = rect_; }
    POINT GetSize() const override { return {static_cast<LONG>(width_), static_cast<LONG>(height_)}; }
    bool GetSize(UINT& width, UINT& height) const override;
    bool HasSurface() const override { return static_cast<bool>(surface_); }
    /// A rectangle only for surfaces of the default pool; others are filled whole.
    void Clear(IDirect3DDevice9& device, D3DCOLOR colour, const RECT* rectangle);

  private:
    DevicePtr<IDirect3DSurface9> surface_;
    UINT width_ = 0, height_ = 0;
    RECT rect_ = {};
    D3DPOOL pool_ = D3DPOOL_DEFAULT;
};

}   // namespace sparkrig
