#include "gfx/states/light_slots.h"

namespace sparkrig {

void LightSlots::CheckIndex(int index) const {
    if (index < 0 || index >= kCount) sender_.Reporter().Error("Light index >%i", kCount - 1);
}

void LightSlots::SetEnable(int index, bool on) {
    CheckIndex(index);
    sender_.SetLightEnable(static_cast<DWORD>(index), on);
    slots_[index].on = on;
}

void LightSlots::Set(int index, const D3DLIGHT9& light) {
    CheckIndex(index);
    sender_.SendLight(static_cast<DWORD>(index), light);
    slots_[index].light = light;
    slots_[index].set = true;
}

void LightSlots::Reapply() {
    for (DWORD index = 0; index < kLights; ++index) {
        if (slots_[index].set) sender_.SendLight(index, slots_[index].light);
        if (slots_[index].on) sender_.SetLightEnable(index, true);
    }
}

}   // namespace sparkrig
