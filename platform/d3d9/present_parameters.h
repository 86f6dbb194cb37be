// The rules for presentation parameters.
#pragma once
#include <span>

#include "platform/d3d9/d3d9_types.h"

namespace sparkrig {

/// Checks the parameters and fills in what they leave open: the client area's size, the format and the count. `modes`
/// are the full-screen modes of the parameters' format.
HRESULT CompleteParameters(const RECT& client_area, std::span<const D3DDISPLAYMODE> modes,
                           D3DPRESENT_PARAMETERS& parameters);

}   // namespace sparkrig
