// Any bytes as a picture file, loaded through to the texture of a device. The first byte says how, the rest is the
// file.
#include "fuzz/target.h"
#include "platform/d3dx/d3dx_texture.h"
#include "tests/support/recording.h"

namespace sparkrig {
namespace {

constexpr std::uint64_t kMostPixels = 1 << 18;   // enough to find what there is to find, fast enough to look often

struct Wish {
    UINT side, levels;
    DWORD usage;
    D3DFORMAT format;
    D3DPOOL pool;
    DWORD filter, mip_filter;
    D3DCOLOR colour_key;
};
// clang-format off
constexpr Wish kWishes[] = {
    {D3DX_DEFAULT_NONPOW2, 1,            0,                     D3DFMT_UNKNOWN,  D3DPOOL_MANAGED,   D3DX_FILTER_NONE,     D3DX_FILTER_BOX,    0},
    {D3DX_DEFAULT_NONPOW2, 0,            0,                     D3DFMT_UNKNOWN,  D3DPOOL_DEFAULT,   D3DX_FILTER_LINEAR,   D3DX_FILTER_LINEAR, 0},
    {D3DX_DEFAULT,         0,            0,                     D3DFMT_DXT1,     D3DPOOL_MANAGED,   D3DX_FILTER_LINEAR,   D3DX_FILTER_BOX,    0xFF000000},
    {D3DX_DEFAULT,         3,            0,                     D3DFMT_DXT5,     D3DPOOL_DEFAULT,   D3DX_FILTER_TRIANGLE, D3DX_FILTER_POINT,  0},
    {37,                   D3DX_DEFAULT, 0,                     D3DFMT_R5G6B5,   D3DPOOL_SYSTEMMEM, D3DX_FILTER_POINT,    D3DX_DEFAULT,       0xFF00FF00},
    {64,                   2,            D3DUSAGE_DYNAMIC,      D3DFMT_A8L8,     D3DPOOL_DEFAULT,   D3DX_FILTER_NONE,     D3DX_DEFAULT,       0},
    {D3DX_FROM_FILE,       D3DX_FROM_FILE, 0,                   D3DFMT_UNKNOWN,  D3DPOOL_MANAGED,   D3DX_DEFAULT,         D3DX_DEFAULT,       0},
    {D3DX_FROM_FILE,       1,            D3DUSAGE_RENDERTARGET, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT,   D3DX_FILTER_BOX,      D3DX_DEFAULT,       0},
};
// clang-format on

}   // namespace

void Try(Input input) {
    if (input.empty()) return;
    const std::string file = Put(input.subspan(1));
    D3DXIMAGE_INFO info = {};
    if (FAILED(D3DXGetImageInfoFromFileA(file.c_str(), &info))) return;
    if (std::uint64_t{info.Width} * info.Height > kMostPixels) return;

    Recording recording;
    const DevicePtr<IDirect3DDevice9> device = recording.MakeDevice();
    Require(bool(device));
    const int before = recording.LiveObjects();

    const Wish& wish = kWishes[input[0] % std::size(kWishes)];
    DevicePtr<IDirect3DTexture9> texture;
    const HRESULT result = D3DXCreateTextureFromFileExA(device.Get(), file.c_str(), wish.side, wish.side, wish.levels,
                                                        wish.usage, wish.format, wish.pool, wish.filter,
                                                        wish.mip_filter, wish.colour_key, &info, texture.Receive());
    Require(SUCCEEDED(result) == bool(texture));
    if (texture) {
        D3DSURFACE_DESC desc;
        Require(SUCCEEDED(texture->GetLevelDesc(0, &desc)) && desc.Pool == wish.pool);
    }
    texture.Reset();
    Require(recording.LiveObjects() == before);
}

}   // namespace sparkrig
