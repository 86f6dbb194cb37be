#include "app/tester_commands.h"

#include <algorithm>

#include "app/camera_commands.h"
#include "app/shader_files.h"
#include "gfx/gfx.h"

namespace sparkrig {

namespace {

void ChangeSpeed(const KRN_InputKeyboard& keyboard, LoopState& loop, double seconds) {
    const float factor = static_cast<float>(1.0 + seconds);
    if (keyboard.IsKeyDown(DIK_MULTIPLY)) loop.speed *= factor;
    if (keyboard.IsKeyDown(DIK_DIVIDE)) loop.speed /= factor;
}

void StepThroughEffects(TesterState& state, const LoopState& loop, bool backwards) {
    const int step = backwards ? loop.effect_count - 1 : 1;
    state.current_effect = (state.current_effect + step) % loop.effect_count;
}

}   // namespace

void ReloadEffects(VisualEffectSystem& effects, TesterState& state, LoopState& loop, bool keep_instances) {
    effects.LoadEffects(kEffectsFile, keep_instances);
    loop.effect_count = effects.GetEffectCount();
    if (loop.effect_count <= 0) effects.Error("No effects in effect file");
    state.current_effect = std::min(state.current_effect, loop.effect_count - 1);
    loop.most_drawn_particles = 0;
}

void StartCurrentEffect(VisualEffectSystem& effects, const TesterState& state, const D3DXVECTOR3& position) {
    effects.StartEffect(effects.GetEffectName(state.current_effect).c_str(), position);
}

void RunKeyboardCommands(KRN_InputKeyboard& keyboard, TesterState& state, LoopState& loop, VisualEffectSystem& effects,
                         double seconds) {
    const auto pressed = [&](int key) { return keyboard.KeyPressCount(key) > 0; };
    const bool shift = keyboard.IsKeyDown(DIK_LSHIFT) || keyboard.IsKeyDown(DIK_RSHIFT);
    const bool ctrl = keyboard.IsKeyDown(DIK_LCONTROL) || keyboard.IsKeyDown(DIK_RCONTROL);
    if (pressed(DIK_PAUSE)) state.paused = 1 - state.paused;
    MoveCamera(keyboard, shift, ctrl, loop.camera, static_cast<float>(seconds));
    ChangeSpeed(keyboard, loop, seconds);
    if (pressed(DIK_TAB)) StepThroughEffects(state, loop, shift);
    if (pressed(DIK_RETURN)) StartCurrentEffect(effects, state, {0, 0, 0});
    if (pressed(DIK_L)) effects.PreloadEffect(effects.GetEffectName(state.current_effect).c_str());
    if (pressed(DIK_R)) ReloadEffects(effects, state, loop, false);
    if (pressed(DIK_F5)) ReloadEffects(effects, state, loop, true);
    if (state.engine && (pressed(DIK_R) || pressed(DIK_F5))) ReloadShaders(*state.engine, state);
    if (pressed(DIK_F8)) loop.show_overlay = !loop.show_overlay;
    if (pressed(DIK_B)) loop.show_backdrop = !loop.show_backdrop;
    if (pressed(DIK_C)) PlaceCameraAtHome(loop.camera);
}

void RunPendingClick(TesterState& state, VisualEffectSystem& effects, KRN_Gfx& gfx) {
    constexpr float kDistanceFromCamera = 300;
    if (state.click.button == 0 && state.click.pressed) {
        gfx.ResetWorldTransform();
        const D3DXVECTOR3 ray = gfx.PixelRay(state.click.x, state.click.y);
        StartCurrentEffect(effects, state, gfx.CameraPosition() + ray * kDistanceFromCamera);
    }
    if (state.click.button >= 0) state.click.button = -1;
}

}   // namespace sparkrig
