// The keyboard, once per frame: which keys are down, which changed in this frame, how many presses to act on.
#pragma once
#include "base/error.h"
#include "platform/dinput/dinput.h"

namespace sparkrig {

class KRN_InputKeyboard;

/// The input system of one window.
class KRN_Input final : public KRN_Base {
  public:
    using CreateDirectInput = HRESULT (*)(DWORD version, IDirectInput8** input);

    explicit KRN_Input(CreateDirectInput create = DirectInput8Create);

    /// Version -1 stands for 0x800. Failure is an error.
    bool Create(HWND window, int version);
    /// Cooperative flags -1 stand for 6: shared, and only while the window has the focus. Failure is an error.
    bool CreateKeyboard(KRN_InputKeyboard& keyboard, int cooperative_flags);
    bool IsCreated() const { return created_; }

  private:
    CreateDirectInput create_;
    DevicePtr<IDirectInput8> direct_input_;
    HWND window_ = nullptr;
    bool created_ = false;
};

}   // namespace sparkrig
