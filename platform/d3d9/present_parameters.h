// The rules for presentation parameters.
#pragma once
#include "platform/d3d9/d3d9_types.h"

namespace sparkrig {

/// Checks the parameters and fills in what they leave open: the client area's size, the format and the count.
HRESULT CompleteParameters(const RECT& client_area, D3DPRESENT_PARAMETERS& parameters);

}   // namespace sparkrig
