// The states that are used together: what the program wants of each, and the sender that tells the device.
#pragma once
#include "gfx/device/render_targets.h"
#include "gfx/states/alpha_cutoff.h"
#include "gfx/states/blending.h"
#include "gfx/states/culling.h"
#include "gfx/states/depth_states.h"
#include "gfx/states/fog.h"
#include "gfx/states/geometry_bindings.h"
#include "gfx/states/light_slots.h"
#include "gfx/states/lighting.h"
#include "gfx/states/point_sprites.h"
#include "gfx/states/render_sources.h"
#include "gfx/states/sampler_settings.h"
#include "gfx/states/state_sender.h"
#include "gfx/states/texture_factor.h"
#include "gfx/states/transforms.h"

namespace sparkrig {

struct GfxStates {
    GfxStates(const GraphicsDevice& graphics, RenderTargets& targets)
        : sender(graphics), transforms(sender, culling, targets), bindings(graphics) {}
    GfxStates(const GfxStates&) = delete;
    GfxStates& operator=(const GfxStates&) = delete;

    const GraphicsDevice& Graphics() const { return sender.Graphics(); }
    const KRN_Base& Reporter() const { return sender.Reporter(); }
    /// Before a reset and after creation: nothing is known of the device.
    void ForgetDevice() {
        sender.Forget();
        bindings.Forget();
    }

    StateSender sender;
    TextureFactor texture_factor{sender};
    BlendingState blending{sender, texture_factor};
    RenderSources render_sources{sender, texture_factor};
    CullingState culling{sender};
    DepthStates depth{sender};
    AlphaCutoff alpha_cutoff{sender};
    SamplerSettings samplers{sender};
    PointSprites points{sender};
    FogState fog{sender};
    LightingState lighting{sender};
    LightSlots lights{sender};
    Transforms transforms;
    GeometryBindings bindings;
};

}   // namespace sparkrig
