// The object that lists adapters and makes devices.
#pragma once
#include "platform/com/ref_counted.h"
#include "platform/d3d9/d3d9.h"

namespace sparkrig {

class Direct3D final : public RefCounted<IDirect3D9> {
  public:
    Direct3D();

    UINT GetAdapterCount() override { return 1; }
    HRESULT GetAdapterIdentifier(UINT adapter, DWORD flags, D3DADAPTER_IDENTIFIER9* identifier) override;
    HRESULT GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) override;
    UINT GetAdapterModeCount(UINT adapter, D3DFORMAT format) override;
    HRESULT EnumAdapterModes(UINT adapter, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) override;
    HRESULT CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapter_format, DWORD usage,
                              D3DRESOURCETYPE resource, D3DFORMAT format) override;
    HRESULT GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* caps) override;
    HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focus_window, DWORD behaviour,
                         D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) override;

  private:
    ~Direct3D() override;
};

}   // namespace sparkrig
