#include "platform/d3d9_gl/device_hooks.h"

#include <SDL.h>

#include "platform/d3d9_gl/device.h"

namespace sparkrig {

void LoseDevice(IDirect3DDevice9& device) { static_cast<Device&>(device).Lose(); }
void RestoreDevice(IDirect3DDevice9& device) { static_cast<Device&>(device).Restore(); }
void SetBlind(IDirect3DDevice9& device, bool blind) { static_cast<Device&>(device).SetBlind(blind); }
std::size_t ProgramCount(IDirect3DDevice9& device) { return static_cast<Device&>(device).ProgramCount(); }

HRESULT CreateDeviceOnWindow(SDL_Window* window, const D3DPRESENT_PARAMETERS& parameters, IDirect3DDevice9** device) {
    const auto client_area = [window] {
        RECT area = {};
        SDL_GetWindowSize(window, &area.right, &area.bottom);
        return area;
    };
    Device* made = nullptr;
    const HRESULT result =
        Device::Create({window, client_area, [](int, int) {}, [] { return false; }, [](const auto&) {}},
                       D3DCREATE_MIXED_VERTEXPROCESSING, parameters, &made);
    *device = made;
    return result;
}

}   // namespace sparkrig
