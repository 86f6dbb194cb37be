// What shader effects use of the other parts: where their values come from, and where their passes draw.
#pragma once
#include "gfx/device/frame_cache.h"
#include "gfx/device/frame_timing.h"
#include "gfx/shaders/pass_switch.h"
#include "gfx/shaders/post_render.h"
#include "gfx/shaders/screen_buffers.h"
#include "gfx/states/gfx_states.h"
#include "gfx/textures/texture_catalogue.h"
#include "gfx/textures/texture_stages.h"

namespace sparkrig {

/// All are borrowed.
struct ShaderEffectContext {
    GfxStates& states;
    const FrameTimeRing& frames;
    const FrameCache& frame_cache;
    const TextureStages& textures;
    KRN_TextureCatalogue& catalogue;
    ScreenBuffers& screen_buffers;
    const PostRender& post_render;
    PassSwitch& pass_switch;

    const GraphicsDevice& Graphics() const { return states.Graphics(); }
    const KRN_Base& Reporter() const { return states.Reporter(); }
};

}   // namespace sparkrig
