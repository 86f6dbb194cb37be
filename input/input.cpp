#include "input/input.h"

#include "input/input_keyboard.h"

namespace sparkrig {

namespace {

constexpr DWORD kDirectInputVersion = 0x800;
constexpr DWORD kCooperativeFlags = DISCL_NONEXCLUSIVE | DISCL_FOREGROUND;

}   // namespace

KRN_Input::KRN_Input(CreateDirectInput create) : create_(create) { SetName("KRN_Input"); }

bool KRN_Input::Create(HWND window, int version) {
    const DWORD wanted = version == -1 ? kDirectInputVersion : static_cast<DWORD>(version);
    if (FAILED(create_(wanted, direct_input_.Receive()))) Error("Can not create DirectInput !");
    window_ = window;
    created_ = true;
    return true;
}

bool KRN_Input::CreateKeyboard(KRN_InputKeyboard& keyboard, int cooperative_flags) {
    const DWORD flags = cooperative_flags == -1 ? kCooperativeFlags : static_cast<DWORD>(cooperative_flags);
    DevicePtr<IDirectInputDevice8> device;
    if (!direct_input_ || FAILED(direct_input_->CreateDevice(device.Receive()))) {
        Error("Can not create KeyboardDevice !");
    }
    if (FAILED(device->SetDataFormat())) Error("Wrong device data format !");
    if (FAILED(device->SetCooperativeLevel(window_, flags))) Error("Can not set cooperative level (DI)");
    device->Acquire();   // a window without the focus is refused; the first update tries again
    keyboard.Attach(std::move(device), *this);
    return true;
}

}   // namespace sparkrig
