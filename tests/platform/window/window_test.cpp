#include "platform/window/window.h"

#include <SDL2/SDL_events.h>
#include <SDL2/SDL_video.h>

#include <array>
#include <set>

#include "platform/dinput/keyboard_device.h"
#include "platform/dinput/scan_codes.h"
#include "platform/window/message_queue.h"
#include "tests/support/canvas.h"
#include "tests/support/test.h"

namespace sparkrig {
namespace {

using ::testing::Contains;
using ::testing::Field;

std::vector<MSG> received;

LRESULT Record(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    received.push_back({window, message, wParam, lParam});
    if (message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcA(window, message, wParam, lParam);
}

auto Is(UINT message, WPARAM wParam) {
    return ::testing::AllOf(Field(&MSG::message, message), Field(&MSG::wParam, wParam));
}

class WindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        KeepDriverLoaded();
        RegisterClassExA({Record, "RECORDER"});
        window_ = CreateWindowExA("RECORDER", "A title", CW_USEDEFAULT, 0, 800, 600);
        ASSERT_NE(window_, nullptr);
        ShowWindow(window_);
        UpdateWindow(window_);
        Drop();
        received.clear();
    }
    void TearDown() override {
        DestroyWindow(window_);
        Drop();
    }
    /// What waits.
    static void Drop() {
        for (MSG message; PeekMessageA(message, PM_REMOVE);) {
        }
    }
    Uint32 Id() { return SDL_GetWindowID(NativeWindow(window_)); }
    static void Push(SDL_Event event) { SDL_PushEvent(&event); }
    void PushKey(Uint32 type, SDL_Keycode key, bool repeat = false) {
        Push({.key = {type, 0, Id(), SDL_PRESSED, repeat, 0, 0, {SDL_GetScancodeFromKey(key), key, 0, 0}}});
    }
    void Tap(SDL_Keycode key) {
        PushKey(SDL_KEYDOWN, key);
        PushKey(SDL_KEYUP, key);
    }
    void PushText(char letter) { Push({.text = {SDL_TEXTINPUT, 0, Id(), {letter}}}); }
    void PushMouse(Uint32 type, Uint8 button, int x, int y) {
        Push({.button = {type, 0, Id(), 0, button, SDL_PRESSED, 1, 0, x, y}});
    }
    void PushWindowEvent(Uint8 kind) { Push({.window = {SDL_WINDOWEVENT, 0, Id(), kind, 0, 0, 0, 0, 0}}); }
    void HandleAll() {
        MSG message;
        while (PeekMessageA(message, PM_REMOVE) && message.message != WM_QUIT) {
            TranslateMessage(message);
            DispatchMessageA(message);
        }
    }
    HWND window_ = nullptr;
};

TEST_F(WindowTest, NeedsARegisteredClassAndHasTheSizeAskedForOrTheDefault) {
    EXPECT_EQ(CreateWindowExA("UNKNOWN", "A title", 0, 0, 64, 48), nullptr);
    EXPECT_FALSE(RegisterClassExA({nullptr, "NO PROCEDURE"}));
    RECT client;
    GetClientRect(window_, client);
    EXPECT_EQ(client, (RECT{0, 0, 800, 600}));
    const HWND by_default = CreateWindowExA("RECORDER", "Another", CW_USEDEFAULT, 0, CW_USEDEFAULT, 0);
    GetClientRect(by_default, client);
    EXPECT_EQ(client, (RECT{0, 0, 1024, 768}));
    DestroyWindow(by_default);
}

TEST_F(WindowTest, DispatchesPostedMessagesInOrderAndLooksWithoutTakingThem) {
    PostMessageA(window_, WM_COMMAND, 105, 0);
    PostMessageA(window_, WM_ENTERMENULOOP, 0, 0);
    MSG message;
    EXPECT_TRUE(PeekMessageA(message, PM_NOREMOVE));
    EXPECT_EQ(message.message, WM_COMMAND);
    HandleAll();
    EXPECT_THAT(received, ElementsAre(Is(WM_COMMAND, 105), Is(WM_ENTERMENULOOP, 0)));
    EXPECT_FALSE(PeekMessageA(message, PM_REMOVE));
}

TEST_F(WindowTest, ClosingDestroysAndQuits) {
    PushWindowEvent(SDL_WINDOWEVENT_CLOSE);
    HandleAll();
    EXPECT_THAT(received, ElementsAre(Is(WM_CLOSE, 0), Is(WM_DESTROY, 0)));
    PostQuitMessage(4);
    MSG message;
    EXPECT_FALSE(GetMessageA(message));
    EXPECT_EQ(message.message, WM_QUIT);
    EXPECT_EQ(message.wParam, 4u);
}

TEST_F(WindowTest, TypedTextFollowsItsKey) {
    PushKey(SDL_KEYDOWN, SDLK_d);
    PushText('d');
    PushKey(SDL_KEYUP, SDLK_d);
    HandleAll();
    EXPECT_THAT(received, ElementsAre(Is(WM_KEYDOWN, 'D'), Is(WM_CHAR, 'd'), Is(WM_KEYUP, 'D')));
}

TEST_F(WindowTest, ATapBetweenTwoLooksIsSeenOnceWithTheKeysHeldMeanwhile) {
    using Keys = std::set<int>;   // scan codes
    const auto look = [](const Keys& held) {
        std::array<std::uint8_t, SDL_NUM_SCANCODES> keys = {};
        for (const int key : held) keys.at(static_cast<std::size_t>(key)) = 1;
        CollectEvents();
        AdjustKeys(keys);
        Keys seen;
        for (int key = 0; key < SDL_NUM_SCANCODES; ++key)
            if (keys.at(static_cast<std::size_t>(key)) != 0) seen.insert(key);
        return seen;
    };
    look({});   // what other tests have tapped
    PushKey(SDL_KEYDOWN, SDLK_LSHIFT);
    PushKey(SDL_KEYDOWN, SDLK_F5, true);   // held since long ago
    Tap(SDLK_b);
    EXPECT_EQ(look({SDL_SCANCODE_UP}), (Keys{SDL_SCANCODE_UP, SDL_SCANCODE_LSHIFT, SDL_SCANCODE_B}));
    Tap(SDLK_RIGHT);
    PushKey(SDL_KEYUP, SDLK_LSHIFT);
    Tap(SDLK_c);
    EXPECT_EQ(look({}), (Keys{SDL_SCANCODE_RIGHT, SDL_SCANCODE_LSHIFT, SDL_SCANCODE_C}));
    EXPECT_EQ(look({}), Keys());
}

TEST_F(WindowTest, RepeatsOfAWaitingKeyAreMerged) {
    for (const auto& repeats : {std::vector<bool>{false, true, true}, {true}}) {
        received.clear();
        for (const bool repeat : repeats) {
            PushKey(SDL_KEYDOWN, SDLK_SPACE, repeat);
            PushText(' ');
        }
        HandleAll();
        EXPECT_THAT(received, ElementsAre(Is(WM_KEYDOWN, ' '), Is(WM_CHAR, ' ')));
    }
}

TEST_F(WindowTest, ClicksCarrySignedClientCoordinates) {
    PushMouse(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, 300, 70);
    PushMouse(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_RIGHT, 1, 2);
    PushMouse(SDL_MOUSEBUTTONUP, SDL_BUTTON_LEFT, -3, -8);
    HandleAll();
    ASSERT_THAT(received, ElementsAre(Is(WM_LBUTTONDOWN, 0), Is(WM_LBUTTONUP, 0)));
    EXPECT_EQ(received[0].lParam, (70 << 16) | 300);
    EXPECT_EQ(static_cast<std::int16_t>(received[1].lParam & 0xFFFF), -3);
    EXPECT_EQ(static_cast<std::int16_t>(received[1].lParam >> 16), -8);
}

TEST_F(WindowTest, APictureStretchedOverTheScreenHasItsOwnCoordinates) {
    SDL_SetWindowFullscreen(NativeWindow(window_), SDL_WINDOW_FULLSCREEN_DESKTOP);
    SetFullScreenSize(window_, 400, 300);
    int width = 0, height = 0;
    SDL_GetWindowSize(NativeWindow(window_), &width, &height);
    PushMouse(SDL_MOUSEBUTTONDOWN, SDL_BUTTON_LEFT, width / 2, height / 4);
    RECT client;
    GetClientRect(window_, client);
    EXPECT_EQ(client, (RECT{0, 0, 400, 300}));
    HandleAll();
    EXPECT_THAT(received, Contains(::testing::AllOf(Is(WM_LBUTTONDOWN, 0), Field(&MSG::lParam, 75 << 16 | 200))));
}

TEST_F(WindowTest, FocusAndSizeBecomeMessages) {
    PushWindowEvent(SDL_WINDOWEVENT_FOCUS_LOST);
    PushWindowEvent(SDL_WINDOWEVENT_FOCUS_GAINED);
    PushWindowEvent(SDL_WINDOWEVENT_MINIMIZED);
    PushWindowEvent(SDL_WINDOWEVENT_RESTORED);
    HandleAll();
    EXPECT_THAT(received, ElementsAre(Is(WM_ACTIVATEAPP, 0), Is(WM_ACTIVATEAPP, 1), Is(WM_SIZE, SIZE_MINIMIZED),
                                      Is(WM_SIZE, SIZE_RESTORED), Is(WM_PAINT, 0)));
    EXPECT_EQ(received[3].lParam, (600 << 16) | 800);
}

TEST_F(WindowTest, WithoutADisplayHasTheFocusAndSaysTheMessageBoxOnTheErrorStream) {
    EXPECT_FALSE(HasDisplay());
    EXPECT_TRUE(IsForegroundWindow(window_));
    ::testing::internal::CaptureStderr();
    MessageBoxA(window_, "KRN_Gfx: broken", "A caption");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "A caption: KRN_Gfx: broken\n");
}

TEST_F(WindowTest, DropsMessagesOfADestroyedWindow) {
    const HWND second = CreateWindowExA("RECORDER", "Another", 0, 0, 64, 48);
    PostMessageA(second, WM_COMMAND, 104, 0);
    DestroyWindow(second);
    PostMessageA(second, WM_COMMAND, 105, 0);
    HandleAll();
    EXPECT_THAT(received, ElementsAre(Is(WM_DESTROY, 0)));
}

const HWND kWindow = reinterpret_cast<HWND>(16), kOther = reinterpret_cast<HWND>(32);

TEST(MessageQueue, MergesMouseMovesAndSizesOfOneTypeThatWaitInARow) {
    MessageQueue queue;
    for (const MSG& message : {MSG{kWindow, WM_MOUSEMOVE, 0, 3},
                               {kWindow, WM_MOUSEMOVE, 0, 5},
                               {kWindow, WM_LBUTTONDOWN, 0, 6},
                               {kWindow, WM_MOUSEMOVE, 0, 7},
                               {kOther, WM_MOUSEMOVE, 0, 9},
                               {kWindow, WM_SIZE, SIZE_RESTORED, 10},
                               {kWindow, WM_SIZE, SIZE_RESTORED, 11},
                               {kWindow, WM_SIZE, SIZE_MINIMIZED, 12},
                               {kWindow, WM_SIZE, SIZE_RESTORED, 13}})
        queue.Post(message);
    for (const LPARAM left : {5, 6, 7, 9, 11, 12, 13}) EXPECT_EQ(queue.Take()->lParam, left);
    EXPECT_FALSE(queue.Take().has_value());
}

TEST(MessageQueue, GivesQuitLastAndForgetsTheMessagesOfAWindow) {
    MessageQueue queue;
    queue.PostQuit(6);
    queue.Post({kWindow, WM_CHAR, 'd', 1});
    queue.Post({kOther, WM_CHAR, 'e', 1});
    queue.Forget(kWindow);
    EXPECT_EQ(queue.Take()->wParam, static_cast<WPARAM>('e'));
    EXPECT_EQ(queue.First()->message, WM_QUIT);
    EXPECT_EQ(queue.Take()->wParam, 6u);
    EXPECT_FALSE(queue.First().has_value());
}

// ---- The keyboard as a device

bool foreground = true;
std::array<std::uint8_t, SDL_NUM_SCANCODES> keys;

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
