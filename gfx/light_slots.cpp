#include "gfx/light_slots.h"

namespace sparkrig {

void LightSlots::CheckIndex(int index) const {
    if (index < 0 || index >= kCount) sender_.Reporter().Error("Light index >%i", kCount - 1);
}

void LightSlots::SendEnable(int index, bool on) {
    sender_.Graphics().Require(sender_.Device().LightEnable(static_cast<DWORD>(index), on), " LightEnable failed: ");
    slots_[index].device_on = on;
}

void LightSlots::SetEnable(int index, bool on) {
    CheckIndex(index);
    if (slots_[index].device_on != static_cast<int>(on)) SendEnable(index, on);
    slots_[index].on = on;
}

void LightSlots::Send(int index, const D3DLIGHT9& light) {
    sender_.Graphics().Require(sender_.Device().SetLight(static_cast<DWORD>(index), &light), "SetLight failed: ");
}

void LightSlots::Set(int index, const D3DLIGHT9& light) {
    CheckIndex(index);
    Send(index, light);
    slots_[index].light = light;
    slots_[index].set = true;
}

void LightSlots::Reapply() {
    for (int index = 0; index < kCount; ++index) {
        slots_[index].device_on = -1;
        if (slots_[index].set) Send(index, slots_[index].light);
        if (slots_[index].on) SendEnable(index, true);
    }
}

}   // namespace sparkrig
