#include "gfx/device/pixel_codec.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

TEST(PixelCodec, PacksAndUnpacks) {
    constexpr D3DCOLOR kColour = 0x93B5D7E9;
    // clang-format off
    const struct { D3DFORMAT format; int bytes; DWORD packed; DWORD stored; D3DCOLOR unpacked; } rows[] = {
        {D3DFMT_R8G8B8, 3, kColour, 0x12345678, 0x12345678},
        {D3DFMT_A8R8G8B8, 4, kColour, 0x12345678, 0x12345678},
        {D3DFMT_X8R8G8B8, 4, kColour, 0x12345678, 0x12345678},
        {D3DFMT_R5G6B5, 2, 0xB6BD, 0xABCD, 0xFFA87868},
        {D3DFMT_A1R5G5B5, 2, 0xDB5D, 0xABCD, 0xFF50F068},
        {D3DFMT_A1R5G5B5, 2, 0xDB5D, 0x2BCD, 0x0050F068},
        {D3DFMT_A4R4G4B4, 2, 0x9BDE, 0xABCD, 0xA0B0C0D0},
        {D3DFMT_A8, 1, 0x93, 0x6E, 0x6E000000},
        {D3DFMT_L8, 1, 0xD1, 0x6E, 0xFF6E6E6E},
        {D3DFMT_A8L8, 2, 0x93D1, 0xABCD, 0xABCDCDCD},
        {D3DFMT_D16, 2, kColour, 0xABCD, 0xABCD},
        {D3DFMT_DXT1, 0, kColour, 0xABCD, 0xABCD},
        {D3DFMT_DXT5, 0, kColour, 0xABCD, 0xABCD},
    };
    // clang-format on
    for (const auto& row : rows) {
        const PixelCodec* codec = FindPixelCodec(row.format);
        ASSERT_TRUE(codec) << row.format;
        EXPECT_EQ(codec->bytes, row.bytes) << row.format;
        EXPECT_EQ(codec->pack(kColour), row.packed) << row.format;
        EXPECT_EQ(codec->unpack(row.stored), row.unpacked) << row.format;
    }
    for (const D3DFORMAT format : {D3DFMT_UNKNOWN, D3DFMT_X1R5G5B5, D3DFMT_P8, D3DFMT_V8U8, D3DFMT_D24S8})
        EXPECT_FALSE(FindPixelCodec(format)) << format;
}

TEST(PixelCodec, EverySixteenBitValueComesBack) {
    for (const D3DFORMAT format : {D3DFMT_R5G6B5, D3DFMT_A1R5G5B5, D3DFMT_A4R4G4B4, D3DFMT_A8L8, D3DFMT_D16}) {
        const PixelCodec& codec = *FindPixelCodec(format);
        for (DWORD value = 0; value < 65536; ++value) ASSERT_EQ(codec.pack(codec.unpack(value)), value) << format;
    }
}

}   // namespace
}   // namespace sparkrig
