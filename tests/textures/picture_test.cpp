#include "tools/textures/picture.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/test.h"
#include "tools/textures/flipbook.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>

namespace sparkrig {
namespace {

constexpr int kSmallSize = 24;   // every painter is a function of the plane: a small picture shows all of its rules

Picture RenderSmall(Sprite sprite) {
    sprite.size = kSmallSize;
    return Render(sprite);
}

TEST(Picture, StoresTheTopRowFirstAndWeighsColoursByTheirAlpha) {
    // Above, the left half of column 4 is opaque blue, its right half transparent red.
    const Sprite sprite{
        "edge", 9, [](Point p) {
            return p.y < 0 ? Pixel{0.2f, 0.4f, 0.6f, 0} : p.x < 0 ? Pixel{0, 0.2f, 1, 1} : Pixel{1, 0.2f, 0, 0};
        }};
    const Picture picture = Render(sprite);
    const std::uint8_t* edge = picture.At(4, 2);
    EXPECT_EQ(edge[0], 0);
    EXPECT_EQ(edge[2], 255);
    EXPECT_EQ(edge[3], 128);
    EXPECT_EQ(picture.At(4, 6)[3], 0);
}

TEST(Picture, ContinuesTheColourUnderTransparentPixels) {
    const Sprite sprite{"dot", 16, [](Point p) {
                            const bool inside = p.x * p.x + p.y * p.y < 0.1f;
                            return inside ? Pixel{0.8f, 0.6f, 0.4f, 1} : Pixel{0, 0, 0, 0};
                        }};
    const Picture picture = Render(sprite);
    for (const int column : {0, 1, 3, 12, 15}) {
        const std::uint8_t* pixel = picture.At(column, 7);
        EXPECT_EQ(pixel[3], 0) << column;
        EXPECT_NEAR(pixel[0], 204, 2) << column;
        EXPECT_NEAR(pixel[2], 102, 2) << column;
    }
}

/// The largest alpha in the border (of a picture that repeats along x: above and below) and of all pixels.
struct Strongest {
    int in_border = 0, anywhere = 0;
    bool repeats_along = false;

    void Add(const Picture& picture) {
        for (int row = 0; row < picture.size; ++row) {
            for (int column = 0; column < picture.size; ++column) {
                int edge = std::min(row, picture.size - 1 - row);
                if (!repeats_along) edge = std::min({edge, column, picture.size - 1 - column});
                const int alpha = picture.At(column, row)[3];
                anywhere = std::max(anywhere, alpha);
                if (edge < kClearBorder) in_border = std::max(in_border, alpha);
            }
        }
    }
};

TEST(Picture, ClearsTheBorderOfEverySprite) {
    for (const Sprite& sprite : AllSprites()) {
        Strongest strongest{.repeats_along = sprite.repeats_along};
        const Picture picture = RenderSmall(sprite);
        strongest.Add(picture);
        EXPECT_EQ(strongest.in_border, 0) << sprite.name;
        EXPECT_GT(strongest.anywhere, 100) << sprite.name;
        const int middle = picture.size / 2, last = picture.size - 1;
        EXPECT_EQ(sprite.repeats_along, picture.At(0, middle)[3] > 0 && picture.At(last, middle)[3] > 0) << sprite.name;
    }
}

// ---- Flipbooks

std::vector<Picture> RenderSmall(Flipbook flipbook) {
    flipbook.size = kSmallSize;
    std::vector<Picture> frames;
    frames.reserve(static_cast<std::size_t>(flipbook.frames));
    for (int i = 0; i < flipbook.frames; ++i) frames.push_back(RenderFrame(flipbook, i));
    return frames;
}

/// Over all pixels, by alpha: what of a picture shows.
double Difference(const Picture& a, const Picture& b) {
    double sum = 0;
    for (std::size_t i = 3; i < a.rgba.size(); i += 4) sum += std::abs(a.rgba[i] - b.rgba[i]);
    return sum;
}

TEST(Flipbooks, LoopOrEndWithNothing) {
    for (const Flipbook& flipbook : AllFlipbooks()) {
        const std::vector<Picture> frames = RenderSmall(flipbook);
        Strongest all, last;
        double largest_step = 0;
        for (std::size_t i = 1; i < frames.size(); ++i) {
            all.Add(frames[i]);
            const double step = Difference(frames[i - 1], frames[i]);
            EXPECT_GT(step, 0) << flipbook.name << i;
            largest_step = std::max(largest_step, step);
        }
        last.Add(frames.back());
        EXPECT_EQ(all.in_border, 0) << flipbook.name;
        EXPECT_GT(all.anywhere, 100) << flipbook.name;
        if (flipbook.name == std::string("flame")) {
            EXPECT_LE(Difference(frames.back(), frames.front()), largest_step);
        } else {
            EXPECT_LT(last.anywhere, 16) << flipbook.name;
        }
    }
}

// ---- What is drawn, what is listed

TEST(Pictures, AreTheSameEveryTimeAndStandInFolderListAndCatalogue) {
    const std::string catalogue = ReadFile("cfg/texCatalogue.cfg");
    const std::vector<Sprite> again = AllSprites();
    std::set<std::string> names;
    const auto expect = [&](const std::string& name, const std::string& file, const Picture& one,
                            const Picture& other) {
        EXPECT_THAT(catalogue, HasSubstr("\"" + name + "\" = \"textures\\" + file + "\"")) << name;
        EXPECT_TRUE(std::filesystem::exists("textures/" + file)) << file;
        EXPECT_EQ(EncodePng(one), EncodePng(other)) << name << " again";
    };
    for (const Sprite& sprite : AllSprites()) {
        const std::string name = sprite.name;
        expect(name, name + ".png", RenderSmall(sprite), RenderSmall(again.at(names.size())));
        EXPECT_TRUE(names.insert(name).second) << name << " twice";
    }
    for (Flipbook flipbook : AllFlipbooks()) {
        const std::string name = flipbook.name;
        EXPECT_EQ(ReadFile("textures/" + name + ".ifl"), FrameList(flipbook)) << name;
        const int middle = flipbook.frames / 2;
        for (const int i : {0, middle, flipbook.frames - 1}) {
            std::string file = FrameFile(flipbook, i);
            std::ranges::replace(file, '\\', '/');
            EXPECT_TRUE(std::filesystem::exists("textures/" + file)) << file;
        }
        flipbook.size = kSmallSize;
        expect(name, name + ".ifl", RenderFrame(flipbook, middle), RenderFrame(flipbook, middle));
    }
}

}   // namespace
}   // namespace sparkrig
