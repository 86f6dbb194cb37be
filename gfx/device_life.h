// Creating the device, presenting frames, and bringing it back after a loss or a resize.
#pragma once
#include "gfx/gfx_parts.h"

namespace sparkrig {

struct DeviceRequest {
    PresentationSettings presentation;
    const D3DDISPLAYMODE* mode;   // for full screen
    GraphicsDevice::Choice choice;
};

/// Makes the device and puts every state to its default.
void InitDevice(GfxParts& parts, const DeviceRequest& request);

/// 0 if the device had been lost, else 1. A null mode and a vsync of -1 keep what there is.
int ResetDevice(GfxParts& parts, const D3DDISPLAYMODE* mode, int vsync);

/// A refusal is a warning, and 0, in a window; an error in full screen.
int SetViewport(GfxParts& parts, const D3DVIEWPORT9& viewport);

/// 1 when the frame was shown, 0 when the device had to be reset instead.
int PresentFrame(GfxParts& parts);

}   // namespace sparkrig
