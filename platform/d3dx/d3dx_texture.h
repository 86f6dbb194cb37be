// Image files to textures: jpg, tga, bmp, png and dds, found by their contents.
#pragma once
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

inline constexpr DWORD D3DX_FILTER_NONE = 1, D3DX_FILTER_POINT = 2, D3DX_FILTER_LINEAR = 3, D3DX_FILTER_TRIANGLE = 4,
                       D3DX_FILTER_BOX = 5, D3DX_FILTER_MIRROR_U = 0x10000, D3DX_FILTER_MIRROR_V = 0x20000;
inline constexpr UINT D3DX_DEFAULT = 0xFFFFFFFF, D3DX_DEFAULT_NONPOW2 = 0xFFFFFFFE, D3DX_FROM_FILE = 0xFFFFFFFD;

enum D3DXIMAGE_FILEFORMAT : DWORD {
    D3DXIFF_BMP = 0,
    D3DXIFF_JPG = 1,
    D3DXIFF_TGA = 2,
    D3DXIFF_PNG = 3,
    D3DXIFF_DDS = 4
};

struct D3DXIMAGE_INFO {
    UINT Width, Height, Depth, MipLevels;
    D3DFORMAT Format;   // the one that most closely describes the stored data
    D3DRESOURCETYPE ResourceType;
    D3DXIMAGE_FILEFORMAT ImageFileFormat;
};

HRESULT D3DXGetImageInfoFromFileA(const char* file, D3DXIMAGE_INFO* info);
HRESULT D3DXGetImageInfoFromFileInMemory(const void* data, UINT bytes, D3DXIMAGE_INFO* info);

/// Width and height: a number, D3DX_DEFAULT (rounded up to a power of two), D3DX_DEFAULT_NONPOW2 or D3DX_FROM_FILE.
/// A colour key other than 0 makes the pixels that equal it transparent black.
HRESULT D3DXCreateTextureFromFileExA(IDirect3DDevice9* device, const char* file, UINT width, UINT height, UINT levels,
                                     DWORD usage, D3DFORMAT format, D3DPOOL pool, DWORD filter, DWORD mip_filter,
                                     D3DCOLOR colour_key, D3DXIMAGE_INFO* info, IDirect3DTexture9** texture);
/// The same from a file's bytes.
HRESULT D3DXCreateTextureFromFileInMemoryEx(IDirect3DDevice9* device, const void* data, UINT bytes, UINT width,
                                            UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                            DWORD filter, DWORD mip_filter, D3DCOLOR colour_key, D3DXIMAGE_INFO* info,
                                            IDirect3DTexture9** texture);

/// CreateTexture with its parameters corrected first: size 0 becomes 1, levels 0 the full chain.
HRESULT D3DXCreateTexture(IDirect3DDevice9* device, UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format,
                          D3DPOOL pool, IDirect3DTexture9** texture);

}   // namespace sparkrig
