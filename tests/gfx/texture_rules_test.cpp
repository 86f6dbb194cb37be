// The rules for textures that need no device: formats, frames, matrices, the order of layers.

#include <cmath>

#include "gfx/device/pixel_codec.h"
#include "gfx/textures/stage_recipes.h"
#include "gfx/textures/texture_format.h"
#include "gfx/textures/texture_sequence.h"
#include "scene/texture_matrix.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

TEST(TextureFormat, PowersOfTwo) {
    constexpr std::pair<UINT, UINT> kRows[] = {
        {0, 0}, {1, 1}, {2, 2}, {3, 4}, {300, 512}, {0x80000000, 0x80000000}, {0x80000001, 0}};
    for (const auto& [value, rounded] : kRows) {
        EXPECT_EQ(RoundUpToPowerOfTwo(value), rounded) << value;
        EXPECT_EQ(IsPowerOfTwo(value), value == rounded) << value;
    }
}

TEST(TextureFormat, IsChosenFromImageDisplayAndCompression) {
    constexpr D3DFORMAT k32 = D3DFMT_X8R8G8B8, k16 = D3DFMT_R5G6B5;   // displays
    // clang-format off
    const struct { const char* name; FormatQuestion question; D3DFORMAT chosen; } rows[] = {
        {"kept on 32 bits",           {D3DFMT_X8R8G8B8, 256,   256,   k32, false, 65536}, D3DFMT_UNKNOWN},
        {"16-bit display",            {D3DFMT_X8R8G8B8, 256,   256,   k16, false, 65536}, D3DFMT_R5G6B5 },
        {"alpha on a 16-bit display", {D3DFMT_A8R8G8B8, 256,   256,   k16, false, 65536}, D3DFMT_UNKNOWN},
        {"555",                       {D3DFMT_X1R5G5B5, 4,     4,     k32, false, 65536}, D3DFMT_R5G6B5 },
        {"below the threshold",       {D3DFMT_A8R8G8B8, 256,   128,   k32, true,  65536}, D3DFMT_UNKNOWN},
        {"rounded to the threshold",  {D3DFMT_A8R8G8B8, 300,   100,   k32, true,  65536}, D3DFMT_DXT5   },
        {"1555",                      {D3DFMT_A1R5G5B5, 256,   256,   k32, true,  65536}, D3DFMT_DXT5   },
        {"4444",                      {D3DFMT_A4R4G4B4, 256,   256,   k32, true,  65536}, D3DFMT_DXT5   },
        {"compressed already",        {D3DFMT_DXT3,     256,   256,   k32, true,  65536}, D3DFMT_DXT3   },
        {"others, wide",              {D3DFMT_X8R8G8B8, 65536, 65536, k32, true,  65536}, D3DFMT_DXT1   },
    };
    // clang-format on
    for (const auto& row : rows) EXPECT_EQ(ChooseTextureFormat(row.question), row.chosen) << row.name;
}

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

TEST(TextureSequence, ShowsTheFrameOfTheTime) {
    constexpr float kStart = 2.0f, kDuration = 0.1f;
    const std::tuple<PlaybackMode, int, float, int> rows[] = {
        {PlaybackMode::Loop, 4, 0.05f, 0},      {PlaybackMode::Loop, 4, 0.35f, 3},
        {PlaybackMode::Loop, 4, 0.45f, 0},      {PlaybackMode::Loop, 4, -0.05f, 3},
        {PlaybackMode::Loop, 4, -0.45f, 3},     {PlaybackMode::Once, 4, -0.05f, 0},
        {PlaybackMode::Once, 4, 0.25f, 2},      {PlaybackMode::Once, 4, 9.0f, 3},
        {PlaybackMode::PingPong, 1, 0.55f, 0},  {PlaybackMode::PingPong, 4, 0.05f, 0},
        {PlaybackMode::PingPong, 4, 0.35f, 3},  {PlaybackMode::PingPong, 4, 0.45f, 3},
        {PlaybackMode::PingPong, 4, 0.75f, 0},  {PlaybackMode::PingPong, 4, 0.85f, 0},
        {PlaybackMode::PingPong, 4, -0.05f, 0}, {PlaybackMode::PingPong, 4, -0.35f, 3},
    };
    for (const auto& [mode, frames, since, frame] : rows)
        EXPECT_EQ(FrameAt({kStart, kDuration, mode}, frames, kStart + since), frame)
            << static_cast<int>(mode) << " " << frames << " " << since;
    for (const PlaybackMode mode : {PlaybackMode::Loop, PlaybackMode::PingPong, PlaybackMode::Once})
        for (const float duration : {0.0f, -1.0f, 1e-38f, 1e38f, NAN, INFINITY})
            for (const float t : {0.0f, -1e38f, 1e38f, NAN, INFINITY}) {
                const int frame = FrameAt({0, duration, mode}, 3, t);
                EXPECT_TRUE(frame >= 0 && frame < 3) << duration << " " << t;
            }
}

TEST(TextureMatrix, MovesTilesAndTurnsAboutTheMiddle) {
    // clang-format off
    const struct { const char* name; TextureMatrixValues values; float u, v, to_u, to_v; } rows[] = {
        {"nothing", {}, 0.25f, 0.75f, 0.25f, 0.75f},
        {"tiling", {0, 0, 2, 3, 0}, 0.75f, 0.75f, 1.0f, 1.25f},
        {"offset, turned, tiled", {0.1f, 0.2f, 2, 1, 1.5707963f}, 0.75f, 0.5f, 0.9f, 0.35f},
    };
    // clang-format on
    for (const auto& [name, values, u, v, to_u, to_v] : rows) {
        const D3DXMATRIX m = BuildTextureMatrix(values);
        EXPECT_NEAR(u * m.m[0][0] + v * m.m[1][0] + m.m[2][0], to_u, 1e-6) << name;
        EXPECT_NEAR(u * m.m[0][1] + v * m.m[1][1] + m.m[2][1], to_v, 1e-6) << name;
    }
    EXPECT_EQ(BuildTextureMatrix({}), kIdentityMatrix);
}

TEST(StageRecipes, KindsStandWhereTheyMay) {
    constexpr char kReflection[] = "Reflection map in stage other than zero!";
    constexpr char kDiffuse[] = "More than one diffuse map requires a diffuse map at stage 0";
    const std::tuple<MapKind, int, MapKind, const char*> rows[] = {
        {MapKind::Diffuse, 0, MapKind::Diffuse, nullptr},
        {MapKind::Diffuse, 1, MapKind::Diffuse, nullptr},
        {MapKind::Diffuse, 1, MapKind::Reflection, nullptr},
        {MapKind::Diffuse, 1, MapKind::SphereReflection, nullptr},
        {MapKind::Diffuse, 1, MapKind::Bump, kDiffuse},
        {MapKind::Diffuse, 2, MapKind::None, kDiffuse},
        {MapKind::Reflection, 0, MapKind::Reflection, nullptr},
        {MapKind::Reflection, 1, MapKind::Diffuse, kReflection},
        {MapKind::Bump, 2, MapKind::Diffuse, nullptr},
        {MapKind::None, 1, MapKind::None, nullptr},
        {static_cast<MapKind>(77), 1, MapKind::None, nullptr},
    };
    for (const auto& [kind, stage, first, error] : rows) EXPECT_STREQ(WhyNotAtStage(kind, stage, first), error);
    EXPECT_EQ(RecipeOf(static_cast<MapKind>(77), 1, 1).operation, DWORD{D3DTOP_DISABLE});
}

}   // namespace
}   // namespace sparkrig
