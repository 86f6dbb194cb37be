#include "platform/d3d9_gl/direct3d.h"

#include <SDL.h>

#include <algorithm>

#include "platform/d3d9/capabilities.h"
#include "platform/d3d9_gl/device.h"
#include "platform/d3d9_gl/display_modes.h"
#include "platform/window/window.h"

namespace sparkrig {

namespace {

bool ValidAdapter(UINT adapter) { return adapter == D3DADAPTER_DEFAULT; }
bool ValidType(D3DDEVTYPE type) { return type >= D3DDEVTYPE_HAL && type <= D3DDEVTYPE_NULLREF; }

}   // namespace

Direct3D::Direct3D() { SDL_InitSubSystem(SDL_INIT_VIDEO); }
Direct3D::~Direct3D() { SDL_QuitSubSystem(SDL_INIT_VIDEO); }

HRESULT Direct3D::GetAdapterIdentifier(UINT adapter, DWORD /*flags*/, D3DADAPTER_IDENTIFIER9* identifier) {
    if (!ValidAdapter(adapter) || identifier == nullptr) return D3DERR_INVALIDCALL;
    const GlLimits* limits = ProbeLimits();
    if (limits == nullptr) return D3DERR_NOTAVAILABLE;
    *identifier = {};
    limits->renderer.copy(identifier->Description, sizeof identifier->Description - 1);
    return D3D_OK;
}

HRESULT Direct3D::GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) {
    if (!ValidAdapter(adapter) || mode == nullptr) return D3DERR_INVALIDCALL;
    *mode = DesktopMode();
    return D3D_OK;
}

UINT Direct3D::GetAdapterModeCount(UINT adapter, D3DFORMAT format) {
    return ValidAdapter(adapter) ? static_cast<UINT>(DisplayModes(format).size()) : 0;
}

HRESULT Direct3D::EnumAdapterModes(UINT adapter, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) {
    if (!ValidAdapter(adapter) || mode == nullptr) return D3DERR_INVALIDCALL;
    const auto modes = DisplayModes(format);
    if (modes.empty()) return D3DERR_NOTAVAILABLE;
    if (index >= modes.size()) return D3DERR_INVALIDCALL;
    *mode = modes[index];
    return D3D_OK;
}

HRESULT Direct3D::CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT /*adapter_format*/, DWORD usage,
                                    D3DRESOURCETYPE /*resource*/, D3DFORMAT format) {
    if (!ValidAdapter(adapter) || !ValidType(type)) return D3DERR_INVALIDCALL;
    const GlLimits* limits = ProbeLimits();
    return limits != nullptr && SupportsFormat(*limits, usage, format) ? D3D_OK : D3DERR_NOTAVAILABLE;
}

HRESULT Direct3D::GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* caps) {
    if (!ValidAdapter(adapter) || !ValidType(type) || caps == nullptr) return D3DERR_INVALIDCALL;
    const GlLimits* limits = ProbeLimits();
    if (limits == nullptr) return D3DERR_NOTAVAILABLE;
    *caps = DeviceCaps(*limits);
    caps->DeviceType = type;
    return D3D_OK;
}

HRESULT Direct3D::CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focus_window, DWORD behaviour,
                               D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) {
    if (!ValidAdapter(adapter) || !ValidType(type) || parameters == nullptr || device == nullptr) {
        return D3DERR_INVALIDCALL;
    }
    const HWND window = parameters->hDeviceWindow != nullptr ? parameters->hDeviceWindow : focus_window;
    if (window == nullptr) return D3DERR_INVALIDCALL;
    const auto client_area = [window] {
        RECT area;
        GetClientRect(window, area);
        return area;
    };
    const auto set_picture = [window](std::function<bool()> draw) { SetWindowPicture(window, std::move(draw)); };
    const auto set_full_screen_size = [window](int width, int height) { SetFullScreenSize(window, width, height); };
    const auto draw_menu = [window] { return DrawMenuBar(window); };
    Device* made = nullptr;
    const HRESULT result =
        Device::Create({NativeWindow(window), client_area, set_full_screen_size, draw_menu, set_picture}, behaviour,
                       *parameters, &made);
    *device = made;
    return result;
}

IDirect3D9* Direct3DCreate9(UINT sdk_version) { return sdk_version == D3D_SDK_VERSION ? new Direct3D : nullptr; }

}   // namespace sparkrig
