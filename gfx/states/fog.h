// Fog: how things fade with their distance.
#pragma once
#include "gfx/states/state_sender.h"

namespace sparkrig {

/// How far things fade into one colour. start and end, for linear fog, in units of the world; density for the others.
struct FogSettings {
    D3DCOLOR colour = 0;
    DWORD mode = D3DFOG_EXP;
    bool vertex_fog = true;   // computed for vertices, by their distance from the eye; else for pixels, by their depth
    float start = 0.0f, end = 1.0f;
    float density = 0.5f;
    bool operator==(const FogSettings&) const = default;
};

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
