// Pixels in memory: their formats, compressed blocks, pictures of another size.
#include <algorithm>
#include <cstdlib>

#include "platform/d3dx/dxt_blocks.h"
#include "platform/d3dx/image_scale.h"
#include "platform/d3dx/pixel_formats.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

TEST(PixelFormats, StoreEveryValueAndGiveItBack) {
    for (const D3DFORMAT format : {D3DFMT_R5G6B5, D3DFMT_A1R5G5B5, D3DFMT_A4R4G4B4, D3DFMT_A8L8}) {
        for (UINT value = 0; value < 65536; ++value) {
            const BYTE stored[2] = {static_cast<BYTE>(value), static_cast<BYTE>(value >> 8)};
            D3DCOLOR colour;
            UnpackPixels(format, stored, 1, &colour);
            BYTE again[2];
            PackPixels(format, &colour, 1, again);
            ASSERT_EQ(again[0] | again[1] << 8, static_cast<int>(value)) << format;
        }
    }
}

TEST(PixelFormats, RoundToTheNearestAndStretchToTheFullRange) {
    constexpr std::tuple<D3DFORMAT, D3DCOLOR, UINT, D3DCOLOR> kRows[] = {
        // a colour, as it is stored, and back
        {D3DFMT_R5G6B5, 0xFF84827C, 0x840F, 0xFF84827B},
        {D3DFMT_A1R5G5B5, 0x7FFF0000, 0x7C00, 0x00FF0000},
        {D3DFMT_A1R5G5B5, 0x800000FF, 0x801F, 0xFF0000FF},
        {D3DFMT_A4R4G4B4, 0x84F70718, 0x8F01, 0x88FF0011},
        {D3DFMT_A8, 0x96102030, 0x96, 0x96000000},
        {D3DFMT_L8, 0x80102060, 0x30, 0xFF303030},
        {D3DFMT_A8L8, 0x80102060, 0x8030, 0x80303030},
        {D3DFMT_X8R8G8B8, 0x12345678, 0xFF345678, 0xFF345678},
        {D3DFMT_A8B8G8R8, 0x12345678, 0x12785634, 0x12345678},
    };
    for (const auto& [format, colour, wanted, wanted_back] : kRows) {
        UINT stored = 0;
        PackPixels(format, &colour, 1, reinterpret_cast<BYTE*>(&stored));
        EXPECT_EQ(stored, wanted) << format;
        D3DCOLOR back;
        UnpackPixels(format, reinterpret_cast<BYTE*>(&stored), 1, &back);
        EXPECT_EQ(back, wanted_back) << format;
    }
}

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

TEST(DxtBlocks, DecodeAlpha) {
    const struct {
        D3DFORMAT format;
        BYTE block[16];
        UINT values[8];   // of the first eight pixels; interpolated: the indices 0 to 7
    } kRows[] = {{D3DFMT_DXT3, {0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}, {0, 17, 34, 51, 68, 85, 102, 119}},
                 {D3DFMT_DXT5, {210, 70, 0x88, 0xC6, 0xFA}, {210, 70, 190, 170, 150, 130, 110, 90}},
                 {D3DFMT_DXT5, {70, 210, 0x88, 0xC6, 0xFA}, {70, 210, 98, 126, 154, 182, 0, 255}}};
    for (const auto& row : kRows) {
        D3DCOLOR pixels[16];
        DecodeDxtBlock(row.format, row.block, pixels);
        for (int i = 0; i < 8; ++i) EXPECT_EQ(pixels[i] >> 24, row.values[i]) << row.format << " " << i;
        EXPECT_EQ(pixels[15] >> 24, row.format == D3DFMT_DXT3 ? 255u : row.values[0]);
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

Image MakeImage(UINT width, UINT height, std::initializer_list<D3DCOLOR> pixels) {
    Image image(width, height);
    std::ranges::copy(pixels, image.pixels.get());
    return image;
}

std::vector<D3DCOLOR> Scaled(const Image& source, UINT width, UINT height, DWORD filter) {
    Image scaled;
    EXPECT_EQ(ScaleImage(source, width, height, filter, scaled), D3D_OK);
    return {scaled.Pixels().begin(), scaled.Pixels().end()};
}

TEST(ImageScale, FiltersOfOneRow) {
    const Image row = MakeImage(2, 1, {0x10203040, 0x50A070C0});
    constexpr DWORD kMirrored = D3DX_FILTER_LINEAR | D3DX_FILTER_MIRROR_U;
    const std::pair<DWORD, std::vector<D3DCOLOR>> kRows[] = {
        {D3DX_FILTER_POINT, {0x10203040, 0x10203040, 0x50A070C0, 0x50A070C0}},
        {D3DX_FILTER_POINT, {0x50A070C0}},
        // Destinations lie at -0.25, 0.25, 0.75 and 1.25; beyond the edges the other end follows, or the same one.
        {D3DX_FILTER_LINEAR, {0x20404060, 0x20404060, 0x408060A0, 0x408060A0}},
        {kMirrored, {0x10203040, 0x20404060, 0x408060A0, 0x50A070C0}},
        {D3DX_FILTER_LINEAR, {0x30605080}},
        {D3DX_FILTER_TRIANGLE | D3DX_FILTER_MIRROR_U, {0x30605080}},
        {D3DX_FILTER_BOX, {0x30605080}},
        {D3DX_FILTER_NONE, {0x10203040, 0x50A070C0, 0}},
        // as it is
        {D3DX_FILTER_NONE, {0x10203040, 0x50A070C0}},
        {D3DX_FILTER_POINT, {0x10203040, 0x50A070C0}},
        {D3DX_FILTER_LINEAR, {0x10203040, 0x50A070C0}}};
    for (const auto& [filter, expected] : kRows)
        EXPECT_EQ(Scaled(row, static_cast<UINT>(expected.size()), 1, filter), expected) << filter;
}

TEST(ImageScale, RefusesUnknownFiltersAndBoxesOfAnotherSize) {
    Image scaled;
    for (const DWORD filter : {DWORD{6}, DWORD{0}, D3DX_FILTER_BOX})
        EXPECT_EQ(ScaleImage(MakeImage(2, 2, {1, 2, 3, 4}), 4, 4, filter, scaled), D3DERR_INVALIDCALL) << filter;
}

TEST(ImageScale, HalvesWithRoundingAndDropsTheOddEdge) {
    Image half;
    ASSERT_EQ(
        HalveImage(MakeImage(3, 2, {0x01000000, 0x02000000, 0xFF111111, 0x03000000, 0x04000003, 0xFF111111}), half),
        D3D_OK);
    ASSERT_EQ(half.Count(), 1u);
    EXPECT_EQ(half.pixels[0], 0x03000001u);   // (1 + 2 + 3 + 4 + 2) / 4 and (3 + 2) / 4
    ASSERT_EQ(HalveImage(MakeImage(1, 2, {0xFF0A0000, 0xFF150000}), half), D3D_OK);
    EXPECT_EQ(half.pixels[0], 0xFF100000u);
}

}   // namespace
}   // namespace sparkrig
