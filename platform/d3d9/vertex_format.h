// What lies where in one vertex of a vertex format (FVF code).
#pragma once
#include <array>

#include "platform/d3d9/d3d9_constants.h"
#include "platform/d3d9/shader_code.h"

namespace sparkrig {

enum class ElementKind : BYTE {
    Floats,
    Colour,   // four bytes B, G, R, A; 255 is 1.0
    Bytes,    // four whole numbers 0..255
};

struct VertexElement {
    int input = 0;   // VertexInput: where a vertex function finds it
    DWORD offset = 0;
    int components = 0;
    ElementKind kind = ElementKind::Floats;
};

struct VertexFormat {
    DWORD fvf = 0;
    DWORD stride = 0;
    int element_count = 0;
    std::array<VertexElement, kVertexInputs> elements = {};   // in memory order, the tangent last
    std::array<BYTE, 8> set_sizes = {};                       // floats in each texture coordinate set, 0: missing

    bool Transformed() const { return (fvf & D3DFVF_POSITION_MASK) == D3DFVF_XYZRHW; }
    bool Has(DWORD bit) const { return (fvf & bit) != 0; }
};

/// False when the code is not one that a vertex can have: no or two positions, a normal of a transformed vertex, more
/// than eight coordinate sets, unknown bits.
bool ParseVertexFormat(DWORD fvf, VertexFormat& format);

}   // namespace sparkrig
