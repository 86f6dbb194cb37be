// The Direct3D object, the device made from it and what it can do. Every part of KRN_Gfx reaches the device here.
#pragma once
#include "base/error.h"
#include "gfx/device/gfx_environment.h"
#include "platform/d3d9/d3d9.h"
#include "platform/d3dx/d3dx_effect.h"

namespace sparkrig {

class GraphicsDevice {
  public:
    using CreateDirect3D = IDirect3D9* (*)(UINT sdk_version);

    /// Probes the run-time libraries and makes the Direct3D object; what is missing is an error of `reporter`, which
    /// outlives this.
    GraphicsDevice(const KRN_Base& reporter, CreateDirect3D create, const GfxEnvironment& environment);
    GraphicsDevice(const GraphicsDevice&) = delete;
    GraphicsDevice& operator=(const GraphicsDevice&) = delete;

    /// How InitDevice's three numbers choose adapter, device type and behaviour (see gfx.h).
    struct Choice {
        int vertex_processing, device_select, multithreaded;
    };
    void Create(HWND window, const Choice& choice, D3DPRESENT_PARAMETERS parameters);
    void CreateEffectPool();

    /// An error with the text and the code's name when the result is a failure.
    void Require(HRESULT result, const char* text) const;

    const KRN_Base& Reporter() const { return reporter_; }
    const GfxEnvironment& Environment() const { return environment_; }
    IDirect3D9& Direct3D() const { return *direct3d_; }
    IDirect3DDevice9* Device() const { return device_.Get(); }
    ID3DXEffectPool* EffectPool() const { return effect_pool_.Get(); }
    const D3DCAPS9& Caps() const { return caps_; }
    UINT Adapter() const { return adapter_; }
    D3DDEVTYPE DeviceType() const { return device_type_; }
    DWORD Behaviour() const { return behaviour_; }
    /// Hardware or mixed vertex processing is in use.
    bool HardwareProcessing() const { return hardware_processing_; }

  private:
    void ChooseAdapter(int device_select);
    void ChooseBehaviour(const Choice& choice);

    const KRN_Base& reporter_;
    const GfxEnvironment& environment_;
    DevicePtr<IDirect3D9> direct3d_;
    DevicePtr<IDirect3DDevice9> device_;       // made by direct3d_, released before it
    DevicePtr<ID3DXEffectPool> effect_pool_;   // shared by all shader effects
    D3DCAPS9 caps_ = {};
    UINT adapter_ = D3DADAPTER_DEFAULT;
    D3DDEVTYPE device_type_ = D3DDEVTYPE_HAL;
    DWORD behaviour_ = 0;
    bool hardware_processing_ = false;
};

}   // namespace sparkrig
