#include "tests/device/whole_program.h"

#include <SDL.h>

#include "app/tester_commands.h"
#include "gfx/device/gfx_environment.h"
#include "platform/d3d9_gl/device_hooks.h"
#include "tests/support/canvas.h"

namespace sparkrig {

namespace {

IDirect3DDevice9* lost_device = nullptr;   // of OpenGL
bool minimised = false;

void ClientRectangle(HWND window, RECT& rectangle) {
    GetClientRect(window, rectangle);
    if (minimised) rectangle = {};
}

/// In place of a message: what took the device away is gone.
void GiveDeviceBack() {
    if (lost_device) RestoreDevice(*lost_device);
    lost_device = nullptr;
}

const GfxEnvironment& Environment() {
    static const GfxEnvironment environment = [] {
        GfxEnvironment table = kSystemEnvironment;
        table.client_rectangle = ClientRectangle;
        table.pump_message = GiveDeviceBack;
        return table;
    }();
    return environment;
}

}   // namespace

std::ostream& operator<<(std::ostream& out, BackEnd back_end) {
    return out << (back_end == BackEnd::OpenGl ? "OpenGL" : "recording");
}

WholeProgram::WholeProgram(BackEnd back_end, State state) : back_end_(back_end) {
    KeepDriverLoaded();   // the window asks for it, too
    if (back_end == BackEnd::OpenGl) recording.behind = Direct3DCreate9;
    recording.client_width = kWidth;
    recording.client_height = kHeight;
    Tester() = {};
    Tester().resolution_x = kWidth;
    Tester().resolution_y = kHeight;
    MakeTesterWindow(Tester(), WindowSize::Picture);
    engine.gfx.emplace(back_end == BackEnd::OpenGlAlone ? Direct3DCreate9 : Recording::Create, Environment());
    if (state == State::Started) Start();
}

WholeProgram::~WholeProgram() { End(); }

void WholeProgram::Start() {
    const Options options;
    engine.Start(Tester(), 7);
    player.emplace(engine, Tester(), options);
    player->Load();
    Tester().clock = FrameClock::Stepped(kAutomationStep);
}

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

std::vector<D3DCOLOR> WholeProgram::Picture() {
    player->Draw();
    return back_end_ == BackEnd::OpenGl ? ReadBackBuffer(Behind(*Gfx().Device())) : std::vector<D3DCOLOR>();
}

void WholeProgram::End() {
    player.reset();
    engine.ShutDown();
    if (Tester().window) DestroyWindow(Tester().window);
    Tester() = {};
    minimised = false;
}

void WholeProgram::LoseDevice() {
    if (back_end_ == BackEnd::Recording) return recording.LoseDevice(3);
    lost_device = &Behind(*Gfx().Device());
    sparkrig::LoseDevice(*lost_device);
}

void WholeProgram::ResizeWindow(int width, int height) {
    SDL_SetWindowSize(NativeWindow(Tester().window), width, height);
    MSG message;
    while (PeekMessageA(message, PM_REMOVE)) DispatchMessageA(message);
}

void WholeProgram::MinimiseWindow(bool on) {
    minimised = on;
    ResizeWindow(on ? 1 : kWidth, on ? 1 : kHeight);   // the layer takes one pixel for none
}

}   // namespace sparkrig
