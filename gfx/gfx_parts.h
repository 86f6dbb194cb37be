// What KRN_Gfx is made of. Each part can be read and tested without the others; what they share is the device.
#pragma once
#include "gfx/alpha_test.h"
#include "gfx/blending.h"
#include "gfx/culling.h"
#include "gfx/depth_states.h"
#include "gfx/draw_statistics.h"
#include "gfx/effect_choice.h"
#include "gfx/fog.h"
#include "gfx/frame_cache.h"
#include "gfx/frame_timing.h"
#include "gfx/gamma.h"
#include "gfx/geometry_bindings.h"
#include "gfx/gfx.h"
#include "gfx/graphics_device.h"
#include "gfx/immediate_lists.h"
#include "gfx/light_slots.h"
#include "gfx/lighting.h"
#include "gfx/mesh_drawer.h"
#include "gfx/pass_switch.h"
#include "gfx/point_sprites.h"
#include "gfx/post_render.h"
#include "gfx/presentation.h"
#include "gfx/printf_container.h"
#include "gfx/render_sources.h"
#include "gfx/render_targets.h"
#include "gfx/sampler_settings.h"
#include "gfx/screen_buffers.h"
#include "gfx/screen_drawer.h"
#include "gfx/shader_effect_loader.h"
#include "gfx/state_sender.h"
#include "gfx/surface_registry.h"
#include "gfx/text_drawer.h"
#include "gfx/texture_catalogue.h"
#include "gfx/texture_factor.h"
#include "gfx/texture_loader.h"
#include "gfx/texture_registry.h"
#include "gfx/texture_stages.h"
#include "gfx/transforms.h"
#include "gfx/vertex_list_drawer.h"
#include "gfx/video_sources.h"

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
