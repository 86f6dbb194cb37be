#include "tests/device/whole_program.h"

#include <cstdlib>

#include "app/tester_commands.h"
#include "tests/support/canvas.h"

namespace sparkrig {

std::ostream& operator<<(std::ostream& out, BackEnd back_end) {
    return out << (back_end == BackEnd::OpenGl ? "OpenGL" : "recording");
}

WholeProgram::WholeProgram(BackEnd back_end) {
    if (back_end == BackEnd::OpenGl) {
        KeepDriverLoaded();
        recording.behind = Direct3DCreate9;
    }
    recording.client_width = kWidth;
    recording.client_height = kHeight;
    TesterState& state = Tester();
    state = {};
    state.resolution_x = kWidth;
    state.resolution_y = kHeight;
    MakeTesterWindow(state, WindowSize::Resolution);
    engine.gfx.emplace(Recording::Create);
    const Options options;
    engine.Start(state, options.seed);
    player.emplace(engine, state, options);
    player->Load();
}

WholeProgram::~WholeProgram() { End(); }

void WholeProgram::Play(int effect, int frames) {
    Tester().current_effect = effect;
    StartCurrentEffect(engine.effects, Tester(), {0, 0, 0});
    for (int frame = 0; frame < frames; ++frame) {
        player->Advance();
        Frame();
    }
}

void WholeProgram::Frame() {
    player->Draw();
    player->Present();
}

void WholeProgram::End() {
    player.reset();
    engine.ShutDown();
    if (Tester().window) DestroyWindow(Tester().window);
    Tester() = {};
}

}   // namespace sparkrig
