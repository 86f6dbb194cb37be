// D3DXCreateTextureFromFileInMemoryEx in its steps: choose size, levels and format, key, scale, and fill level by
// level.
#include <algorithm>
#include <bit>
#include <cstring>

#include "platform/d3dx/d3dx_texture.h"
#include "platform/d3dx/dds_file.h"
#include "platform/d3dx/image_file.h"
#include "platform/d3dx/image_scale.h"
#include "platform/d3dx/texture_levels.h"

namespace sparkrig {
namespace {

/// A file's bytes, what its head says, and its largest level as pixels.
struct Source {
    FileBytes bytes;
    D3DXIMAGE_INFO info;
    Image image;
};

HRESULT DecodeSource(Source& source) {
    return source.image.pixels ? D3D_OK : DecodeImage(source.bytes, source.info, source.image);
}

UINT ChooseSide(UINT asked, UINT stored) {
    if (asked == D3DX_DEFAULT_NONPOW2 || asked == D3DX_FROM_FILE) return stored;
    return asked == 0 || asked == D3DX_DEFAULT ? std::bit_ceil(stored) : asked;
}

UINT ChooseLevels(UINT asked, const D3DXIMAGE_INFO& info, UINT width, UINT height) {
    const UINT full_chain = static_cast<UINT>(std::bit_width(std::max(width, height)));
    if (asked == 0 || asked == D3DX_DEFAULT) return full_chain;
    return std::min(asked == D3DX_FROM_FILE ? info.MipLevels : asked, full_chain);
}

bool HasTransparentPixel(const Image& image) {
    return std::ranges::any_of(image.Pixels(), [](D3DCOLOR p) { return p < 0xFF000000; });
}

/// The format wished for; a palette's pictures are stored as colours.
D3DFORMAT WishedFormat(D3DFORMAT asked, const Source& source) {
    if (asked != D3DFMT_UNKNOWN && asked != D3DFMT_FROM_FILE) return asked;
    if (source.info.Format != D3DFMT_P8) return source.info.Format;
    return HasTransparentPixel(source.image) ? D3DFMT_A8R8G8B8 : D3DFMT_X8R8G8B8;
}

void ApplyColourKey(D3DCOLOR key, const Image& image) { std::ranges::replace(image.Pixels(), key, D3DCOLOR{0}); }

/// The levels of a dds file whose largest one has the texture's size go into it as they are.
bool TakesStoredLevels(const Source& source, const D3DSURFACE_DESC& desc, D3DCOLOR colour_key) {
    return source.info.ImageFileFormat == D3DXIFF_DDS && source.info.Width == desc.Width &&
           source.info.Height == desc.Height && colour_key == 0;
}

HRESULT TakeStoredLevel(const Source& source, UINT level, bool same_format, IDirect3DTexture9& texture) {
    if (same_format) {
        const DdsLevel stored = FindDdsLevel(source.info, level);
        return CopyRowsToLevel(texture, level, source.bytes.data() + stored.offset, stored.row_bytes, stored.rows);
    }
    Image image;
    const HRESULT decoded = DecodeDds(source.bytes, source.info, level, image);
    return FAILED(decoded) ? decoded : StoreLevel(texture, level, image);
}

HRESULT NextLevel(Image& image, DWORD mip_filter) {
    Image half;
    const UINT width = std::max(1u, image.width / 2), height = std::max(1u, image.height / 2);
    const DWORD filter = mip_filter == D3DX_DEFAULT ? D3DX_FILTER_BOX : mip_filter;
    const HRESULT result = ScaleImage(image, width, height, filter, half);
    image = std::move(half);
    return result;
}

/// Makes the levels from `first` on out of `image`, the level above `first`, or level 0 itself for first = 0.
HRESULT FillLevels(Image& image, UINT first, DWORD mip_filter, IDirect3DTexture9& texture) {
    for (UINT level = first; level < texture.GetLevelCount(); ++level) {
        HRESULT result = level == 0 ? D3D_OK : NextLevel(image, mip_filter);
        if (SUCCEEDED(result)) result = StoreLevel(texture, level, image);
        if (FAILED(result)) return result;
    }
    return D3D_OK;
}

HRESULT FillFromStoredLevels(const Source& source, bool same_format, DWORD mip_filter, IDirect3DTexture9& texture) {
    const UINT stored = std::min<UINT>(source.info.MipLevels, texture.GetLevelCount());
    for (UINT level = 0; level < stored; ++level) {
        const HRESULT result = TakeStoredLevel(source, level, same_format, texture);
        if (FAILED(result)) return result;
    }
    if (stored == texture.GetLevelCount()) return D3D_OK;
    Image image;
    const HRESULT decoded = DecodeDds(source.bytes, source.info, stored - 1, image);
    return FAILED(decoded) ? decoded : FillLevels(image, stored, mip_filter, texture);
}

HRESULT FillFromPixels(Source& source, DWORD filter, DWORD mip_filter, D3DCOLOR colour_key,
                       IDirect3DTexture9& texture) {
    D3DSURFACE_DESC desc;
    HRESULT result = texture.GetLevelDesc(0, &desc);
    if (SUCCEEDED(result)) result = DecodeSource(source);
    if (FAILED(result)) return result;
    Image& image = source.image;
    if (colour_key != 0) ApplyColourKey(colour_key, image);
    if (image.width != desc.Width || image.height != desc.Height) {
        Image scaled;
        result =
            ScaleImage(image, desc.Width, desc.Height, filter == D3DX_DEFAULT ? D3DX_FILTER_TRIANGLE : filter, scaled);
        if (FAILED(result)) return result;
        image = std::move(scaled);
    }
    return FillLevels(image, 0, mip_filter, texture);
}

HRESULT Fill(Source& source, DWORD filter, DWORD mip_filter, D3DCOLOR colour_key, IDirect3DTexture9& texture) {
    D3DSURFACE_DESC desc;
    const HRESULT result = texture.GetLevelDesc(0, &desc);
    if (FAILED(result)) return result;
    return TakesStoredLevels(source, desc, colour_key)
               ? FillFromStoredLevels(source, source.info.Format == desc.Format, mip_filter, texture)
               : FillFromPixels(source, filter, mip_filter, colour_key, texture);
}

}   // namespace

HRESULT D3DXGetImageInfoFromFileInMemory(const void* data, UINT bytes, D3DXIMAGE_INFO* info) {
    if (!data || !info) return D3DERR_INVALIDCALL;
    return ReadImageInfo({static_cast<const BYTE*>(data), bytes}, *info);
}

HRESULT D3DXGetImageInfoFromFileA(const char* file, D3DXIMAGE_INFO* info) {
    if (!file || !info) return D3DERR_INVALIDCALL;
    std::vector<BYTE> bytes;
    return ReadWholeFile(file, bytes) ? ReadImageInfo(bytes, *info) : D3DXERR_INVALIDDATA;
}

HRESULT D3DXCreateTextureFromFileExA(IDirect3DDevice9* device, const char* file, UINT width, UINT height, UINT levels,
                                     DWORD usage, D3DFORMAT format, D3DPOOL pool, DWORD filter, DWORD mip_filter,
                                     D3DCOLOR colour_key, D3DXIMAGE_INFO* info, IDirect3DTexture9** texture) {
    if (!device || !file || !texture) return D3DERR_INVALIDCALL;
    *texture = nullptr;
    std::vector<BYTE> bytes;
    if (!ReadWholeFile(file, bytes)) return D3DXERR_INVALIDDATA;
    return D3DXCreateTextureFromFileInMemoryEx(device, bytes.data(), static_cast<UINT>(bytes.size()), width, height,
                                               levels, usage, format, pool, filter, mip_filter, colour_key, info,
                                               texture);
}

HRESULT D3DXCreateTextureFromFileInMemoryEx(IDirect3DDevice9* device, const void* data, UINT bytes, UINT width,
                                            UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                            DWORD filter, DWORD mip_filter, D3DCOLOR colour_key, D3DXIMAGE_INFO* info,
                                            IDirect3DTexture9** texture) {
    if (!device || !texture) return D3DERR_INVALIDCALL;
    *texture = nullptr;
    Source source = {.bytes = {static_cast<const BYTE*>(data), bytes}, .info = {}, .image = {}};
    HRESULT result = ReadImageInfo(source.bytes, source.info);
    if (SUCCEEDED(result) && source.info.Format == D3DFMT_P8) result = DecodeSource(source);
    if (FAILED(result)) return result;
    const UINT w = ChooseSide(width, source.info.Width), h = ChooseSide(height, source.info.Height);
    if (!IsAllowedImageSize(w, h)) return D3DERR_INVALIDCALL;

    const TextureShape shape = {w, h, ChooseLevels(levels, source.info, w, h), usage, pool};
    FilledTexture filled;
    result = filled.Create(*device, shape, WishedFormat(format, source));
    if (SUCCEEDED(result)) result = Fill(source, filter, mip_filter, colour_key, filled.Target());
    if (SUCCEEDED(result)) result = filled.Finish(*device, texture);
    if (SUCCEEDED(result) && info) *info = source.info;
    return result;
}

HRESULT D3DXCreateTexture(IDirect3DDevice9* device, UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format,
                          D3DPOOL pool, IDirect3DTexture9** texture) {
    if (!device || !texture) return D3DERR_INVALIDCALL;
    const UINT w = width == D3DX_DEFAULT ? 256 : std::max(1u, width),
               h = height == D3DX_DEFAULT ? 256 : std::max(1u, height);
    const UINT full_chain = static_cast<UINT>(std::bit_width(std::max(w, h)));
    const UINT count = levels == 0 ? full_chain : std::min(levels, full_chain);
    return CreateSupportedTexture(*device, {w, h, count, usage, pool}, format, texture);
}

}   // namespace sparkrig
