#include "tests/support/recorded_objects.h"

#include <algorithm>

namespace sparkrig {

namespace {

UINT BlockBytes(D3DFORMAT format) {
    if (format == D3DFMT_DXT1) return 8;
    constexpr D3DFORMAT kLarge[] = {D3DFMT_DXT2, D3DFMT_DXT3, D3DFMT_DXT4, D3DFMT_DXT5};
    return std::ranges::count(kLarge, format) > 0 ? 16 : 0;
}

UINT PixelBytes(D3DFORMAT format) {
    constexpr D3DFORMAT kOne[] = {D3DFMT_A8, D3DFMT_L8, D3DFMT_P8};
    constexpr D3DFORMAT kTwo[] = {D3DFMT_R5G6B5, D3DFMT_X1R5G5B5, D3DFMT_A1R5G5B5, D3DFMT_A4R4G4B4,
                                  D3DFMT_A8L8,   D3DFMT_V8U8,     D3DFMT_L16,      D3DFMT_D16};
    if (format == D3DFMT_R8G8B8) return 3;
    return std::ranges::count(kOne, format) > 0 ? 1 : std::ranges::count(kTwo, format) > 0 ? 2 : 4;
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

RecordedTexture::RecordedTexture(Recording& recording, const D3DSURFACE_DESC& top, UINT levels)
    : RecordedObject(recording, top.Pool == D3DPOOL_DEFAULT) {
    D3DSURFACE_DESC desc = top;
    for (UINT level = 0; level < levels; ++level) {
        levels_.push_back(std::make_shared<RecordedImage>(desc));
        desc.Width = std::max(desc.Width / 2, 1u);
        desc.Height = std::max(desc.Height / 2, 1u);
    }
}

}   // namespace sparkrig
