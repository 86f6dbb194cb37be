#include "app/video_generator.h"

// The picture as it looks: tests/app/pictures/scrying mirror.png; after a reset and a reload: player_test.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

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

FrameClock ClockAtFrame(int frame) {
    FrameClock clock = FrameClock::Stepped(kAutomationStep);
    for (int i = 0; i < frame; ++i) clock.NextFrame();
    return clock;
}

TEST(VideoGenerator, ShowsThePictureOfTheTime) {
    FrameClock clock = ClockAtFrame(7);
    VideoGenerator generator(clock);
    const Pixels first = Write(generator);
    EXPECT_EQ(Write(generator), first);
    clock.NextFrame();
    EXPECT_NE(Write(generator), first);
    clock = ClockAtFrame(7);   // the clock of another run, and a generator that has gone elsewhere meanwhile
    EXPECT_EQ(Write(generator), first);
    VideoGenerator other(clock);
    EXPECT_EQ(Write(other), first);
}

TEST(VideoGenerator, KeepsToTheRowsOfTheTarget) {
    constexpr int kRowPixels = kSide + 9;
    constexpr D3DCOLOR kBefore = 0x12345678;
    const FrameClock clock = ClockAtFrame(3);
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
