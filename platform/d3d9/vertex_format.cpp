#include "platform/d3d9/vertex_format.h"

#include <algorithm>

#include "platform/d3d9/d3d9.h"

namespace sparkrig {

namespace {

constexpr DWORD kFloatBytes = 4;
constexpr DWORD kMaxBlendWeights = 4;   // what one vertex input holds

// Size code of a coordinate set (two bits from bit 16 on) to its floats.
constexpr BYTE kSetSizes[] = {2, 3, 4, 1};

struct PositionRow {
    DWORD code;
    int components, betas;
};
constexpr PositionRow kPositions[] = {
    {D3DFVF_XYZ, 3, 0},   {D3DFVF_XYZRHW, 4, 0}, {D3DFVF_XYZB1, 3, 1}, {D3DFVF_XYZB2, 3, 2},
    {D3DFVF_XYZB3, 3, 3}, {D3DFVF_XYZB4, 3, 4},  {D3DFVF_XYZB5, 3, 5},
};

class FormatWriter {
  public:
    explicit FormatWriter(VertexFormat& format) : format_(format) {}

    /// A second input for what was added last.
    void Also(int input) {
        format_.elements[format_.element_count] = format_.elements[format_.element_count - 1];
        format_.elements[format_.element_count++].input = input;
    }
    void Floats(int input, DWORD components) {
        Add(input, components, ElementKind::Floats);
        format_.stride += components * kFloatBytes;
    }
    void Packed(int input, ElementKind kind) {
        Add(input, 4, kind);
        format_.stride += kFloatBytes;
    }
    void Skip(DWORD floats) { format_.stride += floats * kFloatBytes; }

  private:
    void Add(int input, DWORD components, ElementKind kind) {
        format_.elements[format_.element_count++] = {input, format_.stride, static_cast<int>(components), kind};
    }

    VertexFormat& format_;
};

void WriteBetas(DWORD fvf, int betas, FormatWriter& writer) {
    const bool indexed = (fvf & D3DFVF_LASTBETA_UBYTE4) != 0 && betas > 0;
    const DWORD weights = static_cast<DWORD>(indexed ? betas - 1 : betas);
    const DWORD read = std::min(weights, kMaxBlendWeights);
    if (read > 0) writer.Floats(kInputBlendWeight, read);
    writer.Skip(weights - read);
    if (indexed) writer.Packed(kInputBlendIndices, ElementKind::Bytes);
}

bool ValidCode(DWORD fvf, DWORD sets) {
    constexpr DWORD kKnown = D3DFVF_POSITION_MASK | D3DFVF_NORMAL | D3DFVF_PSIZE | D3DFVF_DIFFUSE | D3DFVF_SPECULAR |
                             D3DFVF_TEXCOUNT_MASK | D3DFVF_LASTBETA_UBYTE4 | 0xFFFF0000u;
    const bool lit_normal = (fvf & D3DFVF_POSITION_MASK) == D3DFVF_XYZRHW && (fvf & D3DFVF_NORMAL) != 0;
    return (fvf & ~kKnown) == 0 && sets <= 8 && !lit_normal;
}

}   // namespace

bool ParseVertexFormat(DWORD fvf, VertexFormat& format) {
    format = {};
    format.fvf = fvf;
    const DWORD sets = (fvf & D3DFVF_TEXCOUNT_MASK) >> D3DFVF_TEXCOUNT_SHIFT;
    const auto* position = std::find_if(std::begin(kPositions), std::end(kPositions), [fvf](const PositionRow& row) {
        return row.code == (fvf & D3DFVF_POSITION_MASK);
    });
    if (position == std::end(kPositions) || !ValidCode(fvf, sets)) return false;

    FormatWriter writer(format);
    writer.Floats(kInputPosition, static_cast<DWORD>(position->components));
    WriteBetas(fvf, position->betas, writer);
    if (fvf & D3DFVF_NORMAL) writer.Floats(kInputNormal, 3);
    if (fvf & D3DFVF_PSIZE) writer.Floats(kInputPointSize, 1);
    if (fvf & D3DFVF_DIFFUSE) writer.Packed(kInputColor0, ElementKind::Colour);
    if (fvf & D3DFVF_SPECULAR) writer.Packed(kInputColor1, ElementKind::Colour);
    for (DWORD set = 0; set < sets; ++set) {
        format.set_sizes[set] = kSetSizes[fvf >> (16 + 2 * set) & 3];
        writer.Floats(kInputTexCoord0 + static_cast<int>(set), format.set_sizes[set]);
    }
    if (format.set_sizes.back() == 4) writer.Also(kInputTangent);
    return true;
}

DWORD VertexFormatStride(DWORD fvf) {
    VertexFormat format;
    return ParseVertexFormat(fvf, format) ? format.stride : 0;
}

}   // namespace sparkrig
