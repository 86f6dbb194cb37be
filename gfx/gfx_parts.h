// What KRN_Gfx is made of. Each part can be read and tested without the others; what they share is the device.
#pragma once
#include "gfx/device/draw_statistics.h"
#include "gfx/device/frame_cache.h"
#include "gfx/device/frame_timing.h"
#include "gfx/device/gamma.h"
#include "gfx/device/graphics_device.h"
#include "gfx/device/presentation.h"
#include "gfx/device/render_targets.h"
#include "gfx/device/surface_registry.h"
#include "gfx/geometry/immediate_lists.h"
#include "gfx/geometry/mesh_drawer.h"
#include "gfx/geometry/screen_drawer.h"
#include "gfx/geometry/vertex_list_drawer.h"
#include "gfx/gfx.h"
#include "gfx/shaders/pass_switch.h"
#include "gfx/shaders/post_render.h"
#include "gfx/shaders/screen_buffers.h"
#include "gfx/shaders/shader_effect_choice.h"
#include "gfx/shaders/shader_effect_loader.h"
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
#include "gfx/text/printf_container.h"
#include "gfx/text/text_drawer.h"
#include "gfx/textures/texture_catalogue.h"
#include "gfx/textures/texture_loader.h"
#include "gfx/textures/texture_registry.h"
#include "gfx/textures/texture_stages.h"
#include "gfx/textures/video_sources.h"

namespace sparkrig {

struct GfxParts {
    GfxParts(KRN_Gfx& gfx, KRN_Gfx::CreateDirect3D create, const GfxEnvironment& environment)
        : graphics(gfx, create, environment),
          textures(gfx),
          surfaces(gfx),
          texture_loader(gfx, textures, videos),
          texture_stages(gfx),
          shader_effects(gfx),
          catalogue(gfx) {}
    GfxParts(const GfxParts&) = delete;
    GfxParts& operator=(const GfxParts&) = delete;

    GraphicsDevice graphics;

    // Presentation
    PresentationSettings presentation;
    RECT client_rectangle = {};
    StateSender sender{graphics};
    RenderTargets targets{sender};
    FrameTimeRing frames;
    double created_at = 0;   // seconds of the clock

    // States that the program wants; the sender's cache is what the device holds
    TextureFactor texture_factor{sender};
    BlendingState blending{sender, texture_factor};
    RenderSources render_sources{sender, texture_factor};
    CullingState culling{sender};
    DepthStates depth{sender};
    AlphaTest alpha_test{sender};
    SamplerSettings samplers{sender};
    PointSprites points{sender};
    FogState fog{sender};
    LightingState lighting{sender};
    LightSlots lights{sender};
    Transforms transforms{sender, culling};
    GammaState gamma{graphics};
    GeometryBindings bindings{graphics};

    // Resources
    TextureRegistry textures;
    SurfaceRegistry surfaces;
    VideoSources videos;
    TextureLoader texture_loader;
    TextureStages texture_stages;
    ShaderEffectLoader shader_effects;
    EffectChoice effects;

    // Post-render effects and screen buffers
    FrameCache frame_cache;
    ScreenBuffers screen_buffers{graphics, targets, transforms, frame_cache, textures};
    PassSwitch pass_switch{graphics, targets, transforms, screen_buffers, effects};
    PostRender post_render{graphics, targets, surfaces};

    // Drawing
    DrawStatistics statistics;
    VertexListDrawer lists{graphics, bindings, points, transforms, effects, statistics};
    ImmediateLists immediate;
    ScreenDrawer screen{sender, bindings, culling, depth, samplers, effects, statistics};
    MeshDrawer meshes{sender, bindings, culling, points, lighting, transforms, texture_stages, effects, statistics};

    // Text
    KRN_PrintfContainer text;
    TextDrawer text_drawer{culling, depth, samplers, transforms, texture_stages, lists};
    std::vector<char> scratch = std::vector<char>(kScratchBytes);   // of Printf

    KRN_TextureCatalogue catalogue;

    static constexpr std::size_t kScratchBytes = 65536;
};

}   // namespace sparkrig
