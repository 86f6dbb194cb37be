// Making textures of the nearest supported format, and writing their levels.
#pragma once
#include "platform/d3d9/d3d9.h"
#include "platform/d3dx/image.h"

namespace sparkrig {

struct TextureShape {
    UINT width, height, levels;
    DWORD usage;
    D3DPOOL pool;
};

/// CreateTexture with the format, or the nearest one that the device takes as a texture: never fewer channels.
HRESULT CreateSupportedTexture(IDirect3DDevice9& device, const TextureShape& shape, D3DFORMAT format,
                               IDirect3DTexture9** texture);

/// A texture to be filled. One that cannot be locked is filled through a twin in system memory.
class FilledTexture {
  public:
    HRESULT Create(IDirect3DDevice9& device, const TextureShape& shape, D3DFORMAT format);
    /// The texture whose levels are to be written.
    IDirect3DTexture9& Target() { return twin_ ? *twin_ : *texture_; }
    /// Brings the levels into the texture and hands it over.
    HRESULT Finish(IDirect3DDevice9& device, IDirect3DTexture9** texture);

  private:
    DevicePtr<IDirect3DTexture9> texture_, twin_;
};

/// Writes rows (of pixels, or of blocks) that follow one another without padding.
HRESULT CopyRowsToLevel(IDirect3DTexture9& texture, UINT level, const BYTE* rows, std::size_t row_bytes, UINT count);

/// Writes the pixels of an image of the level's size in the level's format.
HRESULT StoreLevel(IDirect3DTexture9& texture, UINT level, const Image& image);

}   // namespace sparkrig
