// Where the components of a vertex format lie.
#pragma once
#include "platform/d3d9/d3d9_types.h"

namespace sparkrig {

/// In bytes. A component that the format lacks has the place where it would stand.
struct VertexLayout {
    DWORD format = 0;
    int stride = 0;
    int position = 0, rhw_or_weights = 0, normal = 0, point_size = 0, diffuse = 0, specular = 0;
    int weights = 0;   // blend weights, packed indices counted as one
    int texture_sets = 0;
    int texture_offset[8] = {}, texture_floats[8] = {};
};
VertexLayout ComputeVertexLayout(DWORD format);

}   // namespace sparkrig
