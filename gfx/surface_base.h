// What a locked image can do, and a plain surface.
#pragma once
#include "base/resource_manager.h"
#include "gfx/pixel_codec.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

class KRN_SurfaceBase : public KRN_ResourceBase {
  public:
    virtual bool Lock(const RECT* rectangle, DWORD flags) = 0;
    virtual bool Unlock() = 0;
    virtual void GetRect(RECT& rectangle) const = 0;
    virtual POINT GetSize() const = 0;
    virtual bool GetSize(UINT& width, UINT& height) const = 0;
    virtual bool HasSurface() const = 0;

    bool IsLocked() const { return locked_; }
    /// Inside a lock; x and y relative to the image. Outside the locked rectangle: 0, or nothing is written.
    D3DCOLOR GetPixel(int x, int y) const;
    void SetPixel(int x, int y, D3DCOLOR argb);
    D3DFORMAT Format() const { return format_; }
    /// The device's record of the present lock.
    D3DLOCKED_RECT& Locked() { return locked_data_; }

  protected:
    KRN_SurfaceBase() = default;
    ~KRN_SurfaceBase() = default;

    bool locked_ = false;
    RECT locked_rect_ = {};
    D3DLOCKED_RECT locked_data_ = {};
    D3DFORMAT format_ = D3DFMT_UNKNOWN;
    const PixelCodec* codec_ = nullptr;
    bool partial_alpha_ = false;
};

class KRN_Surface : public KRN_SurfaceBase {
  public:
    KRN_Surface();
    ~KRN_Surface();
    KRN_Surface(const KRN_Surface&) = delete;
    KRN_Surface& operator=(const KRN_Surface&) = delete;

    /// Takes a further reference; null lets go.
    void Wrap(IDirect3DSurface9* surface);
    IDirect3DSurface9* Get() const { return surface_.Get(); }

    bool Lock(const RECT* rectangle, DWORD flags) override;
    bool Unlock() override;
    void GetRect(RECT& rectangle) const override;
    POINT GetSize() const override;
    bool GetSize(UINT& width, UINT& height) const override;
    bool HasSurface() const override { return static_cast<bool>(surface_); }
    void Clear(class KRN_Gfx& gfx, D3DCOLOR colour, const RECT* rectangle);

  private:
    DevicePtr<IDirect3DSurface9> surface_;
    UINT width_ = 0, height_ = 0;
    RECT rect_ = {};
};

}   // namespace sparkrig
