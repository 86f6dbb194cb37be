// The ribbon of a trail as triangles: a pure function of its lines.
#pragma once
#include "effects/trace_effect_set.h"
#include "gfx/geometry/vertex_list.h"

namespace sparkrig {

inline constexpr int kTraceVertices = 8192;    // of one trail at most
inline constexpr float kDetailFactor = 0.3f;   // how long texture and fade-in are; the level of detail leaves it alone

/// Triangles of the complete lines; 0 where there is nothing to span.
int RibbonTriangles(const TraceEffectData& trail);
/// Drops the oldest lines for good where the ribbon would need more than kTraceVertices.
void ShortenToFit(TraceEffectData& trail);
/// Writes three vertices for each of the RibbonTriangles.
void WriteRibbon(const TraceEffectData& trail, KRN_LVertex* vertices);

}   // namespace sparkrig
