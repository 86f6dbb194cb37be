#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "platform/d3dx/dxt_blocks.h"

namespace sparkrig {
namespace {

constexpr D3DFORMAT kFormats[] = {D3DFMT_DXT1, D3DFMT_DXT2, D3DFMT_DXT3, D3DFMT_DXT4, D3DFMT_DXT5};

TEST(DxtBlocks, DecodeTheColoursOfADxt1Block) {
    // Ends 0xF800 (red) and 0x001F (blue); the rows hold the indices 0, 1, 2, 3.
    const struct {
        const char* name;
        BYTE block[8];
        D3DCOLOR row[4];
    } rows[] = {
        {"four colours",
         {0x00, 0xF8, 0x1F, 0x00, 0xE4, 0xE4, 0xE4, 0xE4},
         {0xFFFF0000, 0xFF0000FF, 0xFFAA0055, 0xFF5500AA}},
        {"three colours", {0x1F, 0x00, 0x00, 0xF8, 0xE4, 0xE4, 0xE4, 0xE4}, {0xFF0000FF, 0xFFFF0000, 0xFF7F007F, 0}},
    };
    for (const auto& row : rows) {
        D3DCOLOR pixels[16];
        DecodeDxtBlock(D3DFMT_DXT1, row.block, pixels);
        for (int i = 0; i < 16; ++i) EXPECT_EQ(pixels[i], row.row[i % 4]) << row.name << i;
    }
}

TEST(DxtBlocks, OtherFormatsAlwaysHaveFourColours) {
    const BYTE block[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0x1F, 0x00, 0x00, 0xF8, 0xE4, 0xE4, 0xE4, 0xE4};
    for (const D3DFORMAT format : {D3DFMT_DXT2, D3DFMT_DXT3, D3DFMT_DXT4, D3DFMT_DXT5}) {
        D3DCOLOR pixels[16];
        DecodeDxtBlock(format, block, pixels);
        EXPECT_EQ(pixels[2], 0x005500AAu);
        EXPECT_EQ(pixels[3], 0x00AA0055u);
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

Image SmoothImage(UINT width, UINT height) {
    Image image(width, height);
    for (UINT y = 0; y < height; ++y)
        for (UINT x = 0; x < width; ++x)
            image.Row(y)[x] = (200 + x) << 24 | (40 + 5 * x) << 16 | (90 + 3 * y) << 8 | (200 - 2 * x - 2 * y);
    return image;
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
    const Image image = SmoothImage(13, 6);   // blocks stick out on both sides
    for (const D3DFORMAT format : kFormats) {
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
