#include "input/input_keyboard.h"

#include <string>

#include "input/input.h"
#include "tests/input/fake_direct_input.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

const HWND kWindow = reinterpret_cast<HWND>(16);
double now;

class KeyboardTest : public ::testing::Test {
  protected:
    void SetUp() override {
        fake_keys = {};
        now = 100;
        input_.Create(kWindow, -1);
        input_.CreateKeyboard(keyboard_, -1);
        for (MSG message; PeekMessageA(message, PM_REMOVE);) {
        }
    }
    void Hold(int key) { fake_keys.state[key] = 0x80; }
    int UpdateAt(double time) {
        now = time;
        return keyboard_.UpdateKeyboard();
    }

    KRN_Input input_{CreateFakeDirectInput};
    KRN_InputKeyboard keyboard_{[] { return now; }};
};

TEST_F(KeyboardTest, GivesEachEdgeInOneFrameOnly) {
    Hold(DIK_TAB);
    constexpr std::pair<bool, int> kFrames[] = {{true, 1}, {true, 0}, {true, 0}, {false, 255}, {false, 0}};
    for (const auto& [held, edge] : kFrames) {
        if (!held) fake_keys.state[DIK_TAB] = 0;
        EXPECT_EQ(UpdateAt(now + 0.25), 1);
        EXPECT_EQ(keyboard_.KeyEdge(DIK_TAB), edge);
        EXPECT_EQ(keyboard_.IsKeyDown(DIK_TAB), held);
        EXPECT_EQ(keyboard_.KeyPressCount(DIK_TAB), edge == 1 ? 1 : 0);
        EXPECT_EQ(keyboard_.KeyEdge(DIK_B), 0);
    }
}

TEST_F(KeyboardTest, CountsEveryRepeatOnce) {
    keyboard_.SetRepeat(0.2f, 10.0f);
    Hold(DIK_R);
    int presses = 0;
    for (int frame = 0; frame <= 32; ++frame) {   // half a second, exact in binary
        UpdateAt(200 + frame / 64.0);
        presses += keyboard_.KeyPressCount(DIK_R);
    }
    EXPECT_EQ(presses, 1 + 3);
    EXPECT_EQ(keyboard_.KeyPressCount(DIK_R), 0);
}

TEST_F(KeyboardTest, AcquiresALostKeyboardAndTakesAllKeysAsUpWhenNothingCanBeRead) {
    Hold(DIK_C);
    fake_keys.failing_reads = 1;
    UpdateAt(101);
    EXPECT_TRUE(keyboard_.IsKeyDown(DIK_C));
    fake_keys.failing_reads = 2;
    UpdateAt(102);
    EXPECT_FALSE(keyboard_.IsKeyDown(DIK_C));
    EXPECT_EQ(keyboard_.KeyEdge(DIK_C), 255);
}

TEST_F(KeyboardTest, LeavesTheMessageUnlessToldToPump) {
    static int deactivations;
    deactivations = 0;
    keyboard_.SetDeactivationCallback([] { ++deactivations; });
    PostMessageA(nullptr, WM_ACTIVATEAPP, 0, 0);
    UpdateAt(101);
    EXPECT_EQ(deactivations, 1);
    keyboard_.SetPumpMessages(true);
    UpdateAt(102);
    EXPECT_EQ(deactivations, 2);
    MSG message;
    EXPECT_FALSE(PeekMessageA(message, PM_NOREMOVE));
}

TEST_F(KeyboardTest, WaitsForTheQuitFlag) {
    int quit = 1;
    keyboard_.SetWaitForQuit(&quit);
    EXPECT_EQ(UpdateAt(101), 2);
    quit = 0;
    PostQuitMessage(0);
    EXPECT_EQ(UpdateAt(102), 2);
}

TEST(Input, ReportsWhatFails) {
    const std::tuple<int, HRESULT FakeKeys::*, const char*> kRows[] = {
        {0x700, nullptr, "Can not create DirectInput !"},
        {-1, &FakeKeys::create_device, "Can not create KeyboardDevice !"},
        {-1, &FakeKeys::data_format, "Wrong device data format !"},
        {-1, &FakeKeys::cooperative_level, "Can not set cooperative level (DI)"}};
    for (const auto& [version, failing, message] : kRows) {
        fake_keys = {};
        if (failing) fake_keys.*failing = E_FAIL;
        KRN_Input input(CreateFakeDirectInput);
        KRN_InputKeyboard keyboard;
        const std::string error = ErrorOf([&, version = version] {
            input.Create(kWindow, version);
            input.CreateKeyboard(keyboard, -1);
        });
        EXPECT_EQ(error, std::string("KRN_Input: ") + message);
    }
}

TEST(Input, AsksForASharedForegroundKeyboardByDefault) {
    fake_keys = {};
    KRN_Input input(CreateFakeDirectInput);
    EXPECT_FALSE(input.IsCreated());
    KRN_InputKeyboard keyboard;
    EXPECT_EQ(keyboard.UpdateKeyboard(), 0) << "there is nothing to read";
    input.Create(kWindow, -1);
    input.CreateKeyboard(keyboard, -1);
    EXPECT_TRUE(input.IsCreated());
    EXPECT_EQ(fake_keys.flags, 6u);
    EXPECT_EQ(keyboard.Owner(), &input);
}

}   // namespace
}   // namespace sparkrig
