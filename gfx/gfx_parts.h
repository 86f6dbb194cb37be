// What KRN_Gfx is made of. A part is given the parts that it uses; none knows the facade.
#pragma once
#include "gfx/device/display_modes.h"
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
#include "gfx/geometry/scene_drawer.h"
#include "gfx/geometry/scene_loader.h"
#include "gfx/geometry/screen_drawer.h"
#include "gfx/geometry/vertex_list_drawer.h"
#include "gfx/shaders/shader_effect_choice.h"
#include "gfx/shaders/shader_effect_context.h"
#include "gfx/shaders/shader_effect_loader.h"
#include "gfx/states/gfx_states.h"
#include "gfx/text/printf_container.h"
#include "gfx/text/text_drawer.h"
#include "gfx/textures/texture_catalogue.h"
#include "gfx/textures/texture_loader.h"
#include "gfx/textures/texture_registry.h"
#include "gfx/textures/texture_stages.h"
#include "gfx/textures/video_sources.h"

namespace sparkrig {

/// In the order in which they are made; each room uses those before it.
struct GfxParts {
    GfxParts(const KRN_Base& reporter, GraphicsDevice::CreateDirect3D create, const GfxEnvironment& environment)
        : graphics(reporter, create, environment) {}
    GfxParts(const GfxParts&) = delete;
    GfxParts& operator=(const GfxParts&) = delete;

    // Device
    GraphicsDevice graphics;
    PresentationSettings presentation;
    RECT client_rectangle = {};
    RenderTargets targets{graphics};
    SurfaceRegistry surfaces{graphics.Reporter()};
    GammaState gamma{graphics};
    FrameTimeRing frames;
    FrameCache frame_cache;
    DrawStatistics statistics;

    // States that the program wants; the sender's cache is what the device holds
    GfxStates states{graphics, targets};

    // Textures
    TextureRegistry textures{graphics.Reporter()};
    VideoSources videos;
    TextureStages texture_stages{states, videos};
    TextureLoader texture_loader{graphics, presentation, textures, videos, texture_stages};
    KRN_TextureCatalogue catalogue{texture_loader};

    // Shader effects, and what they read of the screen
    ShaderEffectChoice effects;
    KRN_ShaderEffect* mesh_effect = nullptr;   // borrowed; overrides while a scene is drawn
    ScreenBuffers screen_buffers{graphics, targets, states.transforms, frame_cache, textures};
    PostRender post_render{graphics, targets, surfaces};
    PassSwitch pass_switch{graphics, targets, states.transforms, screen_buffers, effects};
    ShaderEffectContext effect_context{states,    frames,         frame_cache, texture_stages,
                                       catalogue, screen_buffers, post_render, pass_switch};
    ShaderEffectLoader shader_effects{effect_context};

    // Geometry
    VertexListDrawer lists{states, effects, statistics};
    ImmediateLists immediate;
    ScreenDrawer screen{states, effects, statistics};
    MeshDrawer meshes{states, texture_stages, texture_loader, effects, statistics};
    SceneLoader scene_loader{graphics, texture_loader, shader_effects};
    SceneDrawer scenes{states, meshes};

    // Text
    KRN_PrintfContainer text;
    TextDrawer text_drawer{states, texture_stages, lists};
    std::vector<char> scratch = std::vector<char>(kScratchBytes);   // of Printf

    static constexpr std::size_t kScratchBytes = 65536;
};

}   // namespace sparkrig
