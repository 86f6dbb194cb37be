// The program without its window loop, on the recording device alone or on OpenGL behind it.
//
//     WholeProgram program(BackEnd::OpenGl);
//     program.player->StartEffect(0);
//     program.recording.Fail("Present", D3DERR_DEVICELOST);
//     program.Frame();
#pragma once
#include <optional>
#include <ostream>

#include "app/player.h"
#include "tests/support/recording.h"

namespace sparkrig {

enum class BackEnd { Recording, OpenGl };
std::ostream& operator<<(std::ostream& out, BackEnd back_end);

class WholeProgram {
  public:
    static constexpr int kWidth = 160, kHeight = 90;

    /// In a window that nobody sees; the effects of cfg are loaded.
    explicit WholeProgram(BackEnd back_end);
    ~WholeProgram();
    WholeProgram(const WholeProgram&) = delete;
    WholeProgram& operator=(const WholeProgram&) = delete;

    KRN_Gfx& Gfx() { return *engine.gfx; }
    /// Starts an effect beside what plays and goes on for some frames. Nothing is loaded again.
    void Play(int effect, int frames);
    /// Draws the present moment and shows it.
    void Frame();
    /// Releases everything.
    void End();

    Recording recording;
    Engine engine;
    std::optional<Player> player;
};

}   // namespace sparkrig
