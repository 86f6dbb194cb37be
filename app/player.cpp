#include "app/player.h"

#include "app/frame_drawing.h"
#include "app/overlay.h"
#include "app/tester_commands.h"
#include "base/random.h"
#include "gfx/device/with_restore.h"
#include "platform/d3d9_gl/device_hooks.h"

namespace sparkrig {

Player::Player(Engine& engine, TesterState& state, const Options& options)
    : engine_(engine), state_(state), seed_(options.seed.value_or(kAutomationSeed)), repeat_(options.repeat) {}

void Player::Load() { BeginPlaying(engine_, state_, loop_); }

void Player::StartEffect(int index) {
    if (engine_.effects.SystemTime() > 0) ReloadEffects(engine_.effects, state_, loop_, false);   // a clean start
    state_.current_effect = index;
    state_.clock = FrameClock::Stepped(kAutomationStep);
    loop_.rate = {};
    SeedRandom(seed_);
    StartCurrentEffect(engine_.effects, state_, {0, 0, 0});
}

void Player::Advance() {
    state_.clock.NextFrame();
    engine_.effects.Update(static_cast<float>(state_.clock.FrameSeconds() * loop_.speed));
    if (!repeat_ || engine_.effects.LiveInstanceCount() > 0) return;
    SeedRandom(seed_);
    StartCurrentEffect(engine_.effects, state_, {0, 0, 0});
}

void Player::Draw() {
    engine_.gfx->SetView(loop_.camera);
    DrawFrame(engine_, state_, loop_);
}

void Player::Pass() {
    IDirect3DDevice9& device = *engine_.gfx->Device();
    SetBlind(device, true);
    WithRestore(
        [this] {
            Draw();
            Present();
        },
        [&] { SetBlind(device, false); });
}

void Player::DrawCaption(D3DCOLOR background) {
    engine_.gfx->BeginScene();
    engine_.gfx->Clear(background, 1.0f, nullptr);
    DrawEffectName(engine_, state_);
    engine_.gfx->EndScene();
}

Picture Player::TakePicture() {
    Picture picture;
    engine_.gfx->ReadBackBuffer(picture.pixels, picture.width, picture.height);
    return picture;
}

}   // namespace sparkrig
