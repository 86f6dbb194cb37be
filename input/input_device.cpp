#include "input/input_device.h"

namespace sparkrig {

void KRN_InputDevice::Attach(DevicePtr<IDirectInputDevice8> device, KRN_Input& owner) {
    device_ = std::move(device);
    owner_ = &owner;
}

}   // namespace sparkrig
