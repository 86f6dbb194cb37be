#include "platform/d3dx/pixel_formats.h"
#include "platform/d3dx/dds_file.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

TEST(DdsFile, FindsLevelsOneAfterTheOther) {
    const D3DXIMAGE_INFO info = {10, 4, 1, 4, D3DFMT_DXT1, D3DRTYPE_TEXTURE, D3DXIFF_DDS};
    constexpr std::size_t kRows[][5] = {{10, 4, 128, 24, 1}, {5, 2, 152, 16, 1}, {2, 1, 168, 8, 1}, {1, 1, 176, 8, 1}};
    for (UINT level = 0; level < 4; ++level) {
        const DdsLevel found = FindDdsLevel(info, level);
        EXPECT_THAT(kRows[level], ElementsAre(found.width, found.height, found.offset, found.row_bytes, found.rows));
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
