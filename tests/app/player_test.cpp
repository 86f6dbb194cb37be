#include <algorithm>

#include "app/clock.h"
#include "app/player.h"
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
    const std::string head = "float4 V(float4 p : POSITION) : POSITION { return p; }\nfloat4 P() : COLOR { return ",
                      pass = "VertexShader = compile vs_2_0 V(); PixelShader = compile ps_2_0 P();";
    const auto write = [&](const std::string& colour, int age) {
        const std::string file = folder.Write("Fill.fx", head + colour + "; }\ntechnique { pass { " + pass + " } }");
        std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) + std::chrono::seconds(age));
    };
    const std::tuple<const char*, Rgb, const char*> rows[] = {
        {"float4(1, 0.2, 0, 1)", {255, 51, 0}, ""},
        {"float4(0, 0.6, 1, 1)", {0, 153, 255}, ""},
        {"flot4(0, 0, 0, 1)", {0, 153, 255}, "Fill.fx(2): error X3000"},
        {"0.4", {102, 102, 102}, ""}};
    Tester().screen_effect_path = folder.Path("Fill.fxo");   // there is only the source
    int age = 0;
    for (const auto& [colour, shown, note] : rows) {
        Tester().notice = {};
        write(colour, ++age);
        ReloadShaders(engine_, Tester());
        EXPECT_TRUE(Near(ToRgb(Draw()[0]), shown, 1)) << colour;
        EXPECT_NE(Tester().notice.text.find(note), std::string::npos) << Tester().notice.text;
    }
}

double now;
double Now() { return now; }

TEST(FrameClock, ClampsLongFramesAndKnowsNoStalls) {
    constexpr std::tuple<double, double> kFrames[] = {{5.25, 0.0625}, {5.28125, 0.03125}, {8.5, 0.1}, {8.5, 0}};
    now = 5.1875;
    FrameClock clock(Now);
    const auto frame_at = [&](double time) {
        now = time;
        clock.NextFrame();
        EXPECT_EQ(clock.FrameTime(), time);
        return clock.FrameSeconds();
    };
    clock.Restart();
    for (const auto& [time, seconds] : kFrames) EXPECT_EQ(frame_at(time), seconds);
    now = 60;
    clock.Restart();   // the stall before belongs to no frame
    EXPECT_EQ(frame_at(60.03125), 0.03125);
    now = 0;
    clock.Restart();
    EXPECT_EQ(frame_at(0.1), 0.1) << "exactly a tenth is kept";
}

TEST(FrameClock, SteppedMovesByEqualSteps) {
    FrameClock clock = FrameClock::Stepped(kAutomationStep);
    for (int frame = 1; frame <= 600; ++frame) {
        clock.NextFrame();
        EXPECT_EQ(clock.FrameSeconds(), kAutomationStep);
        clock.Restart();
    }
    EXPECT_DOUBLE_EQ(clock.Now(), 10.0);
}

TEST(FrameRate, IsMeasuredOverMoreThanASecond) {
    FrameRate rate;
    rate.Restart(3);
    for (int frame = 1; frame <= 4; ++frame) rate.CountFrame(3 + frame * 0.25);
    EXPECT_EQ(rate.PerSecond(), 0);
    rate.CountFrame(4.25);
    EXPECT_EQ(rate.PerSecond(), 4);
    for (int frame = 1; frame <= 3; ++frame) rate.CountFrame(4.25 + frame * 0.5);
    EXPECT_EQ(rate.PerSecond(), 2);
}

}   // namespace
}   // namespace sparkrig
