// What a locked image can do.
#pragma once
#include "base/resource_manager.h"
#include "gfx/device/pixel_codec.h"
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
    /// The device's record of the present lock.
    D3DLOCKED_RECT& Locked() { return locked_data_; }
    D3DFORMAT Format() const { return format_; }

    // Inside a lock; x and y relative to the image. Outside the locked rectangle: 0, or nothing is written. A format
    // without a codec for single pixels is an error.
    D3DCOLOR GetPixel(int x, int y) const;
    void SetPixel(int x, int y, D3DCOLOR argb);
    /// A single pixel of a block, always read as four colours; DXT5 takes the first end value as the alpha of all its
    /// pixels. False outside the locked rectangle.
    bool GetCompressedPix(int x, int y, D3DCOLOR& argb) const;

    /// Set by AnalyseAlpha.
    bool HasPartialAlpha() const { return partial_alpha_; }

  protected:
    KRN_SurfaceBase() = default;
    ~KRN_SurfaceBase() = default;

    /// Chooses the codec of the image that will be locked.
    void SetFormat(D3DFORMAT format);
    /// After a successful lock, and before the unlock. The whole image is width x height.
    void BeginLock(const RECT* rectangle, UINT width, UINT height, const D3DLOCKED_RECT& data);
    void EndLock() { locked_ = false; }
    /// Writes the colour into every pixel of the locked rectangle.
    void FillLocked(D3DCOLOR argb);

    bool locked_ = false;
    RECT locked_rect_ = {};
    D3DLOCKED_RECT locked_data_ = {};
    D3DFORMAT format_ = D3DFMT_UNKNOWN;
    const PixelCodec* codec_ = nullptr;
    bool partial_alpha_ = false;

  private:
    bool InLock(int x, int y) const;
    const PixelCodec& Codec() const;   // of single pixels, or the error that there is none
    BYTE* PixelAt(int x, int y) const;
};

/// Fills a surface of the default pool, or a rectangle of it.
void FillSurface(const KRN_Base& reporter, IDirect3DDevice9& device, IDirect3DSurface9& surface, const RECT* rectangle,
                 D3DCOLOR colour);

}   // namespace sparkrig
