// Filled, wire or points; and how large points are.
#pragma once
#include <optional>
#include <set>
#include <utility>

#include "gfx/states/point_sprite_settings.h"
#include "gfx/states/state_sender.h"

namespace sparkrig {

class PointSprites {
  public:
    explicit PointSprites(StateSender& sender) : sender_(sender) {}

    /// D3DFILL_ values. Settings, if given, are kept and, for points, applied.
    void SetFillMode(int mode, const PointSpriteSettings* settings);
    int FillMode() const { return fill_mode_; }
    /// With the device limit the largest size is the device's own, else at most 64.
    void Apply(const PointSpriteSettings& settings, bool device_limit);
    /// What is drawn next is no point sprite.
    void SwitchOff();
    /// After a reset.
    void Reapply();
    const PointSpriteSettings& Settings() const { return settings_; }

  private:
    float LimitedSize(float size, bool device_limit);

    StateSender& sender_;
    int fill_mode_ = static_cast<int>(D3DFILL_SOLID);
    PointSpriteSettings settings_;   // of points as fill mode
    struct Applied {
        PointSpriteSettings settings;
        bool device_limit;
    };
    std::optional<Applied> applied_;               // as the device has them; nothing before the first
    std::set<std::pair<float, float>> adjusted_;   // sizes and their caps that have been warned of
};

}   // namespace sparkrig
