#include "gfx/device/display_modes.h"

#include <gtest/gtest.h>

#include "tests/support/recorded_gfx.h"

namespace sparkrig {
namespace {

TEST(DisplayModes, AreFoundBySizeFormatAndRate) {
    constexpr std::tuple<const char*, D3DDISPLAYMODE, bool, UINT> kRows[] = {
        {"the highest rate", {1024, 768, 0, D3DFMT_X8R8G8B8}, true, 75},
        {"alpha does not count", {1024, 768, 0, D3DFMT_A8R8G8B8}, true, 75},
        {"an exact rate", {1024, 768, 72, D3DFMT_X8R8G8B8}, true, 72},
        {"no such rate", {1024, 768, 85, D3DFMT_X8R8G8B8}, false, 85},
        {"no such size", {1024, 600, 0, D3DFMT_R5G6B5}, false, 0},
        {"16 bits", {800, 600, 0, D3DFMT_R5G6B5}, true, 85},
        {"no such format", {800, 600, 0, D3DFMT_A1R5G5B5}, false, 0},
    };
    RecordedGfx gfx(RecordedGfx::State::Constructed);
    for (const auto& [name, wanted, found, rate] : kRows) {
        D3DDISPLAYMODE mode = wanted;
        EXPECT_EQ(gfx->FindDisplayMode(mode), found) << name;
        EXPECT_EQ(mode.RefreshRate, rate) << name;
    }
}

TEST(DisplayModes, TextureFormatsAreAskedForWithTheirUsage) {
    constexpr std::tuple<int, DWORD> kRows[] = {
        {3, D3DUSAGE_RENDERTARGET}, {5, D3DUSAGE_DEPTHSTENCIL}, {4, 0}, {-1, 0}};
    RecordedGfx gfx;
    for (const auto& [mode, usage] : kRows) {
        EXPECT_TRUE(gfx->CheckTextureFormat(D3DFMT_A4R4G4B4, mode));
        const std::vector<DWORD> expected = {0,     D3DDEVTYPE_HAL,   D3DFMT_X8R8G8B8,
                                             usage, D3DRTYPE_TEXTURE, D3DFMT_A4R4G4B4};
        EXPECT_EQ(gfx.recording.Calls().back().arguments, expected);
    }
    const Reports reports;
    EXPECT_FALSE(gfx->CheckTextureFormat(D3DFMT_R8G8B8, 3));
    EXPECT_EQ(reports.Last(), "warning KRN_Gfx: Texture format 20 mode 1 not supported by device");
}

}   // namespace
}   // namespace sparkrig
