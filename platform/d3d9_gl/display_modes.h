// The modes of the screen, in the shape of the device contract.
#pragma once
#include <vector>

#include "platform/d3d9/d3d9_types.h"

namespace sparkrig {

/// Full-screen modes that the monitor in use has in a format, smallest first. Empty for a format that no screen has.
std::vector<D3DDISPLAYMODE> DisplayModes(D3DFORMAT format);
D3DDISPLAYMODE DesktopMode();

}   // namespace sparkrig
