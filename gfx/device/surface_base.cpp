#include "gfx/device/surface_base.h"

#include <algorithm>
#include <cstring>

namespace sparkrig {

void KRN_SurfaceBase::SetFormat(D3DFORMAT format) {
    format_ = format;
    codec_ = FindPixelCodec(format);
}

void KRN_SurfaceBase::BeginLock(const RECT* rectangle, UINT width, UINT height, const D3DLOCKED_RECT& data) {
    locked_rect_ = rectangle ? *rectangle : RECT{0, 0, static_cast<LONG>(width), static_cast<LONG>(height)};
    locked_data_ = data;
    locked_ = true;
}

bool KRN_SurfaceBase::InLock(int x, int y) const {
    return locked_ && x >= locked_rect_.left && y >= locked_rect_.top && x < locked_rect_.right &&
           y < locked_rect_.bottom;
}

const PixelCodec& KRN_SurfaceBase::Codec() const {
    if (!codec_ || codec_->bytes == 0) Error("Unsupported pixel format! (%i)", static_cast<int>(format_));
    return *codec_;
}

BYTE* KRN_SurfaceBase::PixelAt(int x, int y) const {
    const std::ptrdiff_t row = y - locked_rect_.top, column = x - locked_rect_.left;
    return static_cast<BYTE*>(locked_data_.pBits) + row * locked_data_.Pitch + column * codec_->bytes;
}

D3DCOLOR KRN_SurfaceBase::GetPixel(int x, int y) const {
    const PixelCodec& codec = Codec();
    if (!InLock(x, y)) return 0;
    DWORD stored = 0;
    std::memcpy(&stored, PixelAt(x, y), static_cast<std::size_t>(codec.bytes));
    return codec.unpack(stored);
}

void KRN_SurfaceBase::SetPixel(int x, int y, D3DCOLOR argb) {
    const PixelCodec& codec = Codec();
    if (!InLock(x, y)) return;
    const DWORD stored = codec.pack(argb);
    std::memcpy(PixelAt(x, y), &stored, static_cast<std::size_t>(codec.bytes));
}

void KRN_SurfaceBase::FillLocked(D3DCOLOR argb) {
    for (int y = locked_rect_.top; y < locked_rect_.bottom; ++y)
        for (int x = locked_rect_.left; x < locked_rect_.right; ++x) SetPixel(x, y, argb);
}

namespace {

/// (2 near + far + 1) / 3 for each channel.
D3DCOLOR OneThird(D3DCOLOR near, D3DCOLOR far) {
    D3DCOLOR mixed = 0;
    for (int shift = 0; shift < 32; shift += 8)
        mixed |= (2 * (near >> shift & 0xFF) + (far >> shift & 0xFF) + 1) / 3 << shift;
    return mixed;
}

/// The colour of pixel (x, y) of a block's colour half.
D3DCOLOR BlockColour(const BYTE* colours, int x, int y) {
    DWORD ends, indices;
    std::memcpy(&ends, colours, sizeof ends);
    std::memcpy(&indices, colours + 4, sizeof indices);
    const PixelCodec& codec = *FindPixelCodec(D3DFMT_R5G6B5);
    const D3DCOLOR c0 = codec.unpack(ends & 0xFFFF), c1 = codec.unpack(ends >> 16);
    switch (indices >> 2 * (y % 4 * 4 + x % 4) & 3) {
        case 0: return c0;
        case 1: return c1;
        case 2: return OneThird(c0, c1);
        default: return OneThird(c1, c0);
    }
}

}   // namespace

bool KRN_SurfaceBase::GetCompressedPix(int x, int y, D3DCOLOR& argb) const {
    if (!InLock(x, y)) return false;
    if (format_ == D3DFMT_DXT2 || format_ == D3DFMT_DXT3 || format_ == D3DFMT_DXT4)
        Error("Unsupported texture compression format for GetCompressedPix()");
    if (format_ != D3DFMT_DXT1 && format_ != D3DFMT_DXT5) {
        argb = GetPixel(x, y);
        return true;
    }
    const std::ptrdiff_t block_bytes = format_ == D3DFMT_DXT1 ? 8 : 16;
    const std::ptrdiff_t row = (y - locked_rect_.top) / 4, column = (x - locked_rect_.left) / 4;
    const BYTE* block = static_cast<const BYTE*>(locked_data_.pBits) + row * locked_data_.Pitch + column * block_bytes;
    argb = BlockColour(format_ == D3DFMT_DXT1 ? block : block + 8, x, y);
    if (format_ == D3DFMT_DXT5) argb = (argb & 0x00FFFFFF) | static_cast<D3DCOLOR>(block[0]) << 24;
    return true;
}

void FillSurface(const KRN_Base& reporter, IDirect3DDevice9& device, IDirect3DSurface9& surface, const RECT* rectangle,
                 D3DCOLOR colour) {
    const HRESULT result = device.ColorFill(&surface, rectangle, colour);
    if (FAILED(result)) reporter.Error("ColorFill failed: %s", DXGetErrorString9(result));
}

}   // namespace sparkrig
