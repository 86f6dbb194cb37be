// Whole sample effects beside small pictures of them that were looked at: tests/app/pictures/EFFECT.png.
// After a wanted change: build/release/sparkrig /resx:160 /resy:90 --no-overlay --capture tests/app/pictures/EFFECT.png
// --effect EFFECT --at SECONDS, with the seconds of the row.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "app/program.h"
#include "app/tester_state.h"
#include "tests/app/load_picture.h"
#include "tests/support/canvas.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

// Drivers round and filter differently: a channel may differ a little everywhere and more at the edges of sprites.
constexpr double kMeanTolerance = 1.5;     // of 255, over all channels
constexpr int kEdgeTolerance = 40;         // of 255, for one channel of one pixel
constexpr double kMostEdgePixels = 0.02;   // of the picture

struct Row {
    const char* effect;
    const char* seconds;
};

class EffectPictures : public testing::TestWithParam<Row> {};

int Channel(D3DCOLOR colour, int shift) { return static_cast<int>(colour >> shift & 0xFF); }

int LargestDifference(D3DCOLOR a, D3DCOLOR b) {
    int largest = 0;
    for (const int shift : {0, 8, 16}) largest = std::max(largest, std::abs(Channel(a, shift) - Channel(b, shift)));
    return largest;
}

TEST_P(EffectPictures, LookAsTheyDid) {
    KeepDriverLoaded();
    const ScratchFolder folder;
    const std::string captured = folder.Path("seen.png");
    setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);   // no settings
    Tester() = {};
    ASSERT_EQ(RunProgram({"/resx:160", "/resy:90", "--no-overlay", "--capture", captured, "--effect", GetParam().effect,
                          "--at", GetParam().seconds}),
              0);
    Tester() = {};
    const Image seen = LoadPicture(captured);
    const Image wanted = LoadPicture(std::string("tests/app/pictures/") + GetParam().effect + ".png");
    ASSERT_EQ(seen.width, wanted.width);
    ASSERT_EQ(seen.height, wanted.height);

    double sum = 0;
    std::size_t edges = 0;
    for (std::size_t i = 0; i < seen.Count(); ++i) {
        const int difference = LargestDifference(seen.Pixels()[i], wanted.Pixels()[i]);
        sum += difference;
        edges += difference > kEdgeTolerance;
    }
    EXPECT_LE(sum / static_cast<double>(seen.Count()), kMeanTolerance);
    EXPECT_LE(static_cast<double>(edges) / static_cast<double>(seen.Count()), kMostEdgePixels);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Samples, EffectPictures, testing::Values(
    Row{"campfire", "1.5"},  Row{"explosion", "0.3"},   Row{"rain", "0.8"},           Row{"waterfall", "1.2"},
    Row{"portal", "1"},      Row{"ice burst", "0.5"},   Row{"autumn leaves", "1.1"},  Row{"magic heal", "0.9"},
    Row{"confetti", "0.6"},  Row{"dust", "0.7"},        Row{"brazier", "1.3"},        Row{"signal smoke", "2"},
    Row{"scrying mirror", "2.2"}),
    [](const auto& row) {
        std::string name = row.param.effect;
        std::ranges::replace(name, ' ', '_');
        return name;
    });
// clang-format on

}   // namespace
}   // namespace sparkrig
