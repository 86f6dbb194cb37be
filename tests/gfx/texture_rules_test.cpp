// The rules for textures that need no device: formats, frames, matrices, stages.
#include <gtest/gtest.h>

#include <cmath>

#include "gfx/textures/stage_recipes.h"
#include "gfx/textures/texture_format.h"
#include "gfx/textures/texture_sequence.h"
#include "scene/texture_matrix.h"

namespace sparkrig {
namespace {

TEST(TextureFormat, PowersOfTwo) {
    for (const UINT v : {0u, 1u, 2u, 1024u, 0x80000000u}) EXPECT_TRUE(IsPowerOfTwo(v)) << v;
    for (const UINT v : {3u, 6u, 1023u, 0xFFFFFFFFu}) EXPECT_FALSE(IsPowerOfTwo(v)) << v;
    const std::tuple<UINT, UINT> rows[] = {{0, 0},         {1, 1}, {2, 2}, {3, 4}, {300, 512}, {0x80000000, 0x80000000},
                                           {0x80000001, 0}};
    for (const auto& [value, rounded] : rows) EXPECT_EQ(RoundUpToPowerOfTwo(value), rounded) << value;
}

TEST(TextureFormat, IsChosenFromImageDisplayAndCompression) {
    const struct {
        const char* name;
        D3DFORMAT image;
        UINT width, height;
        D3DFORMAT display;
        bool compression;
        D3DFORMAT chosen;
    } rows[] = {
        {"kept", D3DFMT_A8R8G8B8, 256, 256, D3DFMT_X8R8G8B8, false, D3DFMT_UNKNOWN},
        {"kept on 32 bits", D3DFMT_X8R8G8B8, 256, 256, D3DFMT_X8R8G8B8, false, D3DFMT_UNKNOWN},
        {"16-bit display", D3DFMT_X8R8G8B8, 256, 256, D3DFMT_R5G6B5, false, D3DFMT_R5G6B5},
        {"alpha on a 16-bit display", D3DFMT_A8R8G8B8, 256, 256, D3DFMT_R5G6B5, false, D3DFMT_UNKNOWN},
        {"555", D3DFMT_X1R5G5B5, 4, 4, D3DFMT_X8R8G8B8, false, D3DFMT_R5G6B5},
        {"below the threshold", D3DFMT_A8R8G8B8, 256, 128, D3DFMT_X8R8G8B8, true, D3DFMT_UNKNOWN},
        {"rounded to the threshold", D3DFMT_A8R8G8B8, 300, 100, D3DFMT_X8R8G8B8, true, D3DFMT_DXT5},
        {"1555", D3DFMT_A1R5G5B5, 256, 256, D3DFMT_X8R8G8B8, true, D3DFMT_DXT5},
        {"4444", D3DFMT_A4R4G4B4, 256, 256, D3DFMT_X8R8G8B8, true, D3DFMT_DXT5},
        {"others", D3DFMT_L8, 256, 256, D3DFMT_X8R8G8B8, true, D3DFMT_DXT1},
        {"compressed already", D3DFMT_DXT3, 256, 256, D3DFMT_X8R8G8B8, true, D3DFMT_DXT3},
        {"wide", D3DFMT_X8R8G8B8, 16384, 16384, D3DFMT_X8R8G8B8, true, D3DFMT_DXT1},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ChooseTextureFormat({row.image, row.width, row.height, row.display, row.compression, 65536}),
                  row.chosen)
            << row.name;
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
}

TEST(TextureSequence, SurvivesEveryTiming) {
    for (const PlaybackMode mode : {PlaybackMode::Loop, PlaybackMode::PingPong, PlaybackMode::Once})
        for (const float duration : {0.0f, -1.0f, 1e-38f, 1e38f, NAN, INFINITY})
            for (const float t : {0.0f, -1e38f, 1e38f, NAN, INFINITY}) {
                const int frame = FrameAt({0, duration, mode}, 3, t);
                EXPECT_TRUE(frame >= 0 && frame < 3) << duration << " " << t;
            }
}

D3DXVECTOR2 Moved(const TextureMatrixValues& values, float u, float v) {
    const D3DXMATRIX m = BuildTextureMatrix(values);
    return {u * m.m[0][0] + v * m.m[1][0] + m.m[2][0], u * m.m[0][1] + v * m.m[1][1] + m.m[2][1]};
}

TEST(TextureMatrix, MovesTilesAndTurnsAboutTheMiddle) {
    // clang-format off
    const struct { const char* name; TextureMatrixValues values; float u, v, to_u, to_v; } rows[] = {
        {"nothing", {}, 0.25f, 0.75f, 0.25f, 0.75f},
        {"offset", {0.1f, 0.2f, 1, 1, 0}, 0.25f, 0.75f, 0.15f, 0.95f},
        {"tiling", {0, 0, 2, 3, 0}, 0.75f, 0.75f, 1.0f, 1.25f},
        {"a quarter turn", {0, 0, 1, 1, 1.5707963f}, 0.75f, 0.5f, 0.5f, 0.25f},
        {"offset, turned, tiled", {0.1f, 0, 2, 1, 1.5707963f}, 0.75f, 0.5f, 0.5f, 0.35f},
    };
    // clang-format on
    for (const auto& row : rows) {
        const D3DXVECTOR2 moved = Moved(row.values, row.u, row.v);
        EXPECT_NEAR(moved.x, row.to_u, 1e-6) << row.name;
        EXPECT_NEAR(moved.y, row.to_v, 1e-6) << row.name;
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
    };
    for (const auto& [kind, stage, first, error] : rows) EXPECT_STREQ(WhyNotAtStage(kind, stage, first), error);
}

TEST(StageRecipes, MixByKindAndRenderSource) {
    const std::tuple<MapKind, int, int, StageRecipe> rows[] = {
        {MapKind::Diffuse, 0, 1, {D3DTOP_MODULATE, D3DTA_TEXTURE, D3DTA_DIFFUSE}},
        {MapKind::Diffuse, 0, 2, {D3DTOP_SELECTARG2, D3DTA_TEXTURE, D3DTA_DIFFUSE}},
        {MapKind::Diffuse, 0, 3, {D3DTOP_SELECTARG2, D3DTA_TEXTURE, D3DTA_TFACTOR}},
        {MapKind::Diffuse, 1, 2, {D3DTOP_ADD, D3DTA_CURRENT, D3DTA_TEXTURE}},
        {MapKind::Bump, 1, 1, {D3DTOP_BUMPENVMAP, D3DTA_TEXTURE, D3DTA_CURRENT}},
        {static_cast<MapKind>(77), 1, 1, {D3DTOP_DISABLE, D3DTA_TEXTURE, D3DTA_CURRENT}},
    };
    for (const auto& [kind, stage, source, recipe] : rows) EXPECT_EQ(RecipeOf(kind, stage, source), recipe);
}

}   // namespace
}   // namespace sparkrig
