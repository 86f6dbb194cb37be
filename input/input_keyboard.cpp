#include "input/input_keyboard.h"

#include <algorithm>
#include <iterator>

namespace sparkrig {

namespace {

constexpr BYTE kWentDown = 1, kWentUp = 255;

void Handle(const MSG& message) {
    TranslateMessage(message);
    DispatchMessageA(message);
}

}   // namespace

KRN_InputKeyboard::KRN_InputKeyboard(Clock clock) : clock_(clock) { SetName("KRN_InputKeybrd"); }

int KRN_InputKeyboard::UpdateKeyboard() {
    if (!Device()) return 0;
    ReadState();
    now_ = clock_();
    FindEdges();
    return LookAtMessages();
}

void KRN_InputKeyboard::ReadState() {
    std::copy(std::begin(current_), std::end(current_), previous_);
    std::fill(std::begin(current_), std::end(current_), BYTE{0});
    if (SUCCEEDED(Device()->GetDeviceState(kKeys, current_))) return;
    if (SUCCEEDED(Device()->Acquire()) && SUCCEEDED(Device()->GetDeviceState(kKeys, current_))) return;
    Warning("Failed to get device state.");
}

void KRN_InputKeyboard::FindEdges() {
    for (int key = 0; key < kKeys; ++key) {
        edge_[key] = 0;
        if (current_[key] == previous_[key]) continue;
        edge_[key] = IsKeyDown(key) ? kWentDown : kWentUp;
        change_time_[key] = now_;
    }
}

int KRN_InputKeyboard::LookAtMessages() {
    MSG message;
    if (PeekMessageA(message, pump_messages_ ? PM_REMOVE : PM_NOREMOVE)) {
        if (message.message == WM_ACTIVATEAPP && message.wParam == 0 && deactivated_) deactivated_();
        if (pump_messages_) Handle(message);
    }
    if (!wait_for_quit_) return 1;
    while (*wait_for_quit_ == 0 && GetMessageA(message)) Handle(message);
    return 2;
}

int KRN_InputKeyboard::KeyPressCount(int key) {
    if (!IsKeyDown(key)) return 0;
    int presses = edge_[key] == kWentDown ? 1 : 0;
    const float held = static_cast<float>(now_ - change_time_[key]);
    if (held > repeat_delay_ && repeat_rate_ != 0.0f) {
        const int repeats = static_cast<int>((held - repeat_delay_) * repeat_rate_);
        change_time_[key] += repeats / static_cast<double>(repeat_rate_);
        presses += repeats;
    }
    return presses;
}

}   // namespace sparkrig
