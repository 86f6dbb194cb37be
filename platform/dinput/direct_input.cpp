#include "platform/dinput/keyboard_device.h"

namespace sparkrig {

namespace {

constexpr DWORD kFirstVersion = 0x800;

class DirectInput : public RefCounted<IDirectInput8> {
  public:
    HRESULT CreateDevice(IDirectInputDevice8** keyboard) override {
        if (!keyboard) return DIERR_INVALIDPARAM;
        *keyboard = new KeyboardDevice(kSystemKeyboard);
        return DI_OK;
    }
};

}   // namespace

HRESULT DirectInput8Create(DWORD version, IDirectInput8** input) {
    if (version < kFirstVersion || !input) return DIERR_INVALIDPARAM;
    *input = new DirectInput;
    return DI_OK;
}

}   // namespace sparkrig
