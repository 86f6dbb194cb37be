// One picture: background, backdrop, effects, overlay.
#pragma once
#include "app/engine.h"

namespace sparkrig {

/// Loads catalogue and effects and sets camera, projection and background up. Once, before the first frame.
void BeginPlaying(Engine& engine, TesterState& state, LoopState& loop);

/// Loads the picture that the setting names; what cannot be read is said in the overlay.
void ShowBackgroundPicture(Engine& engine, TesterState& state);

/// Draws a frame into the back buffer. The clock's frame time drives the frame rate that the overlay shows.
void DrawFrame(Engine& engine, const TesterState& state, LoopState& loop);

}   // namespace sparkrig
