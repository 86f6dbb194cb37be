// The keyboard device: when it may be read, and what it answers when it may not.
#pragma once
#include <span>

#include "platform/com/ref_counted.h"
#include "platform/dinput/dinput.h"

namespace sparkrig {

/// Where the device looks. Tests put their own in the place of the system's.
struct KeyboardSource {
    bool (*is_foreground)(HWND window);
    /// The keys by SDL scan code, up to date with the hardware; 1 for down.
    std::span<const std::uint8_t> (*keys)();
};

/// The system's keyboard.
extern const KeyboardSource kSystemKeyboard;

class KeyboardDevice : public RefCounted<IDirectInputDevice8> {
  public:
    explicit KeyboardDevice(const KeyboardSource& source) : source_(source) {}

    HRESULT SetDataFormat() override;
    HRESULT SetCooperativeLevel(HWND window, DWORD flags) override;
    HRESULT Acquire() override;
    HRESULT GetDeviceState(DWORD bytes, void* state) override;

  private:
    bool MayRead() const { return (flags_ & DISCL_FOREGROUND) == 0 || source_.is_foreground(window_); }

    KeyboardSource source_;
    HWND window_ = nullptr;
    DWORD flags_ = DISCL_NONEXCLUSIVE | DISCL_BACKGROUND;
    bool format_set_ = false;
    bool acquired_ = false;
};

}   // namespace sparkrig
