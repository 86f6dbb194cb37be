#include "app/frame_drawing.h"

#include <algorithm>

#include "app/background_picture.h"
#include "app/camera_commands.h"
#include "app/overlay.h"
#include "app/shader_files.h"
#include "app/stage_mesh.h"
#include "app/tester_commands.h"
#include "gfx/device/with_restore.h"

namespace sparkrig {

namespace {

constexpr D3DCOLOR kClearColour = 0xFF000014, kWhite = 0xFFFFFFFF;

void DrawBackground(Engine& engine) {
    KRN_Gfx& gfx = *engine.gfx;
    if (!engine.background.IsValid()) {   // it shared a texture that a reset has taken
        LoadBackgroundPicture(gfx, engine.background, engine.background.Name().c_str());
    }
    if (!engine.background.HasSurface()) {
        gfx.Clear(kClearColour, 1.0f, nullptr);
        return;
    }
    gfx.ClearZBuffer(1.0f, nullptr);
    gfx.SetTexture2D(&engine.background);   // on all stages
    gfx.DrawFullScreenTexture(kWhite, 1.0f);
}

void DrawBackdrop(KRN_Gfx& gfx, LoopState& loop) {
    if (!loop.show_backdrop) return;
    const auto draw = [&] {
        gfx.SetAmbient(kWhite);
        gfx.SetBlendingMode(1, 255, 0);
        gfx.DrawMesh(&loop.stage_mesh, nullptr);
    };
    WithRestore(draw, [&] {
        gfx.SetAmbient(0);
        gfx.SetRenderSource(1, 0, kWhite);
        gfx.EndLightingOverride();
    });
}

void DrawEffects(Engine& engine, LoopState& loop) {
    KRN_Gfx& gfx = *engine.gfx;
    const auto draw = [&] {
        gfx.SetCullingMode(1);
        engine.effects.Draw();
    };
    WithRestore(draw, [&] {
        gfx.ResetWorldTransform();
        gfx.SetCullingMode(-1);
        gfx.SetZWrite(true);
        gfx.SetZBufferMode(2);
    });
    loop.drawn_particles = engine.effects.DrawnParticleCount();
    loop.most_drawn_particles = std::max(loop.most_drawn_particles, loop.drawn_particles);
}

}   // namespace

void ShowBackgroundPicture(Engine& engine, TesterState& state) {
    const std::string why_not = LoadBackgroundPicture(*engine.gfx, engine.background, state.background_path);
    if (!why_not.empty()) state.Note("Background picture: " + why_not);
}

void BeginPlaying(Engine& engine, TesterState& state, LoopState& loop) {
    KRN_Gfx& gfx = *engine.gfx;
    engine.effects.Init(gfx, 0);
    gfx.SetGameTimeSource([] { return static_cast<float>(VisualEffectSystem::Current()->SystemTime()); });
    LoadShaderFiles(engine, state);
    ReloadEffects(engine.effects, state, loop, false);
    BuildStageMesh(gfx, loop.stage_mesh);
    PlaceCameraAtHome(loop.camera);
    gfx.SetProjection(1.0f, 2000.0f, 0.7854f, -1.0f);
    gfx.SetCullingMode(-1);
    ShowBackgroundPicture(engine, state);
    loop.show_backdrop = !engine.background.HasSurface();
    state.clock.Restart();
    loop.rate.Restart(state.clock.Now());
}

void DrawFrame(Engine& engine, const TesterState& state, LoopState& loop) {
    KRN_Gfx& gfx = *engine.gfx;
    gfx.BeginScene();
    DrawBackground(engine);
    gfx.SetCullingMode(0);
    gfx.ResetWorldTransform();
    DrawBackdrop(gfx, loop);
    DrawEffects(engine, loop);
    gfx.DrawScreenEffect(engine.screen_effect);
    loop.rate.CountFrame(state.clock.FrameTime());
    DrawOverlay(engine, state, loop);
    gfx.EndScene();
}

}   // namespace sparkrig
