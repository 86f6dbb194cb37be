// The program without its window loop, on the recording device alone or on OpenGL behind it.
//
//     WholeProgram program(BackEnd::OpenGl);
//     program.Play(0, 30);
//     program.recording.Fail("Present", D3DERR_DEVICELOST);
//     program.Frame();
#pragma once
#include <SDL.h>

#include <optional>
#include <ostream>
#include <vector>

#include "app/player.h"
#include "app/tester_commands.h"
#include "gfx/device/gfx_environment.h"
#include "platform/d3d9_gl/device_hooks.h"
#include "tests/support/canvas.h"
#include "tests/support/recording.h"

namespace sparkrig {

enum class BackEnd { Recording, OpenGl, OpenGlAlone };   // alone: nothing is recorded
inline std::ostream& operator<<(std::ostream& out, BackEnd back_end) {
    return out << (back_end == BackEnd::OpenGl ? "OpenGL" : "recording");
}

class WholeProgram {
  public:
    static constexpr int kWidth = 160, kHeight = 90;

    enum class State { Window, Started };
    /// In a window that nobody sees; one program at a time.
    explicit WholeProgram(BackEnd back_end, State state = State::Started) : back_end_(back_end) {
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
    ~WholeProgram() { End(); }
    WholeProgram(const WholeProgram&) = delete;
    WholeProgram& operator=(const WholeProgram&) = delete;

    /// Makes the device and loads the effects of cfg.
    void Start() {
        const Options options;
        engine.Start(Tester(), 7);
        player.emplace(engine, Tester(), options);
        player->Load();
        Tester().clock = FrameClock::Stepped(kAutomationStep);
    }
    /// Starts an effect beside what plays and goes on for some frames. Nothing is loaded again.
    void Play(int effect, int frames) {
        Tester().current_effect = effect;
        StartCurrentEffect(engine.effects, Tester(), {0, 0, 0});
        for (int frame = 0; frame < frames; ++frame) {
            player->Advance();
            Frame();
        }
    }
    /// Draws the present moment and shows it.
    void Frame() {
        player->Draw();
        player->Present();
    }
    /// Draws the present moment; empty without OpenGL.
    std::vector<D3DCOLOR> Picture() {
        player->Draw();
        return back_end_ == BackEnd::OpenGl ? ReadBackBuffer(Behind(*Gfx().Device())) : std::vector<D3DCOLOR>();
    }
    /// Releases everything.
    void End() {
        player.reset();
        engine.ShutDown();
        if (Tester().window) DestroyWindow(Tester().window);
        Tester() = {};
        minimised_ = false;
    }

    KRN_Gfx& Gfx() { return *engine.gfx; }

    /// The device is lost until the program asks for a message.
    void LoseDevice() {
        if (back_end_ == BackEnd::Recording) return recording.LoseDevice(3);
        lost_device_ = &Behind(*Gfx().Device());
        sparkrig::LoseDevice(*lost_device_);
    }
    /// The window gets another client area, which the program notices with its next frame.
    void ResizeWindow(int width, int height) {
        SDL_SetWindowSize(NativeWindow(Tester().window), width, height);
        MSG message;
        while (PeekMessageA(message, PM_REMOVE)) DispatchMessageA(message);
    }
    /// While minimised the window has no client area.
    void MinimiseWindow(bool on) {
        minimised_ = on;
        ResizeWindow(on ? 1 : kWidth, on ? 1 : kHeight);   // the layer takes one pixel for none
    }

    Recording recording;
    Engine engine;
    std::optional<Player> player;

  private:
    /// The system's, but for a window that may be minimised and a device that comes back in place of a message.
    static const GfxEnvironment& Environment() {
        static const GfxEnvironment environment = [] {
            GfxEnvironment table = kSystemEnvironment;
            table.client_rectangle = [](HWND window, RECT& rectangle) {
                GetClientRect(window, rectangle);
                if (minimised_) rectangle = {};
            };
            table.pump_message = [] {
                if (lost_device_) RestoreDevice(*lost_device_);
                lost_device_ = nullptr;
            };
            return table;
        }();
        return environment;
    }

    static inline IDirect3DDevice9* lost_device_ = nullptr;   // of OpenGL
    static inline bool minimised_ = false;
    BackEnd back_end_;
};

}   // namespace sparkrig
