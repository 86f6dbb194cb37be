// The contract between the graphics facade and the device below it, in the shape of Direct3D 9.
//
// It has two implementations: OpenGL (platform/d3d9_gl) and, for tests, one in memory (tests/support).
// Only what the program calls is here. Objects are reference-counted; a Get function that returns an object adds a
// reference for the caller. Above the layer every reference sits in a DevicePtr.
#pragma once
#include "platform/com/device_ptr.h"
#include "platform/com/unknown.h"
#include "platform/d3d9/d3d9_constants.h"
#include "platform/d3d9/d3d9_types.h"
#include "platform/d3d9/shader_code.h"
#include "platform/system/result_codes.h"

namespace sparkrig {

class IDirect3DDevice9;

class IDirect3DSurface9 : public IUnknown {
  public:
    virtual HRESULT GetDesc(D3DSURFACE_DESC* desc) = 0;
    virtual HRESULT LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) = 0;
    virtual HRESULT UnlockRect() = 0;
};

class IDirect3DTexture9 : public IUnknown {
  public:
    virtual DWORD GetLevelCount() = 0;
    virtual HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) = 0;
    virtual HRESULT GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) = 0;
    virtual HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) = 0;
    virtual HRESULT UnlockRect(UINT level) = 0;
};

class IDirect3DVertexBuffer9 : public IUnknown {
  public:
    /// Offset and size in bytes; 0, 0 locks all.
    virtual HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) = 0;
    virtual HRESULT Unlock() = 0;
};

class IDirect3DIndexBuffer9 : public IUnknown {
  public:
    virtual HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) = 0;
    virtual HRESULT Unlock() = 0;
};

class IDirect3DVertexShader9 : public IUnknown {};
class IDirect3DPixelShader9 : public IUnknown {};

class IDirect3D9 : public IUnknown {
  public:
    virtual UINT GetAdapterCount() = 0;
    virtual HRESULT GetAdapterIdentifier(UINT adapter, DWORD flags, D3DADAPTER_IDENTIFIER9* identifier) = 0;
    virtual HRESULT GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) = 0;
    virtual UINT GetAdapterModeCount(UINT adapter, D3DFORMAT format) = 0;
    virtual HRESULT EnumAdapterModes(UINT adapter, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) = 0;
    virtual HRESULT CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapter_format, DWORD usage,
                                      D3DRESOURCETYPE resource, D3DFORMAT format) = 0;
    virtual HRESULT GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* caps) = 0;
    virtual HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focus_window, DWORD behaviour,
                                 D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) = 0;
};

class IDirect3DDevice9 : public IUnknown {
  public:
    // Life of the device
    virtual HRESULT TestCooperativeLevel() = 0;
    virtual HRESULT Reset(D3DPRESENT_PARAMETERS* parameters) = 0;
    virtual HRESULT Present(const RECT* source, const RECT* destination, HWND window, const void* region) = 0;
    virtual HRESULT GetDeviceCaps(D3DCAPS9* caps) = 0;
    virtual void SetGammaRamp(UINT swap_chain, DWORD flags, const D3DGAMMARAMP* ramp) = 0;
    virtual HRESULT SetSoftwareVertexProcessing(BOOL software) = 0;

    // Resources
    virtual HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                  IDirect3DTexture9** texture) = 0;
    virtual HRESULT CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool,
                                       IDirect3DVertexBuffer9** buffer) = 0;
    virtual HRESULT CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                                      IDirect3DIndexBuffer9** buffer) = 0;
    virtual HRESULT CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD multisample, DWORD quality,
                                       BOOL lockable, IDirect3DSurface9** surface) = 0;
    virtual HRESULT CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                                IDirect3DSurface9** surface) = 0;
    virtual HRESULT CreateVertexShader(const ShaderCode& code, IDirect3DVertexShader9** shader) = 0;
    virtual HRESULT CreatePixelShader(const ShaderCode& code, IDirect3DPixelShader9** shader) = 0;

    // Targets and copies
    virtual HRESULT GetBackBuffer(UINT swap_chain, UINT index, DWORD type, IDirect3DSurface9** surface) = 0;
    virtual HRESULT SetRenderTarget(DWORD index, IDirect3DSurface9* surface) = 0;
    virtual HRESULT GetRenderTarget(DWORD index, IDirect3DSurface9** surface) = 0;
    virtual HRESULT GetDepthStencilSurface(IDirect3DSurface9** surface) = 0;
    virtual HRESULT StretchRect(IDirect3DSurface9* source, const RECT* from, IDirect3DSurface9* destination,
                                const RECT* to, DWORD filter) = 0;
    virtual HRESULT ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR colour) = 0;
    /// Copies a system-memory texture, every level, into a default-pool one of the same size and format.
    virtual HRESULT UpdateTexture(IDirect3DTexture9* source, IDirect3DTexture9* destination) = 0;
    /// Copies a render target into a system-memory surface of the same size and format.
    virtual HRESULT GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) = 0;

    // Frame
    virtual HRESULT BeginScene() = 0;
    virtual HRESULT EndScene() = 0;
    virtual HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR colour, float z, DWORD stencil) = 0;

    // State
    virtual HRESULT SetViewport(const D3DVIEWPORT9* viewport) = 0;
    virtual HRESULT GetViewport(D3DVIEWPORT9* viewport) = 0;
    virtual HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX* matrix) = 0;
    virtual HRESULT GetTransform(D3DTRANSFORMSTATETYPE state, D3DMATRIX* matrix) = 0;
    virtual HRESULT SetMaterial(const D3DMATERIAL9* material) = 0;
    virtual HRESULT GetMaterial(D3DMATERIAL9* material) = 0;
    virtual HRESULT SetLight(DWORD index, const D3DLIGHT9* light) = 0;
    virtual HRESULT GetLight(DWORD index, D3DLIGHT9* light) = 0;
    virtual HRESULT LightEnable(DWORD index, BOOL enable) = 0;
    virtual HRESULT GetLightEnable(DWORD index, BOOL* enable) = 0;
    virtual HRESULT SetRenderState(D3DRENDERSTATETYPE state, DWORD value) = 0;
    virtual HRESULT GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) = 0;
    virtual HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) = 0;
    virtual HRESULT GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) = 0;
    virtual HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) = 0;
    virtual HRESULT GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) = 0;
    virtual HRESULT SetTexture(DWORD sampler, IDirect3DTexture9* texture) = 0;
    virtual HRESULT GetTexture(DWORD sampler, IDirect3DTexture9** texture) = 0;
    virtual HRESULT SetVertexShader(IDirect3DVertexShader9* shader) = 0;
    virtual HRESULT GetVertexShader(IDirect3DVertexShader9** shader) = 0;
    virtual HRESULT SetPixelShader(IDirect3DPixelShader9* shader) = 0;
    virtual HRESULT GetPixelShader(IDirect3DPixelShader9** shader) = 0;
    /// The whole block of globals that the next draws' vertex (pixel) function reads, laid out as std140.
    virtual HRESULT SetVertexShaderGlobals(const void* data, UINT bytes) = 0;
    virtual HRESULT SetPixelShaderGlobals(const void* data, UINT bytes) = 0;

    // Geometry
    virtual HRESULT SetFVF(DWORD fvf) = 0;
    virtual HRESULT GetFVF(DWORD* fvf) = 0;
    virtual HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) = 0;
    virtual HRESULT SetIndices(IDirect3DIndexBuffer9* buffer) = 0;
    virtual HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) = 0;
    virtual HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                         UINT first_index, UINT count) = 0;
};

/// The Direct3D object of the OpenGL layer; null for any version but D3D_SDK_VERSION.
IDirect3D9* Direct3DCreate9(UINT sdk_version);

/// One sentence that says why the OpenGL layer can give no device; empty while it can.
const char* Direct3DUnavailableReason();

/// Bytes of one vertex of a vertex format.
DWORD VertexFormatStride(DWORD fvf);

}   // namespace sparkrig
