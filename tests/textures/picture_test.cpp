#include "tools/textures/picture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace sparkrig {
namespace {

constexpr int kSmallSize = 24;   // every painter is a function of the plane: a small picture shows all of its rules

Picture RenderSmall(Sprite sprite) {
    sprite.size = kSmallSize;
    return Render(sprite);
}

std::string ReadText(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

TEST(Picture, StoresTheTopRowFirst) {
    const Sprite sprite{"half", 8, [](Point p) { return Pixel{0.2f, 0.4f, 0.6f, p.y > 0 ? 0.8f : 0.0f}; }};
    const Picture picture = Render(sprite);
    EXPECT_EQ(picture.At(3, 2)[3], 204);
    EXPECT_EQ(picture.At(3, 5)[3], 0);
}

TEST(Picture, WeighsTheColoursOfAPixelByTheirAlpha) {
    // The left half of column 4 is opaque blue, its right half transparent red.
    const Sprite sprite{"edge", 9, [](Point p) { return p.x < 0 ? Pixel{0, 0.2f, 1, 1} : Pixel{1, 0.2f, 0, 0}; }};
    const Picture picture = Render(sprite);
    const std::uint8_t* edge = picture.At(4, 4);
    EXPECT_EQ(edge[0], 0);
    EXPECT_EQ(edge[2], 255);
    EXPECT_EQ(edge[3], 128);
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

TEST(Picture, ClearsTheBorderOfEverySprite) {
    for (const Sprite& sprite : AllSprites()) {
        const Picture picture = RenderSmall(sprite);
        int strongest_in_border = 0, strongest = 0;
        for (int row = 0; row < kSmallSize; ++row) {
            for (int column = 0; column < kSmallSize; ++column) {
                const int edge = std::min({row, column, kSmallSize - 1 - row, kSmallSize - 1 - column});
                const int alpha = picture.At(column, row)[3];
                strongest = std::max(strongest, alpha);
                if (edge < kClearBorder) strongest_in_border = std::max(strongest_in_border, alpha);
            }
        }
        EXPECT_EQ(strongest_in_border, 0) << sprite.name;
        EXPECT_GT(strongest, 100) << sprite.name;
    }
}

TEST(Picture, IsTheSameEveryTime) {
    const std::vector<Sprite> once = AllSprites(), again = AllSprites();
    ASSERT_EQ(once.size(), again.size());
    for (std::size_t i = 0; i < once.size(); ++i) {
        EXPECT_EQ(EncodePng(RenderSmall(once[i])), EncodePng(RenderSmall(again[i]))) << once[i].name;
    }
}

TEST(Textures, ExistForEverySpriteAndStandInTheCatalogue) {
    const std::string catalogue = ReadText("cfg/texCatalogue.cfg");
    std::set<std::string> names;
    for (const Sprite& sprite : AllSprites()) {
        const std::string name = sprite.name;
        EXPECT_TRUE(names.insert(name).second) << name << " twice";
        EXPECT_TRUE(std::filesystem::exists("textures/" + name + ".png")) << name;
        EXPECT_THAT(catalogue, ::testing::HasSubstr("\"" + name + "\" = \"textures\\" + name + ".png\"")) << name;
    }
}

}   // namespace
}   // namespace sparkrig
