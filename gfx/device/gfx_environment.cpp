#include "gfx/device/gfx_environment.h"

#include "base/log.h"
#include "platform/d3dx/d3dx_effect.h"
#include "platform/system/system.h"
#include "platform/window/window.h"

namespace sparkrig {

namespace {

void PumpMessage() {
    MSG message = {};
    GetMessageA(message);
    TranslateMessage(message);
    DispatchMessageA(message);
}

}   // namespace

const GfxEnvironment kSystemEnvironment = {LoadLibraryA, FreeLibrary, GetClientRect,
                                           PumpMessage,  GetSeconds,  D3DXCreateEffectPool};

}   // namespace sparkrig
