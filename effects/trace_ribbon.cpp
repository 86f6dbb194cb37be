// Built as motion_lanes.cpp is.
#include "effects/trace_ribbon.h"

#include <algorithm>

#include "effects/vector_code.h"

namespace sparkrig {
namespace {

constexpr float kFadeInLines = 32, kTextureLines = 128;   // times the detail factor
constexpr int kVerticesPerSpan = 6;                       // between two lines and two channels

/// What all points of a line share.
struct Cross {
    D3DCOLOR colour;
    float u;
};

/// number: of the line, counted from the first that the trail ever had.
D3DCOLOR ColourOf(const TraceEffectLineData& line, std::int64_t number) {
    constexpr float kFade = 1 / (kDetailFactor * kFadeInLines);
    const float fade_in = static_cast<float>(number) * kFade;
    const float alpha = line.life / line.reference_life * (fade_in < 1 ? fade_in : 1) * 255;
    const float byte = alpha > 0 ? (alpha < 255 ? alpha : 255) : 0;   // without a reference life nothing is seen
    return static_cast<D3DCOLOR>(byte) << 24 | 0xFFFFFFu;
}

float TextureU(const TraceEffectData& trail, std::int64_t number, int lines) {
    if (trail.settings.stretched) return static_cast<float>(number - trail.first_live) / static_cast<float>(lines - 1);
    const double per_line = 1.0 / (double{kDetailFactor} * kTextureLines * trail.settings.texture_scale);
    return static_cast<float>(static_cast<double>(number) * per_line);
}

KRN_LVertex VertexOf(const TraceEffectLineData& line, const Cross& cross, int channel, float v) {
    const D3DXVECTOR3& point = line.points[channel];
    return {point.x, point.y, point.z, cross.colour, 0, cross.u, v};
}

}   // namespace

int RibbonTriangles(const TraceEffectData& trail) {
    const int channels = trail.Channels(), lines = trail.CompleteLines();
    return channels < 2 || lines < 2 ? 0 : 2 * (lines - 1) * (channels - 1);
}

void ShortenToFit(TraceEffectData& trail) {
    const int excess = 3 * RibbonTriangles(trail) - kTraceVertices, for_a_line = 3 * trail.Channels();
    if (excess <= 0) return;
    // More than two channels can drop more lines than there are: the last stays, with whose life the trail ends.
    trail.first_live = std::min(trail.first_live + (excess + for_a_line - 1) / for_a_line, trail.LineEnd() - 1);
}

SPARKRIG_VECTOR_CODE void WriteRibbon(const TraceEffectData& trail, KRN_LVertex* vertices) {
    const int channels = trail.Channels(), lines = trail.CompleteLines();
    Cross crosses[kTraceVertices / kVerticesPerSpan + 2];
    for (int i = 0; i < lines; ++i) {
        const std::int64_t number = trail.first_live + i;
        crosses[i] = {ColourOf(trail.Line(number), number), TextureU(trail, number, lines)};
    }
    for (int c = 0; c + 1 < channels; ++c) {
        const float v = static_cast<float>(c) / static_cast<float>(channels - 1);
        const float next_v = static_cast<float>(c + 1) / static_cast<float>(channels - 1);
        const TraceEffectLineData* line = &trail.Line(trail.first_live);
        for (int i = 0; i + 1 < lines; ++i, ++line, vertices += kVerticesPerSpan) {
            const KRN_LVertex from = VertexOf(line[0], crosses[i], c, v);
            const KRN_LVertex from_next = VertexOf(line[0], crosses[i], c + 1, next_v);
            const KRN_LVertex to = VertexOf(line[1], crosses[i + 1], c, v);
            const KRN_LVertex to_next = VertexOf(line[1], crosses[i + 1], c + 1, next_v);
            vertices[0] = from;
            vertices[1] = from_next;
            vertices[2] = to;
            vertices[3] = to;
            vertices[4] = from_next;
            vertices[5] = to_next;
        }
    }
}

}   // namespace sparkrig
