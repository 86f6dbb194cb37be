#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/d3dx/dxt_blocks.h"
#include "platform/d3dx/pixel_formats.h"

#define STB_DXT_STATIC
#define STB_DXT_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb_dxt.h>
#pragma GCC diagnostic pop

namespace sparkrig {
namespace {

/// A block as the library wants it: R, G, B, A bytes, row by row.
struct BlockPixels {
    BYTE rgba[16][4];
};

void Gather(const Image& image, UINT left, UINT top, BlockPixels& block) {
    for (UINT y = 0; y < kBlockSide; ++y) {
        const D3DCOLOR* row = image.Row(std::min(top + y, image.height - 1));
        for (UINT x = 0; x < kBlockSide; ++x) {
            const D3DCOLOR p = row[std::min(left + x, image.width - 1)];
            const D3DCOLOR rgba = (p & 0xFF00FF00) | (p >> 16 & 0xFF) | (p & 0xFF) << 16;
            std::memcpy(block.rgba[4 * y + x], &rgba, 4);
        }
    }
}

void EncodeOpaque(const BlockPixels& block, BYTE* out) {
    stb_compress_dxt_block(out, &block.rgba[0][0], 0, STB_DXT_NORMAL);
}

int Distance(const BYTE* pixel, D3DCOLOR colour) {
    const int r = pixel[0] - static_cast<int>(colour >> 16 & 0xFF), g = pixel[1] - static_cast<int>(colour >> 8 & 0xFF),
              b = pixel[2] - static_cast<int>(colour & 0xFF);
    return r * r + g * g + b * b;
}

bool IsTransparent(const BYTE* pixel) { return pixel[3] < 128; }

/// A block with transparent pixels has three colours: the two ends that the library finds for the opaque pixels, the
/// smaller one first, and their middle; index 3 is transparent.
void EncodeTransparent(BlockPixels block, BYTE* out) {
    BYTE* const end = &block.rgba[0][0] + sizeof block.rgba;
    const BYTE* opaque = nullptr;
    for (BYTE* p = &block.rgba[0][0]; p < end; p += 4)
        if (!IsTransparent(p)) opaque = p;
    if (!opaque) {
        std::memset(out, 0, 4);
        std::memset(out + 4, 0xFF, 4);
        return;
    }
    BlockPixels filled = block;
    for (auto& pixel : filled.rgba)
        if (IsTransparent(pixel)) std::memcpy(pixel, opaque, 3);
    EncodeOpaque(filled, out);
    if ((out[0] | out[1] << 8) > (out[2] | out[3] << 8)) {
        std::swap(out[0], out[2]);
        std::swap(out[1], out[3]);
    }
    D3DCOLOR palette[16];
    const BYTE every_index[8] = {out[0], out[1], out[2], out[3], 0xE4, 0xE4, 0xE4, 0xE4};   // 0, 1, 2, 3 in each row
    DecodeDxtBlock(D3DFMT_DXT1, every_index, palette);
    UINT indices = 0;
    for (int i = 15; i >= 0; --i) {
        UINT best = 0;
        for (UINT k = 1; k < 3; ++k)
            if (Distance(block.rgba[i], palette[k]) < Distance(block.rgba[i], palette[best])) best = k;
        indices = indices << 2 | (IsTransparent(block.rgba[i]) ? 3 : best);
    }
    std::memcpy(out + 4, &indices, 4);
}

void EncodeDxt1(const BlockPixels& block, BYTE* out) {
    const bool transparent =
        std::ranges::any_of(block.rgba, [](const BYTE(&pixel)[4]) { return IsTransparent(pixel); });
    transparent ? EncodeTransparent(block, out) : EncodeOpaque(block, out);
}

void EncodeExplicitAlpha(const BlockPixels& block, BYTE* out) {
    std::memset(out, 0, 8);
    for (int i = 0; i < 16; ++i) out[i / 2] |= static_cast<BYTE>((block.rgba[i][3] + 8) / 17 << (i % 2 * 4));
    EncodeOpaque(block, out + 8);
}

void EncodeInterpolatedAlpha(const BlockPixels& block, BYTE* out) {
    stb_compress_dxt_block(out, &block.rgba[0][0], 1, STB_DXT_NORMAL);
}

using EncodeBlock = void (*)(const BlockPixels&, BYTE*);

EncodeBlock EncoderOf(D3DFORMAT format) {
    if (format == D3DFMT_DXT1) return EncodeDxt1;
    return format == D3DFMT_DXT2 || format == D3DFMT_DXT3 ? EncodeExplicitAlpha : EncodeInterpolatedAlpha;
}

}   // namespace

void EncodeDxt(D3DFORMAT format, const Image& image, BYTE* blocks, std::size_t pitch) {
    const EncodeBlock encode = EncoderOf(format);
    for (UINT top = 0; top < image.height; top += kBlockSide, blocks += pitch) {
        BYTE* out = blocks;
        for (UINT left = 0; left < image.width; left += kBlockSide, out += DxtBlockBytes(format)) {
            BlockPixels block;
            Gather(image, left, top, block);
            encode(block, out);
        }
    }
}

}   // namespace sparkrig
