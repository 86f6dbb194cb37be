// The operations of the texture stages: which arguments each reads and its formula in GLSL.
#pragma once
#include "platform/d3d9/d3d9_constants.h"

namespace sparkrig {

struct StageOp {
    DWORD op;
    bool reads_0, reads_1, reads_2;
    const char* formula;   // of the vectors a0, a1, a2, diffuse, current, texel and d3d_states.texture_factor
};

/// Null for a number that is no operation.
const StageOp* FindStageOp(DWORD op);

}   // namespace sparkrig
