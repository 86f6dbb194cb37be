#include "app/video_generator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "gfx/textures/texture.h"
#include "tests/support/recorded_gfx.h"

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

TEST(VideoGenerator, DrawsADiscWithASoftEdge) {
    const FrameClock clock = ClockAtFrame(31);
    VideoGenerator generator(clock);
    const Pixels pixels = Write(generator);
    std::set<D3DCOLOR> alphas;
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            const D3DCOLOR colour = pixels[static_cast<std::size_t>(y) * kSide + x];
            const bool in_border = std::min({x, y, kSide - 1 - x, kSide - 1 - y}) < 2;
            EXPECT_TRUE(!in_border || colour >> 24 == 0) << x << ' ' << y;
            EXPECT_NE(colour & 0xFFFFFF, 0u);   // no dark fringe under the edge
            alphas.insert(colour >> 24);
        }
    }
    EXPECT_EQ(pixels[64 * kSide + 64] >> 24, 255u);
    EXPECT_GT(alphas.size(), 50u);
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

Pixels PixelsOf(KRN_Texture& texture) {
    Pixels pixels;
    texture.Lock(nullptr, D3DLOCK_READONLY);
    for (int i = 0; i < kSide * kSide; ++i) pixels.push_back(texture.GetPixel(i % kSide, i / kSide));
    texture.Unlock();
    return pixels;
}

TEST(VideoGenerator, ServesTexturesLoadedAgainAndAfterAReset) {
    FrameClock clock = ClockAtFrame(5);
    RecordedGfx gfx;
    VideoGenerator generator(clock);
    generator.Serve(*gfx, 0);
    const Pixels wanted = Write(generator);
    const auto load_and_set = [&](KRN_Texture& texture) {
        gfx->LoadTexture(&texture, ">>Video1", 0, 0);
        gfx->SetTexture(&texture, -1);
        return PixelsOf(texture);
    };
    KRN_Texture texture;
    EXPECT_EQ(load_and_set(texture), wanted);
    EXPECT_EQ(texture.VideoSourceIndex(), 0);
    texture.Release();
    EXPECT_EQ(load_and_set(texture), wanted);   // a new device texture, though no time has passed
    gfx->ResetDevice(nullptr, -1);
    clock.NextFrame();
    gfx->SetTexture(&texture, -1);
    EXPECT_NE(PixelsOf(texture), wanted);
    EXPECT_EQ(PixelsOf(texture), Write(generator));
}

}   // namespace
}   // namespace sparkrig
