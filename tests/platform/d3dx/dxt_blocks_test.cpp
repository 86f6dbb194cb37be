#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "platform/d3dx/dxt_blocks.h"

namespace sparkrig {
namespace {

TEST(DxtBlocks, DecodeTheColoursOfABlock) {
    // Ends 0xF800 (red) and 0x001F (blue); the rows hold the indices 0, 1, 2, 3.
    constexpr BYTE kRedFirst[] = {0, 0, 0, 0, 0, 0, 0, 0, 0x00, 0xF8, 0x1F, 0x00, 0xE4, 0xE4, 0xE4, 0xE4},
                   kBlueFirst[] = {0, 0, 0, 0, 0, 0, 0, 0, 0x1F, 0x00, 0x00, 0xF8, 0xE4, 0xE4, 0xE4, 0xE4};
    D3DCOLOR pixels[16];
    const auto row = [&](int y) { return std::vector<D3DCOLOR>(&pixels[4 * y], &pixels[4 * y + 4]); };
    for (int y = 0; y < 4; ++y) {
        DecodeDxtBlock(D3DFMT_DXT1, kRedFirst + 8, pixels);
        EXPECT_EQ(row(y), (std::vector<D3DCOLOR>{0xFFFF0000, 0xFF0000FF, 0xFFAA0055, 0xFF5500AA}));
        DecodeDxtBlock(D3DFMT_DXT1, kBlueFirst + 8, pixels);   // three colours
        EXPECT_EQ(row(y), (std::vector<D3DCOLOR>{0xFF0000FF, 0xFFFF0000, 0xFF7F007F, 0}));
        for (const D3DFORMAT format : {D3DFMT_DXT2, D3DFMT_DXT3, D3DFMT_DXT4, D3DFMT_DXT5}) {   // always four
            DecodeDxtBlock(format, kBlueFirst, pixels);
            EXPECT_EQ(row(y), (std::vector<D3DCOLOR>{0x000000FF, 0x00FF0000, 0x005500AA, 0x00AA0055}));
        }
    }
}

TEST(DxtBlocks, DecodeExplicitAlpha) {
    const BYTE block[16] = {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE};
    D3DCOLOR pixels[16];
    DecodeDxtBlock(D3DFMT_DXT3, block, pixels);
    for (UINT i = 0; i < 16; ++i) EXPECT_EQ(pixels[i] >> 24, i * 17);
}

TEST(DxtBlocks, DecodeInterpolatedAlpha) {
    // Indices 0 to 7 for the first eight pixels.
    const struct {
        BYTE a0, a1;
        UINT values[8];
    } rows[] = {{210, 70, {210, 70, 190, 170, 150, 130, 110, 90}}, {70, 210, {70, 210, 98, 126, 154, 182, 0, 255}}};
    for (const auto& row : rows) {
        const BYTE block[16] = {row.a0, row.a1, 0x88, 0xC6, 0xFA, 0, 0, 0};
        D3DCOLOR pixels[16];
        DecodeDxtBlock(D3DFMT_DXT5, block, pixels);
        for (int i = 0; i < 8; ++i) EXPECT_EQ(pixels[i] >> 24, row.values[i]) << i;
    }
}

int LargestDifference(const Image& a, const Image& b, int channels) {
    int largest = 0;
    for (std::size_t i = 0; i < a.Count(); ++i)
        for (int c = 0; c < channels; ++c)
            largest = std::max(largest, std::abs(static_cast<int>(a.pixels[i] >> 8 * c & 255) -
                                                 static_cast<int>(b.pixels[i] >> 8 * c & 255)));
    return largest;
}

TEST(DxtBlocks, EncodingIsUndoneByDecoding) {
    Image image(13, 6);   // blocks stick out on both sides
    for (UINT y = 0; y < 6; ++y)
        for (UINT x = 0; x < 13; ++x)
            image.Row(y)[x] = (200 + x) << 24 | (40 + 5 * x) << 16 | (90 + 3 * y) << 8 | (200 - 2 * x - 2 * y);
    for (const D3DFORMAT format : {D3DFMT_DXT1, D3DFMT_DXT2, D3DFMT_DXT3, D3DFMT_DXT4, D3DFMT_DXT5}) {
        const std::size_t pitch = DxtBlocks(13) * DxtBlockBytes(format);
        std::vector<BYTE> blocks(pitch * DxtBlocks(6));
        EncodeDxt(format, image, blocks.data(), pitch);
        Image decoded(13, 6);
        DecodeDxt(format, blocks.data(), pitch, decoded);
        EXPECT_LE(LargestDifference(image, decoded, format == D3DFMT_DXT1 ? 3 : 4), 13) << format;
    }
}

TEST(DxtBlocks, Dxt1KeepsTransparentPixels) {
    Image image(4, 4);
    for (UINT i = 0; i < 16; ++i) image.pixels[i] = i % 3 == 0 ? 0x10FFFFFF : i % 2 ? 0xFFC02040 : 0xFF204080;
    BYTE block[8];
    EncodeDxt(D3DFMT_DXT1, image, block, 8);
    D3DCOLOR pixels[16];
    DecodeDxtBlock(D3DFMT_DXT1, block, pixels);
    for (UINT i = 0; i < 16; ++i) {
        EXPECT_EQ(pixels[i] >> 24, i % 3 == 0 ? 0u : 255u) << i;
        if (i % 3 == 0) continue;
        EXPECT_NEAR(static_cast<double>(pixels[i] >> 16 & 255), i % 2 ? 0xC0 : 0x20, 8) << i;
    }
}

}   // namespace
}   // namespace sparkrig
