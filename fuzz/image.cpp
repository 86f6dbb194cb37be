// Any bytes as a jpg, tga, bmp or png file: the head, then the pixels, half the size, and every stored format.
#include "fuzz/target.h"
#include "platform/d3dx/dxt_blocks.h"
#include "platform/d3dx/image_file.h"
#include "platform/d3dx/image_scale.h"
#include "platform/d3dx/pixel_formats.h"

namespace sparkrig {
namespace {

constexpr std::size_t kMostPixels = 1 << 20;   // enough to find what there is to find, fast enough to look often

void StoreInEveryFormat(const Image& image) {
    for (const D3DFORMAT format : {D3DFMT_R5G6B5, D3DFMT_A1R5G5B5, D3DFMT_A8L8, D3DFMT_A8R8G8B8}) {
        std::vector<BYTE> row(std::size_t{image.width} * PixelBytes(format));
        for (UINT y = 0; y < image.height; ++y) PackPixels(format, image.Row(y), image.width, row.data());
    }
    for (const D3DFORMAT format : {D3DFMT_DXT1, D3DFMT_DXT3, D3DFMT_DXT5}) {
        const std::size_t pitch = std::size_t{DxtBlocks(image.width)} * DxtBlockBytes(format);
        std::vector<BYTE> blocks(pitch * DxtBlocks(image.height));
        EncodeDxt(format, image, blocks.data(), pitch);
        Image decoded(image.width, image.height);
        DecodeDxt(format, blocks.data(), pitch, decoded);
    }
}

}   // namespace

void Try(Input input) {
    D3DXIMAGE_INFO info = {};
    if (FAILED(ReadImageInfo(input, info))) return;
    Require(IsAllowedImageSize(info.Width, info.Height));
    if (std::size_t{info.Width} * info.Height > kMostPixels) return;
    Image image, half;
    if (FAILED(DecodeImage(input, info, image))) return;
    Require(image.width == info.Width && image.height == info.Height);
    StoreInEveryFormat(image);
    Require(SUCCEEDED(HalveImage(image, half)));
    Require(SUCCEEDED(ScaleImage(half, image.width % 61 + 1, image.height % 61 + 1, D3DX_FILTER_LINEAR, image)));
}

}   // namespace sparkrig
