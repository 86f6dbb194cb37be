#pragma once
#include "gfx/states/gfx_types.h"
#include "gfx/states/state_sender.h"

namespace sparkrig {

class FogState {
  public:
    explicit FogState(StateSender& sender) : sender_(sender) {}

    void Set(const FogSettings& settings);
    const FogSettings& Settings() const { return settings_; }
    void Enable(bool on);
    bool Enabled() const { return enabled_; }

  private:
    StateSender& sender_;
    FogSettings settings_;
    bool enabled_ = false;
};

}   // namespace sparkrig
