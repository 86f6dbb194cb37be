#pragma once
#include "base/error.h"
#include "platform/dinput/dinput.h"

namespace sparkrig {

class KRN_Input;

/// A device and the input system that it belongs to.
class KRN_InputDevice : public KRN_Base {
  public:
    KRN_InputDevice() { SetName("KRN_InputDev"); }
    KRN_InputDevice(const KRN_InputDevice&) = delete;
    KRN_InputDevice& operator=(const KRN_InputDevice&) = delete;

    /// Takes the device over. `owner` is borrowed.
    void Attach(DevicePtr<IDirectInputDevice8> device, KRN_Input& owner);
    KRN_Input* Owner() const { return owner_; }

  protected:
    ~KRN_InputDevice() = default;
    IDirectInputDevice8* Device() const { return device_.Get(); }

  private:
    DevicePtr<IDirectInputDevice8> device_;
    KRN_Input* owner_ = nullptr;
};

}   // namespace sparkrig
