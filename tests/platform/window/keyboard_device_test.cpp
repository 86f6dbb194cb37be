#include "platform/dinput/keyboard_device.h"

#include <SDL2/SDL_scancode.h>

#include <array>
#include <set>
#include <vector>

#include "platform/dinput/scan_codes.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

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
    // One of each region, and those that stand elsewhere on some keyboards.
    constexpr std::pair<SDL_Scancode, int> kRows[] = {
        {SDL_SCANCODE_ESCAPE, DIK_ESCAPE},  {SDL_SCANCODE_R, DIK_R},           {SDL_SCANCODE_LCTRL, DIK_LCONTROL},
        {SDL_SCANCODE_RCTRL, DIK_RCONTROL}, {SDL_SCANCODE_F8, DIK_F8},         {SDL_SCANCODE_PAUSE, DIK_PAUSE},
        {SDL_SCANCODE_UP, DIK_UP},          {SDL_SCANCODE_PAGEDOWN, DIK_NEXT}, {SDL_SCANCODE_KP_DIVIDE, DIK_DIVIDE}};
    for (const auto& [scan_code, key_code] : kRows) {
        keys.fill(0);
        keys[scan_code] = 1;
        BYTE state[kKeyCodes];
        TranslateKeys(keys, state);
        for (int code = 0; code < kKeyCodes; ++code) EXPECT_EQ(state[code], code == key_code ? 0x80 : 0) << code;
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

TEST_F(KeyboardDeviceTest, HasToBeAcquiredAndIsLostWithTheFocus) {
    EXPECT_EQ(Read(), DIERR_NOTACQUIRED);
    EXPECT_EQ(device_->Acquire(), DI_OK);
    EXPECT_EQ(device_->Acquire(), S_FALSE);
    keys[SDL_SCANCODE_B] = 1;
    EXPECT_EQ(Read(), DI_OK);
    EXPECT_EQ(state_[DIK_B], 0x80);
    foreground = false;
    EXPECT_EQ(Read(), DIERR_INPUTLOST);
    EXPECT_EQ(Read(), DIERR_NOTACQUIRED);
    EXPECT_EQ(device_->Acquire(), DIERR_OTHERAPPHASPRIO);
    foreground = true;
    EXPECT_EQ(Read(), DIERR_NOTACQUIRED);
    EXPECT_EQ(device_->Acquire(), DI_OK);
    EXPECT_EQ(Read(), DI_OK);
    foreground = false;
    device_->SetCooperativeLevel(kWindow, DISCL_NONEXCLUSIVE | DISCL_BACKGROUND);
    device_->Acquire();
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
