// The eight lights that the device knows.
#pragma once
#include "gfx/states/state_sender.h"

namespace sparkrig {

/// The eight lights of the device.
class LightSlots {
  public:
    static constexpr int kCount = kLights;

    explicit LightSlots(StateSender& sender) : sender_(sender) {}

    /// An index outside 0 to 7 is an error.
    void SetEnable(int index, bool on);
    /// Kept when the device takes it.
    void Set(int index, const D3DLIGHT9& light);

    /// index 0 to 7.
    bool Enabled(int index) const { return slots_[index].on; }
    const D3DLIGHT9& Light(int index) const { return slots_[index].light; }

    /// After a reset: the device knows no lights; enabled and set ones are sent again.
    void Reapply();

  private:
    void CheckIndex(int index) const;

    struct Slot {
        bool on = false;
        bool set = false;
        D3DLIGHT9 light = {};
    };
    StateSender& sender_;
    Slot slots_[kCount];
};

}   // namespace sparkrig
