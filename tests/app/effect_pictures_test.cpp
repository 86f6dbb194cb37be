// Whole sample effects, and the overlay, beside small pictures of them that were looked at:
// tests/app/pictures/NAME.png. After a wanted change: build/release/sparkrig /resx:160 /resy:90 --no-overlay --capture
// tests/app/pictures/EFFECT.png
// --effect EFFECT --at SECONDS, with the seconds of the row. stage.png is that of an effect that shows nothing.

#include <algorithm>
#include <cstdlib>

#include "app/program.h"
#include "app/tester_state.h"
#include "tests/support/canvas.h"
#include "tests/support/picture_files.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

// Drivers round and filter differently, most of all at the edges of sprites: of all that an effect adds to the picture,
// so much may be different.
constexpr double kTolerance = 0.15;

using Pixels = std::vector<D3DCOLOR>;

Pixels Capture(std::vector<std::string> words) {
    KeepDriverLoaded();
    const ScratchFolder folder;
    const std::string captured = folder.Path("seen.png");
    setenv("XDG_CONFIG_HOME", folder.Path().c_str(), 1);   // no settings
    words.insert(words.end(), {"--capture", captured});
    Tester() = {};
    EXPECT_EQ(RunProgram(words), 0);
    Tester() = {};
    return Decoded(ReadFile(captured));
}
Pixels Wanted(const std::string& name) { return Decoded(ReadFile("tests/app/pictures/" + name + ".png")); }

/// Over all pixels, by the channel that differs most, a step aside: drivers round the floor and the wall otherwise too.
double Difference(const Pixels& a, const Pixels& b) {
    EXPECT_EQ(a.size(), b.size());
    double sum = 0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        const Rgb one = ToRgb(a[i]), other = ToRgb(b[i]);
        sum += std::max({1, std::abs(one.r - other.r), std::abs(one.g - other.g), std::abs(one.b - other.b)}) - 1;
    }
    return sum;
}

using Row = std::pair<const char*, const char*>;   // an effect and its seconds

class EffectPictures : public testing::TestWithParam<Row> {};

TEST_P(EffectPictures, LookAsTheyDid) {
    const auto& [effect, seconds] = GetParam();
    const Pixels wanted = Wanted(effect);
    const Pixels seen = Capture({"/resx:160", "/resy:90", "--no-overlay", "--effect", effect, "--at", seconds});
    EXPECT_LE(Difference(seen, wanted), kTolerance * Difference(wanted, Wanted("stage")));
}

TEST(OverlayPicture, LooksAsItDid) {
    const std::vector<std::string> words = {"/resx:400", "/resy:160", "--effect", "campfire", "--at", "0.6"};
    std::vector<std::string> without = words;
    without.emplace_back("--no-overlay");
    const Pixels wanted = Wanted("overlay");
    EXPECT_LE(Difference(Capture(words), wanted), kTolerance * Difference(wanted, Capture(without)));
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Samples, EffectPictures, testing::Values(
    Row{"campfire", "1.5"},       Row{"explosion", "0.3"},      Row{"rain", "0.8"},            Row{"waterfall", "1.2"},
    Row{"portal", "1"},           Row{"ice burst", "0.5"},      Row{"autumn leaves", "1.1"},   Row{"magic heal", "0.9"},
    Row{"confetti", "0.6"},       Row{"dust", "0.7"},           Row{"brazier", "1.3"},         Row{"signal smoke", "2"},
    Row{"scrying mirror", "2.2"}, Row{"snow", "1.5"},           Row{"embers", "1"},            Row{"sparks", "0.8"},
    Row{"fireworks", "1.6"},      Row{"muzzle flash", "0.1"},   Row{"torch flame", "1"},       Row{"healing helix", "1"},
    Row{"energy snake", "0.8"},   Row{"silk wave", "1"},        Row{"jelly drifter", "0.9"},   Row{"comet", "1.2"},
    Row{"firework bloom", "0.5"}, Row{"water crown", "0.4"},    Row{"chimney smoke", "1.2"},   Row{"ribbon dance", "1.3"},
    Row{"sword sweep", "0.4"},    Row{"stone burst", "0.6"},    Row{"shock wave", "0.3"},      Row{"deep tentacle", "2"},
    Row{"rune wheel", "2.5"},     Row{"golden letter", "0.5"},  Row{"upright letter", "0.6"},  Row{"letter pop", "0.45"},
    Row{"letter banner", "0.5"},  Row{"wisp flight", "2.2"},    Row{"shadow maw", "2"},        Row{"lightning strike", "0.4"}),
    [](const auto& row) {
        std::string name = row.param.first;
        std::ranges::replace(name, ' ', '_');
        return name;
    });
// clang-format on

}   // namespace
}   // namespace sparkrig
