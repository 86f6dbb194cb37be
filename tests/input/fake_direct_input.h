// A keyboard whose keys the test holds down, and whose calls it can let fail.
#pragma once
#include <cstring>

#include "platform/com/ref_counted.h"
#include "platform/dinput/dinput.h"

namespace sparkrig {

struct FakeKeys {
    BYTE state[256];
    HRESULT create_device, data_format, cooperative_level, acquire;
    int failing_reads;   // so many reads fail from now on
    DWORD flags;
};
inline FakeKeys fake_keys = {};

class FakeKeyboardDevice : public RefCounted<IDirectInputDevice8> {
  public:
    HRESULT SetDataFormat() override { return fake_keys.data_format; }
    HRESULT SetCooperativeLevel(HWND, DWORD flags) override {
        fake_keys.flags = flags;
        return fake_keys.cooperative_level;
    }
    HRESULT Acquire() override { return fake_keys.acquire; }
    HRESULT GetDeviceState(DWORD bytes, void* state) override {
        if (fake_keys.failing_reads > 0) return --fake_keys.failing_reads, DIERR_INPUTLOST;
        std::memcpy(state, fake_keys.state, bytes);
        return DI_OK;
    }
};

class FakeDirectInput : public RefCounted<IDirectInput8> {
  public:
    HRESULT CreateDevice(IDirectInputDevice8** keyboard) override {
        if (FAILED(fake_keys.create_device)) return fake_keys.create_device;
        *keyboard = new FakeKeyboardDevice;
        return DI_OK;
    }
};

inline HRESULT CreateFakeDirectInput(DWORD version, IDirectInput8** input) {
    if (version != 0x800) return DIERR_INVALIDPARAM;
    *input = new FakeDirectInput;
    return DI_OK;
}

}   // namespace sparkrig
