// The keyboard as DirectInput gives it: a snapshot of 256 keys, numbered by their position on a US keyboard.
#pragma once
#include "platform/com/device_ptr.h"
#include "platform/com/unknown.h"
#include "platform/system/result_codes.h"

namespace sparkrig {

inline constexpr DWORD DISCL_EXCLUSIVE = 1, DISCL_NONEXCLUSIVE = 2, DISCL_FOREGROUND = 4, DISCL_BACKGROUND = 8,
                       DISCL_NOWINKEY = 16;
inline constexpr HRESULT DI_OK = 0;
inline constexpr HRESULT DIERR_INPUTLOST = MakeResult(0x8007001E), DIERR_NOTACQUIRED = MakeResult(0x8007000C),
                         DIERR_OTHERAPPHASPRIO = MakeResult(0x80070005), DIERR_INVALIDPARAM = MakeResult(0x80070057);

// clang-format off
enum KeyCode : int {
    DIK_ESCAPE = 0x01, DIK_TAB = 0x0F, DIK_R = 0x13, DIK_RETURN = 0x1C, DIK_LCONTROL = 0x1D, DIK_L = 0x26,
    DIK_LSHIFT = 0x2A, DIK_C = 0x2E, DIK_B = 0x30, DIK_RSHIFT = 0x36, DIK_MULTIPLY = 0x37, DIK_SPACE = 0x39,
    DIK_F5 = 0x3F, DIK_F8 = 0x42, DIK_RCONTROL = 0x9D, DIK_DIVIDE = 0xB5, DIK_PAUSE = 0xC5, DIK_UP = 0xC8,
    DIK_PRIOR = 0xC9, DIK_LEFT = 0xCB, DIK_RIGHT = 0xCD, DIK_DOWN = 0xD0, DIK_NEXT = 0xD1,
};
// clang-format on

class IDirectInputDevice8 : public IUnknown {
  public:
    /// The keyboard is the only format there is.
    virtual HRESULT SetDataFormat() = 0;
    virtual HRESULT SetCooperativeLevel(HWND window, DWORD flags) = 0;
    virtual HRESULT Acquire() = 0;
    /// 256 bytes, bit 0x80 set for a key that is down. Follows the hardware, not the message queue.
    virtual HRESULT GetDeviceState(DWORD bytes, void* state) = 0;

  protected:
    ~IDirectInputDevice8() = default;
};

class IDirectInput8 : public IUnknown {
  public:
    virtual HRESULT CreateDevice(IDirectInputDevice8** keyboard) = 0;

  protected:
    ~IDirectInput8() = default;
};

/// Version 0x800 or later; anything else is refused with DIERR_INVALIDPARAM.
HRESULT DirectInput8Create(DWORD version, IDirectInput8** input);

}   // namespace sparkrig
