#include <algorithm>
#include <cstring>

#include "platform/d3dx/dxt_blocks.h"
#include "platform/d3dx/pixel_formats.h"

namespace sparkrig {
namespace {

constexpr D3DCOLOR kOpaque = 0xFF000000, kColour = 0x00FFFFFF;

/// (wa * a + wb * b + half) / (wa + wb) for each of red, green and blue.
D3DCOLOR Mix(D3DCOLOR a, D3DCOLOR b, UINT wa, UINT wb, UINT half) {
    D3DCOLOR mixed = 0;
    for (UINT shift = 0; shift < 24; shift += 8)
        mixed |= ((a >> shift & 0xFF) * wa + (b >> shift & 0xFF) * wb + half) / (wa + wb) << shift;
    return mixed;
}

void DecodeColours(const BYTE* block, bool dxt1, D3DCOLOR (&pixels)[16]) {
    D3DCOLOR palette[4];
    UnpackPixels(D3DFMT_R5G6B5, block, 2, palette);
    const UINT c0 = block[0] | block[1] << 8, c1 = block[2] | block[3] << 8;
    if (!dxt1 || c0 > c1) {
        palette[2] = kOpaque | Mix(palette[0], palette[1], 2, 1, 1);
        palette[3] = kOpaque | Mix(palette[0], palette[1], 1, 2, 1);
    } else {
        palette[2] = kOpaque | Mix(palette[0], palette[1], 1, 1, 0);
        palette[3] = 0;
    }
    UINT indices;
    std::memcpy(&indices, block + 4, sizeof indices);
    for (D3DCOLOR& pixel : pixels) {
        pixel = palette[indices & 3];
        indices >>= 2;
    }
}

void DecodeExplicitAlpha(const BYTE* block, D3DCOLOR (&pixels)[16]) {
    for (UINT i = 0; i < 16; ++i) {
        const UINT alpha = (block[i / 2] >> (i % 2 * 4) & 15) * 17;
        pixels[i] = (pixels[i] & kColour) | alpha << 24;
    }
}

void DecodeInterpolatedAlpha(const BYTE* block, D3DCOLOR (&pixels)[16]) {
    const UINT a0 = block[0], a1 = block[1];
    UINT values[8] = {a0, a1};
    if (a0 > a1) {
        for (UINT i = 2; i < 8; ++i) values[i] = ((8 - i) * a0 + (i - 1) * a1 + 3) / 7;
    } else {
        for (UINT i = 2; i < 6; ++i) values[i] = ((6 - i) * a0 + (i - 1) * a1 + 2) / 5;
        values[6] = 0;
        values[7] = 255;
    }
    std::uint64_t indices = 0;
    std::memcpy(&indices, block + 2, 6);
    for (D3DCOLOR& pixel : pixels) {
        pixel = (pixel & kColour) | values[indices & 7] << 24;
        indices >>= 3;
    }
}

}   // namespace

void DecodeDxtBlock(D3DFORMAT format, const BYTE* block, D3DCOLOR (&pixels)[16]) {
    const bool dxt1 = format == D3DFMT_DXT1;
    DecodeColours(dxt1 ? block : block + 8, dxt1, pixels);
    if (format == D3DFMT_DXT2 || format == D3DFMT_DXT3) DecodeExplicitAlpha(block, pixels);
    if (format == D3DFMT_DXT4 || format == D3DFMT_DXT5) DecodeInterpolatedAlpha(block, pixels);
}

void DecodeDxt(D3DFORMAT format, const BYTE* blocks, std::size_t pitch, Image& image) {
    for (UINT top = 0; top < image.height; top += kBlockSide, blocks += pitch) {
        const BYTE* block = blocks;
        const UINT rows = std::min(kBlockSide, image.height - top);
        for (UINT left = 0; left < image.width; left += kBlockSide, block += DxtBlockBytes(format)) {
            D3DCOLOR pixels[16];
            DecodeDxtBlock(format, block, pixels);
            const UINT columns = std::min(kBlockSide, image.width - left);
            for (UINT y = 0; y < rows; ++y) std::copy_n(pixels + 4 * y, columns, image.Row(top + y) + left);
        }
    }
}

}   // namespace sparkrig
