#include "app/frame_loop.h"

#include "app/frame_drawing.h"
#include "app/tester_commands.h"

namespace sparkrig {

namespace {

void Handle(const MSG& message) {
    TranslateMessage(message);
    DispatchMessageA(message);
}

void HandleOneMessage() {
    MSG message;
    if (PeekMessageA(message, PM_REMOVE)) Handle(message);
}

// A hidden tester costs no processor time, and what passes while it waits is no effect time.
void WaitUntilSeen(TesterState& state) {
    while (state.MustWait()) {
        MSG message;
        GetMessageA(message);
        Handle(message);
        state.clock.Restart();
    }
}

void Simulate(Engine& engine, const TesterState& state, const LoopState& loop, bool repeat) {
    if (state.paused) return;
    engine.effects.Update(static_cast<float>(state.clock.FrameSeconds() * loop.speed));
    if (repeat) RepeatCurrentEffect(engine, state);
}

}   // namespace

void RepeatCurrentEffect(Engine& engine, const TesterState& state) {
    if (engine.effects.LiveInstanceCount() == 0) StartCurrentEffect(engine.effects, state, {0, 0, 0});
}

void RunFrameLoop(Engine& engine, TesterState& state, LoopState& loop, bool repeat, Journal* journal) {
    do {
        state.clock.NextFrame();
        Simulate(engine, state, loop, repeat);
        engine.keyboard->UpdateKeyboard();
        engine.gfx->SetView(loop.camera);
        RunKeyboardCommands(*engine.keyboard, state, loop, engine.effects, state.clock.FrameSeconds());
        RunPendingClick(state, engine.effects, *engine.gfx);
        DrawFrame(engine, state, loop);
        if (engine.gfx->PresentFrame() == 0) state.clock.Restart();
        if (journal) journal->Write(engine, state, loop);
        HandleOneMessage();
        WaitUntilSeen(state);
    } while (!state.quit_requested && !engine.keyboard->IsKeyDown(DIK_ESCAPE));
}

}   // namespace sparkrig
