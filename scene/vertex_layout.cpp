#include "scene/vertex_layout.h"

namespace sparkrig {

namespace {

constexpr int kFloat = 4, kColour = 4, kVector = 12;

// clang-format off
constexpr struct { DWORD format; int bytes, weights; } kPositions[] = {
    {D3DFVF_XYZ,    12, 0},
    {D3DFVF_XYZRHW, 16, 0},
    {D3DFVF_XYZB1,  12, 1},
    {D3DFVF_XYZB2,  16, 2},
    {D3DFVF_XYZB3,  20, 3},
    {D3DFVF_XYZB4,  24, 4},
};
// clang-format on
constexpr DWORD kPositionBits = 0x0E;
constexpr int kMaxTextureSets = 8;
constexpr int kTextureFloats[] = {2, 3, 4, 1};   // by the two size bits of a set

/// Gives `place` to a component and moves on by its size if the format has it.
void Take(DWORD format, DWORD bit, int bytes, int& place, int& next) {
    place = next;
    if (format & bit) next += bytes;
}

}   // namespace

VertexLayout ComputeVertexLayout(DWORD format) {
    VertexLayout layout;
    layout.format = format;
    int next = 0;
    for (const auto& row : kPositions) {
        if ((format & kPositionBits) != row.format) continue;
        next = row.bytes;
        layout.weights = row.weights;
        layout.rhw_or_weights = kVector;
    }
    if (format & D3DFVF_LASTBETA_UBYTE4) next += 4;   // the packed indices stand behind the weights
    Take(format, D3DFVF_NORMAL, kVector, layout.normal, next);
    Take(format, D3DFVF_PSIZE, kFloat, layout.point_size, next);
    Take(format, D3DFVF_DIFFUSE, kColour, layout.diffuse, next);
    Take(format, D3DFVF_SPECULAR, kColour, layout.specular, next);
    const int sets = static_cast<int>((format & D3DFVF_TEXCOUNT_MASK) >> D3DFVF_TEXCOUNT_SHIFT);
    layout.texture_sets = sets < kMaxTextureSets ? sets : kMaxTextureSets;
    for (int set = 0; set < layout.texture_sets; ++set) {
        layout.texture_offset[set] = next;
        layout.texture_floats[set] = kTextureFloats[format >> (16 + 2 * set) & 3];
        next += kFloat * layout.texture_floats[set];
    }
    layout.stride = next;
    return layout;
}

}   // namespace sparkrig
