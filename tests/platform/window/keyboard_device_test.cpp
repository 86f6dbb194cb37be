#include "platform/dinput/keyboard_device.h"

#include <SDL2/SDL_scancode.h>
#include <gmock/gmock.h>

#include <array>
#include <set>
#include <vector>

#include "platform/dinput/scan_codes.h"

namespace sparkrig {
namespace {

using ::testing::Each;

bool foreground = true;
std::array<std::uint8_t, SDL_NUM_SCANCODES> keys;
const HWND kWindow = reinterpret_cast<HWND>(16);

class KeyboardDeviceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        foreground = true;
        keys.fill(0);
        device_->SetDataFormat();
        device_->SetCooperativeLevel(kWindow, DISCL_NONEXCLUSIVE | DISCL_FOREGROUND);
    }
    HRESULT Read() { return device_->GetDeviceState(sizeof(state_), state_); }

    DevicePtr<KeyboardDevice> device_{
        new KeyboardDevice({[](HWND) { return foreground; }, []() -> std::span<const std::uint8_t> { return keys; }})};
    BYTE state_[kKeyCodes] = {};
};

TEST(ScanCodes, NameTheKeysByTheirPlace) {
    constexpr struct {
        SDL_Scancode scan_code;
        int key_code;
    } kRows[] = {{SDL_SCANCODE_ESCAPE, DIK_ESCAPE},
                 {SDL_SCANCODE_TAB, DIK_TAB},
                 {SDL_SCANCODE_R, DIK_R},
                 {SDL_SCANCODE_RETURN, DIK_RETURN},
                 {SDL_SCANCODE_LCTRL, DIK_LCONTROL},
                 {SDL_SCANCODE_L, DIK_L},
                 {SDL_SCANCODE_LSHIFT, DIK_LSHIFT},
                 {SDL_SCANCODE_C, DIK_C},
                 {SDL_SCANCODE_B, DIK_B},
                 {SDL_SCANCODE_RSHIFT, DIK_RSHIFT},
                 {SDL_SCANCODE_F5, DIK_F5},
                 {SDL_SCANCODE_F8, DIK_F8},
                 {SDL_SCANCODE_RCTRL, DIK_RCONTROL},
                 {SDL_SCANCODE_PAUSE, DIK_PAUSE},
                 {SDL_SCANCODE_UP, DIK_UP},
                 {SDL_SCANCODE_PAGEUP, DIK_PRIOR},
                 {SDL_SCANCODE_LEFT, DIK_LEFT},
                 {SDL_SCANCODE_RIGHT, DIK_RIGHT},
                 {SDL_SCANCODE_DOWN, DIK_DOWN},
                 {SDL_SCANCODE_PAGEDOWN, DIK_NEXT},
                 {SDL_SCANCODE_SPACE, DIK_SPACE},
                 {SDL_SCANCODE_KP_MULTIPLY, DIK_MULTIPLY},
                 {SDL_SCANCODE_KP_DIVIDE, DIK_DIVIDE}};
    for (const auto& row : kRows) {
        keys.fill(0);
        keys[row.scan_code] = 1;
        BYTE state[kKeyCodes];
        TranslateKeys(keys, state);
        for (int code = 0; code < kKeyCodes; ++code) EXPECT_EQ(state[code], code == row.key_code ? 0x80 : 0) << code;
    }
}

TEST(ScanCodes, ReachEveryKeyOfAUsKeyboard) {
    keys.fill(1);
    BYTE state[kKeyCodes];
    TranslateKeys(keys, state);
    for (int code = 0x01; code <= 0x53; ++code) EXPECT_EQ(state[code], 0x80) << code;
    BYTE none[kKeyCodes];
    TranslateKeys({}, none);
    EXPECT_THAT(none, Each(0));
}

TEST_F(KeyboardDeviceTest, HasToBeAcquired) {
    EXPECT_EQ(Read(), DIERR_NOTACQUIRED);
    EXPECT_EQ(device_->Acquire(), DI_OK);
    EXPECT_EQ(device_->Acquire(), S_FALSE);
    keys[SDL_SCANCODE_B] = 1;
    EXPECT_EQ(Read(), DI_OK);
    EXPECT_EQ(state_[DIK_B], 0x80);
}

TEST_F(KeyboardDeviceTest, IsLostWithTheFocusAndAcquiredAgain) {
    device_->Acquire();
    foreground = false;
    EXPECT_EQ(Read(), DIERR_INPUTLOST);
    EXPECT_EQ(Read(), DIERR_NOTACQUIRED);
    EXPECT_EQ(device_->Acquire(), DIERR_OTHERAPPHASPRIO);
    foreground = true;
    EXPECT_EQ(Read(), DIERR_NOTACQUIRED);
    EXPECT_EQ(device_->Acquire(), DI_OK);
    EXPECT_EQ(Read(), DI_OK);
}

TEST_F(KeyboardDeviceTest, ReadsInTheBackgroundWhenToldTo) {
    device_->SetCooperativeLevel(kWindow, DISCL_NONEXCLUSIVE | DISCL_BACKGROUND);
    foreground = false;
    EXPECT_EQ(device_->Acquire(), DI_OK);
    EXPECT_EQ(Read(), DI_OK);
}

TEST_F(KeyboardDeviceTest, RefusesWhatMakesNoSense) {
    EXPECT_EQ(device_->SetCooperativeLevel(nullptr, 6), DIERR_INVALIDPARAM);
    EXPECT_EQ(device_->SetCooperativeLevel(kWindow, DISCL_NONEXCLUSIVE), DIERR_INVALIDPARAM);
    EXPECT_EQ(device_->SetCooperativeLevel(kWindow, 7), DIERR_INVALIDPARAM);
    EXPECT_EQ(device_->GetDeviceState(255, state_), DIERR_INVALIDPARAM);
    DevicePtr<IDirectInput8> input;
    EXPECT_EQ(DirectInput8Create(0x700, input.Receive()), DIERR_INVALIDPARAM);
    DevicePtr<KeyboardDevice> without_format(new KeyboardDevice(kSystemKeyboard));
    EXPECT_EQ(without_format->Acquire(), DIERR_INVALIDPARAM);
}

}   // namespace
}   // namespace sparkrig
