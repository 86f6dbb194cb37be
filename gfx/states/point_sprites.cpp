#include "gfx/states/point_sprites.h"

#include <algorithm>

namespace sparkrig {

namespace {
constexpr float kMaxSizeWithoutDeviceLimit = 64.0f;
}

void PointSprites::SetFillMode(int mode, const PointSpriteSettings* settings) {
    fill_mode_ = mode;
    if (settings) settings_ = *settings;
    if (mode == static_cast<int>(D3DFILL_POINT)) Apply(settings_, false);
    sender_.SetRenderState(D3DRS_FILLMODE, static_cast<DWORD>(mode));
}

float PointSprites::LimitedSize(float size, bool device_limit) {
    const float device = sender_.Graphics().Caps().MaxPointSize;
    const float cap = device_limit ? device : std::min(kMaxSizeWithoutDeviceLimit, device);
    if (size <= cap) return size;
    if (!adjusted_.contains({size, cap})) {
        adjusted_.emplace(size, cap);
        sender_.Reporter().Warning("Point size max adjusted from %f to %f", size, cap);
    }
    return cap;
}

void PointSprites::Apply(const PointSpriteSettings& settings, bool device_limit) {
    sender_.SetRenderState(D3DRS_POINTSPRITEENABLE, DWORD{settings.sprites});
    sender_.SetRenderState(D3DRS_POINTSCALEENABLE, DWORD{settings.scaling});
    sender_.SetRenderState(D3DRS_POINTSIZE, settings.size);
    applied_ = {settings, device_limit};
    if (!settings.scaling) return;
    sender_.SetRenderState(D3DRS_POINTSIZE_MIN, settings.min_size);
    sender_.SetRenderState(D3DRS_POINTSIZE_MAX, LimitedSize(settings.max_size, device_limit));
    sender_.SetRenderState(D3DRS_POINTSCALE_A, settings.scale_a);
    sender_.SetRenderState(D3DRS_POINTSCALE_B, settings.scale_b);
    sender_.SetRenderState(D3DRS_POINTSCALE_C, settings.scale_c);
}

void PointSprites::SwitchOff() {
    sender_.SetRenderState(D3DRS_POINTSPRITEENABLE, DWORD{FALSE});
    if (applied_) applied_->settings.sprites = false;
}

void PointSprites::Reapply() {
    sender_.SetRenderState(D3DRS_FILLMODE, static_cast<DWORD>(fill_mode_));
    if (applied_) Apply(applied_->settings, applied_->device_limit);
}

}   // namespace sparkrig
