#pragma once
#include "app/output_file.h"
#include "effects/visual_effect_system.h"

namespace sparkrig {

/// Writes one frame as a line of JSON: the clock, the counters of the last draw, every live instance by ascending id,
/// one after the other, since a line may be longer than the memory. False when the file has failed.
bool RecordFrame(const VisualEffectSystem& effects, int frame, OutputFile& file);

}   // namespace sparkrig
