#include "app/video_generator.h"

// The picture as it looks: tests/app/pictures/scrying mirror.png; after a reset and a reload: player_test.cpp.

#include <algorithm>
#include <vector>
#include "tests/support/test.h"

namespace sparkrig {
namespace {

constexpr int kSide = VideoGenerator::kSide;
using Pixels = std::vector<D3DCOLOR>;

/// The generator's picture in rows of so many pixels, those beyond the picture as they were.
Pixels Write(VideoGenerator& generator, int row_pixels = kSide, D3DCOLOR before = 0) {
    Pixels pixels(static_cast<std::size_t>(kSide) * row_pixels, before);
    generator.Write({row_pixels * 4, pixels.data()});
    return pixels;
}

TEST(VideoGenerator, KeepsToTheRowsOfTheTarget) {
    constexpr int kRowPixels = kSide + 9;
    constexpr D3DCOLOR kBefore = 0x12345678;
    const FrameClock clock = FrameClock::Stepped(kAutomationStep);
    VideoGenerator generator(clock);
    const Pixels dense = Write(generator), padded = Write(generator, kRowPixels, kBefore);
    for (int y = 0; y < kSide; ++y) {
        const auto row = padded.begin() + y * kRowPixels, end = row + kRowPixels;
        EXPECT_TRUE(std::equal(row, row + kSide, dense.begin() + y * kSide)) << y;
        EXPECT_EQ(std::count(row + kSide, end, kBefore), kRowPixels - kSide) << y;
    }
}

}   // namespace
}   // namespace sparkrig
