#pragma once
#include "app/engine.h"

namespace sparkrig {

/// Prints frame rate, speed, effect and counters over the picture.
void DrawOverlay(Engine& engine, const TesterState& state, const LoopState& loop);

/// Prints the name of the current effect at the top, as large as the width allows. Within a scene.
void DrawEffectName(Engine& engine, const TesterState& state);

}   // namespace sparkrig
