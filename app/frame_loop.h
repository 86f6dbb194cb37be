#pragma once
#include "app/engine.h"
#include "app/journal.h"

namespace sparkrig {

/// Starts the current effect again whenever no instance is left alive.
void RepeatCurrentEffect(Engine& engine, const TesterState& state);

/// Plays in the window until Escape is held or the window is destroyed.
///   repeat   starts the current effect again whenever the last instance has ended
///   journal  written after every frame; null for none
void RunFrameLoop(Engine& engine, TesterState& state, LoopState& loop, bool repeat, Journal* journal);

}   // namespace sparkrig
