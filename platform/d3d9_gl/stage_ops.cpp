#include "platform/d3d9_gl/stage_ops.h"

#include <algorithm>
#include <iterator>

namespace sparkrig {

namespace {

// clang-format off
constexpr StageOp kStageOps[] = {
    // operation                         reads 0 1 2            formula
    {D3DTOP_SELECTARG1,                  false, true,  false,   "a1"},
    {D3DTOP_SELECTARG2,                  false, false, true,    "a2"},
    {D3DTOP_MODULATE,                    false, true,  true,    "a1 * a2"},
    {D3DTOP_MODULATE2X,                  false, true,  true,    "a1 * a2 * 2.0"},
    {D3DTOP_MODULATE4X,                  false, true,  true,    "a1 * a2 * 4.0"},
    {D3DTOP_ADD,                         false, true,  true,    "a1 + a2"},
    {D3DTOP_ADDSIGNED,                   false, true,  true,    "a1 + a2 - 0.5"},
    {D3DTOP_ADDSIGNED2X,                 false, true,  true,    "(a1 + a2 - 0.5) * 2.0"},
    {D3DTOP_SUBTRACT,                    false, true,  true,    "a1 - a2"},
    {D3DTOP_ADDSMOOTH,                   false, true,  true,    "a1 + a2 * (1.0 - a1)"},
    {D3DTOP_BLENDDIFFUSEALPHA,           false, true,  true,    "mix(a2, a1, diffuse.a)"},
    {D3DTOP_BLENDTEXTUREALPHA,           false, true,  true,    "mix(a2, a1, texel.a)"},
    {D3DTOP_BLENDFACTORALPHA,            false, true,  true,    "mix(a2, a1, d3d_states.texture_factor.a)"},
    {D3DTOP_BLENDTEXTUREALPHAPM,         false, true,  true,    "a1 + a2 * (1.0 - texel.a)"},
    {D3DTOP_BLENDCURRENTALPHA,           false, true,  true,    "mix(a2, a1, current.a)"},
    {D3DTOP_MODULATEALPHA_ADDCOLOR,      false, true,  true,    "a1 + a1.a * a2"},
    {D3DTOP_MODULATECOLOR_ADDALPHA,      false, true,  true,    "a1 * a2 + a1.a"},
    {D3DTOP_MODULATEINVALPHA_ADDCOLOR,   false, true,  true,    "(1.0 - a1.a) * a2 + a1"},
    {D3DTOP_MODULATEINVCOLOR_ADDALPHA,   false, true,  true,    "(1.0 - a1) * a2 + a1.a"},
    {D3DTOP_BUMPENVMAP,                  false, true,  true,    "current"},
    {D3DTOP_DOTPRODUCT3,                 false, true,  true,    "vec4(4.0 * dot(a1.rgb - 0.5, a2.rgb - 0.5))"},
    {D3DTOP_MULTIPLYADD,                 true,  true,  true,    "a0 + a1 * a2"},
    {D3DTOP_LERP,                        true,  true,  true,    "mix(a2, a1, a0)"},
};
// clang-format on

}   // namespace

const StageOp* FindStageOp(DWORD op) {
    const auto* row =
        std::find_if(std::begin(kStageOps), std::end(kStageOps), [op](const StageOp& entry) { return entry.op == op; });
    return row == std::end(kStageOps) ? nullptr : row;
}

}   // namespace sparkrig
