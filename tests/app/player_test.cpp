#include "app/player.h"

#include <algorithm>

#include "app/shader_files.h"
#include "app/tester_commands.h"
#include "app/video_generator.h"
#include "platform/window/window.h"
#include "tests/support/canvas.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

/// The sample effects, played on OpenGL in a window that nobody sees.
class PlayerTest : public testing::Test {
  protected:
    PlayerTest() {
        KeepDriverLoaded();
        HideFromDisplay();
        Tester() = {};
        Tester().resolution_x = 160;
        Tester().resolution_y = 90;
        EXPECT_TRUE(MakeTesterWindow(Tester(), WindowSize::Picture));
        engine_.Start(Tester(), 1);
        player_.Load();
        player_.Loop().show_overlay = false;
    }
    ~PlayerTest() override {
        engine_.ShutDown();
        Tester() = {};
    }
    void PlayHalfASecond(const char* effect) {
        for (int i = 0; i < player_.EffectCount(); ++i)
            if (player_.Effects().GetEffectName(i) == effect) player_.StartEffect(i);
        for (int frame = 0; frame < 30; ++frame) player_.Advance();
    }
    /// The present moment, drawn again.
    std::vector<D3DCOLOR> Draw() {
        player_.Draw();
        Picture picture = player_.TakePicture();
        player_.Present();
        return picture.pixels;
    }

    Engine engine_;
    Player player_{engine_, Tester(), Options{}};
};

TEST(VideoGenerator, KeepsToTheRowsOfTheTarget) {
    constexpr int kSide = VideoGenerator::kSide, kRowPixels = kSide + 9;
    constexpr D3DCOLOR kBefore = 0x12345678;
    const FrameClock clock = FrameClock::Stepped(kAutomationStep);
    VideoGenerator generator(clock);
    std::vector<D3DCOLOR> dense(kSide * kSide), padded(kSide * kRowPixels, kBefore);
    generator.Write({kSide * 4, dense.data()});
    generator.Write({kRowPixels * 4, padded.data()});
    for (int y = 0; y < kSide; ++y) {
        const auto row = padded.begin() + y * kRowPixels, end = row + kRowPixels;
        EXPECT_TRUE(std::equal(row, row + kSide, dense.begin() + y * kSide)) << y;
        EXPECT_EQ(std::count(row + kSide, end, kBefore), kRowPixels - kSide) << y;
    }
}

TEST_F(PlayerTest, MovingTexturesAreTheSameAfterAResetAndAReload) {
    for (const char* effect : {"brazier", "scrying mirror"}) {
        PlayHalfASecond(effect);
        const std::vector<D3DCOLOR> before = Draw();
        ASSERT_EQ(engine_.gfx->ResetDevice(nullptr, -1), 1) << effect;
        EXPECT_EQ(Draw(), before) << effect;
        ReloadEffects(engine_.effects, Tester(), player_.Loop(), true);
        EXPECT_EQ(Draw(), before) << effect;
        player_.Advance();
        EXPECT_NE(Draw(), before) << effect;
        PlayHalfASecond(effect);   // reads the file afresh
        EXPECT_EQ(Draw(), before) << effect;
    }
}

TEST_F(PlayerTest, AScreenEffectIsReadAgainAndStaysWhereThatFails) {
    const ScratchFolder folder;
    const auto write = [&](const std::string& colour, int age) {
        const std::string file = folder.Write("Fill.fx",
                                              "float4 V(float4 p : POSITION) : POSITION { return p; }\n"
                                              "float4 P() : COLOR { return " +
                                                  colour +
                                                  "; }\n"
                                                  "technique { pass { VertexShader = compile vs_2_0 V();"
                                                  "PixelShader = compile ps_2_0 P(); } }");
        std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) + std::chrono::seconds(age));
    };
    const struct {
        const char* colour;
        Rgb shown;
        const char* note;
    } rows[] = {{"float4(1, 0.2, 0, 1)", {255, 51, 0}, ""},
                {"float4(0, 0.6, 1, 1)", {0, 153, 255}, ""},
                {"flot4(0, 0, 0, 1)", {0, 153, 255}, "Fill.fx(2): error X3000"},
                {"0.4", {102, 102, 102}, ""}};
    Tester().screen_effect_path = folder.Path("Fill.fxo");   // there is only the source
    int age = 0;
    for (const auto& row : rows) {
        Tester().notice = {};
        write(row.colour, ++age);
        ReloadShaders(engine_, Tester());
        EXPECT_TRUE(Near(ToRgb(Draw()[0]), row.shown, 1)) << row.colour;
        EXPECT_NE(Tester().notice.text.find(row.note), std::string::npos) << Tester().notice.text;
    }
}

}   // namespace
}   // namespace sparkrig
