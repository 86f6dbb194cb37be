#include "platform/d3dx/image_scale.h"
#include "tests/support/test.h"

#include <algorithm>

namespace sparkrig {
namespace {

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
        {D3DX_FILTER_NONE, {0x10203040, 0x50A070C0, 0}}};
    for (const auto& [filter, expected] : kRows)
        EXPECT_EQ(Scaled(row, static_cast<UINT>(expected.size()), 1, filter), expected) << filter;
}

TEST(ImageScale, KeepsAPictureOfTheSameSize) {
    const Image image = MakeImage(2, 2, {0x01020304, 0x50607080, 0x90A0B0C0, 0xD0E0F0FF});
    for (const DWORD filter : {D3DX_FILTER_NONE, D3DX_FILTER_POINT, D3DX_FILTER_LINEAR})
        EXPECT_THAT(Scaled(image, 2, 2, filter), ElementsAre(0x01020304, 0x50607080, 0x90A0B0C0, 0xD0E0F0FF)) << filter;
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
