// The program without its window loop, on the recording device alone or on OpenGL behind it.
//
//     WholeProgram program(BackEnd::OpenGl);
//     program.Play(0, 30);
//     program.recording.Fail("Present", D3DERR_DEVICELOST);
//     program.Frame();
#pragma once
#include <optional>
#include <ostream>
#include <vector>

#include "app/player.h"
#include "tests/support/recording.h"

namespace sparkrig {

enum class BackEnd { Recording, OpenGl, OpenGlAlone };   // alone: nothing is recorded
std::ostream& operator<<(std::ostream& out, BackEnd back_end);

class WholeProgram {
  public:
    static constexpr int kWidth = 160, kHeight = 90;

    enum class State { Window, Started };
    /// In a window that nobody sees; one program at a time.
    explicit WholeProgram(BackEnd back_end, State state = State::Started);
    ~WholeProgram();
    WholeProgram(const WholeProgram&) = delete;
    WholeProgram& operator=(const WholeProgram&) = delete;

    /// Makes the device and loads the effects of cfg.
    void Start();
    /// Starts an effect beside what plays and goes on for some frames. Nothing is loaded again.
    void Play(int effect, int frames);
    /// Draws the present moment and shows it.
    void Frame();
    /// Draws the present moment; empty without OpenGL.
    std::vector<D3DCOLOR> Picture();
    /// Releases everything.
    void End();

    KRN_Gfx& Gfx() { return *engine.gfx; }

    /// The device is lost until the program asks for a message.
    void LoseDevice();
    /// The window gets another client area, which the program notices with its next frame.
    void ResizeWindow(int width, int height);
    /// While minimised the window has no client area.
    void MinimiseWindow(bool on);

    Recording recording;
    Engine engine;
    std::optional<Player> player;

  private:
    BackEnd back_end_;
};

}   // namespace sparkrig
