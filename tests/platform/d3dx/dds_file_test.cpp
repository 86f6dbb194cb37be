#include <gmock/gmock.h>

#include "platform/d3dx/dds_file.h"
#include "platform/d3dx/pixel_formats.h"
#include "tests/support/picture_files.h"

namespace sparkrig {
namespace {

TEST(DdsFile, KnowsEachPixelFormat) {
    const struct {
        D3DFORMAT format;
        UINT flags, four_cc, bits, r, g, b, a;
    } rows[] = {
        {D3DFMT_A8R8G8B8, 0x41, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000},
        {D3DFMT_X8R8G8B8, 0x40, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0},
        {D3DFMT_A8B8G8R8, 0x41, 0, 32, 0xFF, 0xFF00, 0xFF0000, 0xFF000000},
        {D3DFMT_R8G8B8, 0x40, 0, 24, 0xFF0000, 0xFF00, 0xFF, 0},
        {D3DFMT_R5G6B5, 0x40, 0, 16, 0xF800, 0x7E0, 0x1F, 0},
        {D3DFMT_X1R5G5B5, 0x40, 0, 16, 0x7C00, 0x3E0, 0x1F, 0},
        {D3DFMT_A1R5G5B5, 0x41, 0, 16, 0x7C00, 0x3E0, 0x1F, 0x8000},
        {D3DFMT_A4R4G4B4, 0x41, 0, 16, 0xF00, 0xF0, 0xF, 0xF000},
        {D3DFMT_A8, 2, 0, 8, 0, 0, 0, 0xFF},
        {D3DFMT_L8, 0x20000, 0, 8, 0xFF, 0, 0, 0},
        {D3DFMT_A8L8, 0x20001, 0, 16, 0xFF, 0, 0, 0xFF00},
        {D3DFMT_DXT1, 4, D3DFMT_DXT1, 0, 0, 0, 0, 0},
        {D3DFMT_DXT5, 5, D3DFMT_DXT5, 32, 1, 2, 3, 4},
    };
    for (const auto& row : rows) {
        const std::string file = DdsHead({8, 4, 0, row.flags, row.four_cc, row.bits, row.r, row.g, row.b, row.a}) +
                                 std::string(8 * 4 * 4, '\x55');
        D3DXIMAGE_INFO info = {};
        ASSERT_TRUE(ReadDdsInfo(BytesOf(file), info)) << row.format;
        EXPECT_EQ(info.Format, row.format);
        EXPECT_EQ(info.MipLevels, 1u);
        Image image;
        EXPECT_EQ(DecodeDds(BytesOf(file), info, 0, image), D3D_OK);
        EXPECT_EQ(image.Count(), 32u);
    }
}

TEST(DdsFile, RefusesHostileHeads) {
    const DdsFields good = {4, 4, 1, 0x41, 0, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    const std::string pixels(64, '\x11');
    D3DXIMAGE_INFO info = {};
    ASSERT_TRUE(ReadDdsInfo(BytesOf(DdsHead(good) + pixels), info));
    constexpr void (*kChanges[])(DdsFields&) = {
        [](DdsFields& f) { f.width = 0; },
        [](DdsFields& f) { f.height = 0xFFFFFFFF; },
        [](DdsFields& f) { f.width = f.height = 65536; },
        [](DdsFields& f) { f.width = 5; },       // one column more than there are bytes for
        [](DdsFields& f) { f.mip_count = 2; },   // its second level is missing
        [](DdsFields& f) { f.mip_count = 0x80000000; },
        [](DdsFields& f) { f.caps2 = 0x200; },      // a cube
        [](DdsFields& f) { f.caps2 = 0x200000; },   // a volume
        [](DdsFields& f) { f.flags = 4, f.four_cc = MakeFourCC('D', 'X', '1', '0'); },
        [](DdsFields& f) { f.bits = 31; },
        [](DdsFields& f) { f.g = 0xFF01; }};
    for (const auto& change : kChanges) {
        DdsFields fields = good;
        change(fields);
        EXPECT_FALSE(ReadDdsInfo(BytesOf(DdsHead(fields) + pixels), info)) << &change - kChanges;
    }
    for (const std::size_t size_field : {4u, 76u}) {
        std::string file = DdsHead(good) + pixels;
        ++file[size_field];
        EXPECT_FALSE(ReadDdsInfo(BytesOf(file), info)) << size_field;
    }
}

TEST(DdsFile, CutShortAtEveryLengthIsRefused) {
    const std::string file = DdsFile(TestPicture::Pattern(5, 3));
    D3DXIMAGE_INFO info = {};
    for (std::size_t length = 0; length < file.size(); ++length)
        EXPECT_EQ(ReadImageInfo(BytesOf(file.substr(0, length)), info), D3DXERR_INVALIDDATA) << length;
    EXPECT_EQ(ReadImageInfo(BytesOf(file), info), D3D_OK);
}

TEST(DdsFile, FindsLevelsOneAfterTheOther) {
    const D3DXIMAGE_INFO info = {10, 4, 1, 4, D3DFMT_DXT1, D3DRTYPE_TEXTURE, D3DXIFF_DDS};
    constexpr std::size_t kRows[][5] = {{10, 4, 128, 24, 1}, {5, 2, 152, 16, 1}, {2, 1, 168, 8, 1}, {1, 1, 176, 8, 1}};
    for (UINT level = 0; level < 4; ++level) {
        const DdsLevel found = FindDdsLevel(info, level);
        EXPECT_THAT(kRows[level],
                    testing::ElementsAre(found.width, found.height, found.offset, found.row_bytes, found.rows));
    }
}

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
    const struct {
        D3DFORMAT format;
        D3DCOLOR colour;
        UINT stored;
        D3DCOLOR back;
    } rows[] = {
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
    for (const auto& row : rows) {
        UINT stored = 0;
        PackPixels(row.format, &row.colour, 1, reinterpret_cast<BYTE*>(&stored));
        EXPECT_EQ(stored, row.stored) << row.format;
        D3DCOLOR back;
        UnpackPixels(row.format, reinterpret_cast<BYTE*>(&stored), 1, &back);
        EXPECT_EQ(back, row.back) << row.format;
    }
}

}   // namespace
}   // namespace sparkrig
