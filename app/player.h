#pragma once
#include "app/engine.h"
#include "app/picture_writer.h"

namespace sparkrig {

/// Plays effects by the clock of automation: every frame advances by 1/60 s times the speed, then draws. Frame n shows
/// the time (n + 1)/60.
class Player {
  public:
    Player(Engine& engine, TesterState& state, const Options& options);

    /// Loads everything. Before anything else.
    void Load();
    LoopState& Loop() { return loop_; }
    int EffectCount() const { return loop_.effect_count; }

    /// Ends what plays and starts an effect at the origin, the generator at its seed.
    void StartEffect(int index);
    /// Advances by one frame.
    void Advance();
    /// Draws the present moment into the back buffer.
    void Draw();
    /// A frame that nobody sees: it counts as drawn and presented, and nothing is rasterised.
    void Pass();
    /// In place of what is drawn, the name of the current effect in large letters at the top.
    void DrawCaption(D3DCOLOR background);
    Picture TakePicture();
    /// Ends the frame. What was drawn is gone.
    void Present() { engine_.gfx->PresentFrame(); }
    const VisualEffectSystem& Effects() const { return engine_.effects; }

  private:
    Engine& engine_;
    TesterState& state_;
    LoopState loop_;
    std::uint32_t seed_;
    bool repeat_;
};

}   // namespace sparkrig
