// What the graphics device asks of the system around it. One table, so that tests can stand in for all of it.
#pragma once
#include "platform/system/win_types.h"

namespace sparkrig {

class ID3DXEffectPool;

struct GfxEnvironment {
    /// Presence probes of the run-time libraries.
    bool (*load_library)(const char* name);
    void (*free_library)(const char* name);
    void (*client_rectangle)(HWND window, RECT& rectangle);
    /// Waits for one window message, translates and dispatches it.
    void (*pump_message)();
    /// The program's clock, in seconds.
    double (*seconds)();
    HRESULT (*create_effect_pool)(ID3DXEffectPool** pool);
};

/// The real system: platform/system, platform/window, platform/d3dx and the clock of base.
extern const GfxEnvironment kSystemEnvironment;

}   // namespace sparkrig
