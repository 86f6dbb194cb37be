#include "platform/dinput/keyboard_device.h"

#include <SDL2/SDL_keyboard.h>

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/dinput/scan_codes.h"
#include "platform/window/window.h"

namespace sparkrig {

namespace {

/// The keys that are down, and those that were pressed and released between two looks: a tap of a few milliseconds is
/// down for one look, however slow the frames are.
std::span<const std::uint8_t> SystemKeys() {
    static std::array<std::uint8_t, SDL_NUM_SCANCODES> looked_at;
    CollectEvents();   // SDL learns of keys while it collects events
    int count = 0;
    const std::uint8_t* keys = SDL_GetKeyboardState(&count);
    std::copy_n(keys, std::min<std::size_t>(static_cast<std::size_t>(count), looked_at.size()), looked_at.begin());
    AdjustKeys(looked_at);
    return looked_at;
}

}   // namespace

const KeyboardSource kSystemKeyboard = {IsForegroundWindow, SystemKeys};

HRESULT KeyboardDevice::SetDataFormat() {
    format_set_ = true;
    return DI_OK;
}

HRESULT KeyboardDevice::SetCooperativeLevel(HWND window, DWORD flags) {
    const bool one_access = ((flags & DISCL_EXCLUSIVE) != 0) != ((flags & DISCL_NONEXCLUSIVE) != 0);
    const bool one_ground = ((flags & DISCL_FOREGROUND) != 0) != ((flags & DISCL_BACKGROUND) != 0);
    if (!window || !one_access || !one_ground) return DIERR_INVALIDPARAM;
    window_ = window;
    flags_ = flags;
    return DI_OK;
}

HRESULT KeyboardDevice::Acquire() {
    if (!format_set_) return DIERR_INVALIDPARAM;
    if (acquired_) return S_FALSE;
    if (!MayRead()) return DIERR_OTHERAPPHASPRIO;
    acquired_ = true;
    return DI_OK;
}

HRESULT KeyboardDevice::GetDeviceState(DWORD bytes, void* state) {
    if (bytes != kKeyCodes || !state) return DIERR_INVALIDPARAM;
    const std::span<const std::uint8_t> keys = source_.keys();
    if (!acquired_) return DIERR_NOTACQUIRED;
    if (!MayRead()) {
        acquired_ = false;
        return DIERR_INPUTLOST;
    }
    BYTE translated[kKeyCodes];
    TranslateKeys(keys, translated);
    std::memcpy(state, translated, sizeof(translated));
    return DI_OK;
}

}   // namespace sparkrig
