#include "app/player.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "app/tester_commands.h"
#include "platform/window/window.h"
#include "tests/support/canvas.h"

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

}   // namespace
}   // namespace sparkrig
