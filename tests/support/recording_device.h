// The second implementation of the device contract: it draws nothing, records every call, keeps states for the Get
// functions and enforces the rules of scenes, locks and resets.
#pragma once
#include <array>
#include <map>

#include "platform/d3dx/d3dx_math.h"
#include "tests/support/recorded_objects.h"

namespace sparkrig {

class RecordingDirect3D : public RecordedObject<IDirect3D9> {
  public:
    explicit RecordingDirect3D(Recording& recording) : RecordedObject(recording, false) {}

    UINT GetAdapterCount() override { return static_cast<UINT>(recording_.adapters.size()); }
    HRESULT GetAdapterIdentifier(UINT adapter, DWORD flags, D3DADAPTER_IDENTIFIER9* identifier) override;
    HRESULT GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) override;
    UINT GetAdapterModeCount(UINT adapter, D3DFORMAT format) override;
    HRESULT EnumAdapterModes(UINT adapter, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) override;
    HRESULT CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapter_format, DWORD usage,
                              D3DRESOURCETYPE resource, D3DFORMAT format) override;
    HRESULT GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* caps) override;
    HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focus_window, DWORD behaviour,
                         D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) override;
};

/// Everything that a reset puts back.
struct RecordedStates {
    RecordedStates(bool depth_buffer, UINT width, UINT height);

    std::map<DWORD, DWORD> render;
    std::array<std::map<DWORD, DWORD>, kTextureStages> stages;
    std::array<std::map<DWORD, DWORD>, kSamplers> samplers;
    std::map<DWORD, D3DMATRIX> transforms;
    std::map<DWORD, D3DLIGHT9> lights;
    std::map<DWORD, BOOL> lights_on;
    D3DMATERIAL9 material = {};
    D3DVIEWPORT9 viewport;
    DWORD fvf = 0;
    UINT stride = 0;
    DevicePtr<IDirect3DVertexBuffer9> stream;
    DevicePtr<IDirect3DIndexBuffer9> indices;
    std::array<DevicePtr<IDirect3DTexture9>, kSamplers> textures;
    DevicePtr<IDirect3DVertexShader9> vertex_shader;
    DevicePtr<IDirect3DPixelShader9> pixel_shader;
    DevicePtr<IDirect3DSurface9> target;
    bool in_scene = false;
};

class RecordingDevice : public RecordedObject<IDirect3DDevice9> {
  public:
    RecordingDevice(Recording& recording, DWORD behaviour, const D3DPRESENT_PARAMETERS& parameters);

    HRESULT TestCooperativeLevel() override;
    HRESULT Reset(D3DPRESENT_PARAMETERS* parameters) override;
    HRESULT Present(const RECT* source, const RECT* destination, HWND window, const void* region) override;
    HRESULT GetDeviceCaps(D3DCAPS9* caps) override;
    void SetGammaRamp(UINT swap_chain, DWORD flags, const D3DGAMMARAMP* ramp) override;
    HRESULT SetSoftwareVertexProcessing(BOOL software) override;

    HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                          IDirect3DTexture9** texture) override;
    HRESULT CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool,
                               IDirect3DVertexBuffer9** buffer) override;
    HRESULT CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                              IDirect3DIndexBuffer9** buffer) override;
    HRESULT CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD multisample, DWORD quality,
                               BOOL lockable, IDirect3DSurface9** surface) override;
    HRESULT CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                        IDirect3DSurface9** surface) override;
    HRESULT CreateVertexShader(const ShaderCode& code, IDirect3DVertexShader9** shader) override;
    HRESULT CreatePixelShader(const ShaderCode& code, IDirect3DPixelShader9** shader) override;

    HRESULT GetBackBuffer(UINT swap_chain, UINT index, DWORD type, IDirect3DSurface9** surface) override;
    HRESULT SetRenderTarget(DWORD index, IDirect3DSurface9* surface) override;
    HRESULT GetRenderTarget(DWORD index, IDirect3DSurface9** surface) override;
    HRESULT GetDepthStencilSurface(IDirect3DSurface9** surface) override;
    HRESULT StretchRect(IDirect3DSurface9* source, const RECT* from, IDirect3DSurface9* destination, const RECT* to,
                        DWORD filter) override;
    HRESULT ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR colour) override;
    HRESULT UpdateTexture(IDirect3DTexture9* source, IDirect3DTexture9* destination) override;
    HRESULT GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) override;

    HRESULT BeginScene() override;
    HRESULT EndScene() override;
    HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR colour, float z, DWORD stencil) override;

    HRESULT SetViewport(const D3DVIEWPORT9* viewport) override;
    HRESULT GetViewport(D3DVIEWPORT9* viewport) override;
    HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX* matrix) override;
    HRESULT GetTransform(D3DTRANSFORMSTATETYPE state, D3DMATRIX* matrix) override;
    HRESULT SetMaterial(const D3DMATERIAL9* material) override;
    HRESULT GetMaterial(D3DMATERIAL9* material) override;
    HRESULT SetLight(DWORD index, const D3DLIGHT9* light) override;
    HRESULT GetLight(DWORD index, D3DLIGHT9* light) override;
    HRESULT LightEnable(DWORD index, BOOL enable) override;
    HRESULT GetLightEnable(DWORD index, BOOL* enable) override;
    HRESULT SetRenderState(D3DRENDERSTATETYPE state, DWORD value) override;
    HRESULT GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) override;
    HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) override;
    HRESULT GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) override;
    HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) override;
    HRESULT GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) override;
    HRESULT SetTexture(DWORD sampler, IDirect3DTexture9* texture) override;
    HRESULT GetTexture(DWORD sampler, IDirect3DTexture9** texture) override;
    HRESULT SetVertexShader(IDirect3DVertexShader9* shader) override;
    HRESULT GetVertexShader(IDirect3DVertexShader9** shader) override;
    HRESULT SetPixelShader(IDirect3DPixelShader9* shader) override;
    HRESULT GetPixelShader(IDirect3DPixelShader9** shader) override;
    HRESULT SetVertexShaderGlobals(const void* data, UINT bytes) override;
    HRESULT SetPixelShaderGlobals(const void* data, UINT bytes) override;

    HRESULT SetFVF(DWORD fvf) override;
    HRESULT GetFVF(DWORD* fvf) override;
    HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) override;
    HRESULT SetIndices(IDirect3DIndexBuffer9* buffer) override;
    HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) override;
    HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                 UINT first_index, UINT count) override;

  private:
    ~RecordingDevice() override = default;
    void MakeSwapChain(const D3DPRESENT_PARAMETERS& parameters);
    /// Resources that the program, not the device, keeps in the default pool.
    int ForeignDefaultPoolObjects() const;
    /// The reason that forbids drawing now, or D3D_OK.
    HRESULT ReadyToDraw(UINT count) const;
    /// Keeps a state that was sent. It is redundant when it was there already.
    template <class State>
    void Keep(State& held, const State& sent) {
        if (held == sent) recording_.LastWasRedundant();
        held = sent;
    }
    RecordedDraw DescribeDraw(D3DPRIMITIVETYPE type, UINT first, UINT count) const;

    DWORD behaviour_;
    DevicePtr<RecordedSurface> back_buffer_, depth_;
    RecordedStates states_;
};

}   // namespace sparkrig
