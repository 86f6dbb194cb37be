#include "app/tester_commands.h"

#include <cmath>

#include "app/camera_commands.h"
#include "base/random.h"
#include "input/input.h"
#include "platform/system/system.h"
#include "tests/input/fake_direct_input.h"
#include "tests/support/recorded_gfx.h"
#include "tests/support/temporary_folder.h"

namespace sparkrig {
namespace {

constexpr double kFrame = 0.03125;

class TesterCommandsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        fake_keys = {};
        input_.Create(reinterpret_cast<HWND>(16), -1);
        input_.CreateKeyboard(keyboard_, -1);
        PlaceCameraAtHome(loop_.camera);
        loop_.effect_count = 5;
    }
    /// One frame with exactly these keys down.
    void Frame(const std::vector<int>& keys) {
        fake_keys = {};
        for (const int key : keys) fake_keys.state[key] = 0x80;
        keyboard_.UpdateKeyboard();
        RunKeyboardCommands(keyboard_, state_, loop_, effects_, kFrame);
    }
    void Press(const std::vector<int>& keys) {
        Frame(keys);
        Frame({});
    }

    KRN_Input input_{CreateFakeDirectInput};
    KRN_InputKeyboard keyboard_;
    TesterState state_;
    LoopState loop_;
    VisualEffectSystem effects_;
};

TEST_F(TesterCommandsTest, TabStepsThroughTheEffectsInACircle) {
    state_.current_effect = 4;
    Press({DIK_TAB});
    EXPECT_EQ(state_.current_effect, 0);
    Press({DIK_TAB, DIK_LSHIFT});
    EXPECT_EQ(state_.current_effect, 4);
    Press({DIK_TAB, DIK_RSHIFT});
    EXPECT_EQ(state_.current_effect, 3);
}

TEST_F(TesterCommandsTest, AHeldKeyActsOnce) {
    Frame({DIK_PAUSE, DIK_F8});
    Frame({DIK_PAUSE, DIK_F8});
    EXPECT_EQ(state_.paused, 1);
    EXPECT_FALSE(loop_.show_overlay);
    Frame({});
    Frame({DIK_PAUSE, DIK_B});
    EXPECT_EQ(state_.paused, 0);
    EXPECT_TRUE(loop_.show_backdrop);
}

TEST_F(TesterCommandsTest, TheKeypadChangesTheSpeedWhileHeld) {
    for (int frame = 0; frame < 32; ++frame) Frame({DIK_MULTIPLY});
    EXPECT_NEAR(loop_.speed, std::pow(1 + kFrame, 32), 1e-5);
    for (int frame = 0; frame < 32; ++frame) Frame({DIK_DIVIDE});
    EXPECT_NEAR(loop_.speed, 1, 1e-5);
}

// The camera starts at (0, 200, 100), looks at the origin, and has +x at its left.
TEST_F(TesterCommandsTest, MovesTheCameraByTheModifier) {
    const float far = std::sqrt(200.0f * 200 + 100 * 100);
    const D3DXVECTOR3 view = {0, -200 / far, -100 / far};
    const float side = 250 * static_cast<float>(kFrame), step = 500 * static_cast<float>(kFrame);
    const float angle = 2 * static_cast<float>(kFrame), cosine = std::cos(angle), sine = std::sin(angle);
    const float up_cosine = std::cos(std::atan2(100.0f, 200.0f) + angle),
                up_sine = std::sin(std::atan2(100.0f, 200.0f) + angle);
    const std::tuple<const char*, std::vector<int>, D3DXVECTOR3, D3DXVECTOR3> kRows[] = {
        {"shift left", {DIK_LSHIFT, DIK_LEFT}, {side, 200, 100}, view},
        {"shift right", {DIK_LSHIFT, DIK_RIGHT}, {-side, 200, 100}, view},
        {"shift page down", {DIK_RSHIFT, DIK_NEXT}, {0, 200, 100 - side}, view},
        {"shift page up", {DIK_RSHIFT, DIK_PRIOR}, {0, 200, 100 + side}, view},
        {"shift beats ctrl", {DIK_RSHIFT, DIK_LCONTROL, DIK_LEFT}, {side, 200, 100}, view},
        {"ctrl left",
         {DIK_LCONTROL, DIK_LEFT},
         {-200 * sine, 200 * cosine, 100},
         {200 * sine / far, -200 * cosine / far, -100 / far}},
        {"ctrl right",
         {DIK_RCONTROL, DIK_RIGHT},
         {200 * sine, 200 * cosine, 100},
         {-200 * sine / far, -200 * cosine / far, -100 / far}},
        {"ctrl down", {DIK_LCONTROL, DIK_DOWN}, {0, far * up_cosine, far * up_sine}, {0, -up_cosine, -up_sine}},
        {"left", {DIK_LEFT}, {0, 200, 100}, {200 * sine / far, -200 * cosine / far, -100 / far}},
        {"right", {DIK_RIGHT}, {0, 200, 100}, {-200 * sine / far, -200 * cosine / far, -100 / far}},
        {"page down", {DIK_NEXT}, {0, 200, 100}, {0, -up_cosine, -up_sine}},
        {"up", {DIK_UP}, {0, 200 + view.y * step, 100 + view.z * step}, view},
        {"down", {DIK_DOWN}, {0, 200 - view.y * step, 100 - view.z * step}, view},
        {"both at once", {DIK_LEFT, DIK_RIGHT, DIK_C}, {0, 200, 100}, view}};
    for (const auto& [name, keys, expected_eye, expected_view] : kRows) {
        PlaceCameraAtHome(loop_.camera);
        Frame(keys);
        const D3DXVECTOR3 &eye = loop_.camera.Eye(), &direction = loop_.camera.ViewDirection();
        for (float D3DXVECTOR3::*axis : {&D3DXVECTOR3::x, &D3DXVECTOR3::y, &D3DXVECTOR3::z}) {
            EXPECT_NEAR(eye.*axis, expected_eye.*axis, 2e-3) << name;
            EXPECT_NEAR(direction.*axis, expected_view.*axis, 2e-5) << name;
        }
        Frame({});
    }
}

TEST_F(TesterCommandsTest, ReturnStartsTheCurrentEffectAndReloadsKeepOrEndIt) {
    const ScratchFolder folder;
    folder.Enter();
    std::filesystem::create_directory("cfg");
    const auto write = [&](int effects) {
        std::string text;
        for (int i = 0; i < effects; ++i)
            text += "#\ndesc = \"effect" + std::to_string(i) + "\"\nPARTICLE {\nLife = 4\n}\n";
        folder.Write("cfg/effects.cfg", text);
    };
    write(3);
    ReloadEffects(effects_, state_, loop_, false);
    EXPECT_EQ(loop_.effect_count, 3);
    state_.current_effect = 2;
    Press({DIK_RETURN});
    Press({DIK_RETURN});
    EXPECT_EQ(effects_.LiveInstanceCount(), 2);
    EXPECT_EQ(effects_.GetInstanceStates().back().effect, "effect2");

    write(4);
    loop_.most_drawn_particles = 9;
    Press({DIK_F5});
    EXPECT_EQ(loop_.effect_count, 4);
    EXPECT_EQ(loop_.most_drawn_particles, 0);
    EXPECT_EQ(effects_.LiveInstanceCount(), 2);

    write(1);
    Press({DIK_R});
    EXPECT_EQ(effects_.LiveInstanceCount(), 0);
    EXPECT_EQ(state_.current_effect, 0) << "beyond the end of the shorter file";
    write(0);
    EXPECT_EQ(ErrorOf([&] { ReloadEffects(effects_, state_, loop_, false); }),
              "VisualEffectSystem: No effects in effect file");
}

}   // namespace
}   // namespace sparkrig
