#include "tests/support/forwarding_device.h"

#include "tests/support/recorded_objects.h"

namespace sparkrig {

namespace {

template <class Interface>
class Forwarding;

/// What an argument of a call becomes for the object behind: an object, the one behind it; a place for a new object,
/// one that is stored there in the end with a forwarding object around it; anything else, itself.
template <class Value>
struct Argument {
    Recording& recording;
    Value value;
    operator Value() const { return value; }
};

template <class Interface>
concept Object = requires(Interface& object) {
    object.AddRef();
};

template <Object Interface>
struct Argument<Interface*> {
    Recording& recording;
    Interface* value;
    operator Interface*() const { return value ? static_cast<Forwarding<Interface>*>(value)->Behind() : nullptr; }
};

template <Object Interface>
struct Argument<Interface**> {
    Recording& recording;
    Interface** place;
    Interface* made = nullptr;
    operator Interface**() { return &made; }
    ~Argument() { *place = made ? new Forwarding<Interface>(recording, made) : nullptr; }
};

template <class Interface>
class ForwardingObject : public RecordedObject<Interface> {
  public:
    /// Takes over the reference.
    ForwardingObject(Recording& recording, Interface* behind)
        : RecordedObject<Interface>(recording, false), behind_(behind) {}
    Interface* Behind() const { return behind_.Get(); }

  protected:
    template <class... Parameters, class... Arguments>
    HRESULT Call(const char* name, HRESULT (Interface::*method)(Parameters...), Arguments... arguments) {
        const HRESULT refusal = this->recording_.Record(name, {});
        if (FAILED(refusal)) return refusal;
        return (behind_.Get()->*method)(Argument<Parameters>{this->recording_, arguments}...);
    }

    DevicePtr<Interface> behind_;
};

// Shaders have no calls.
template <class Interface>
class Forwarding : public ForwardingObject<Interface> {
  public:
    using ForwardingObject<Interface>::ForwardingObject;
};

template <>
class Forwarding<IDirect3DSurface9> : public ForwardingObject<IDirect3DSurface9> {
    using I = IDirect3DSurface9;

  public:
    using ForwardingObject::ForwardingObject;
    HRESULT GetDesc(D3DSURFACE_DESC* desc) override { return Call("GetDesc", &I::GetDesc, desc); }
    HRESULT LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override {
        return Call("LockRect", &I::LockRect, locked, rect, flags);
    }
    HRESULT UnlockRect() override { return Call("UnlockRect", &I::UnlockRect); }
};

template <>
class Forwarding<IDirect3DTexture9> : public ForwardingObject<IDirect3DTexture9> {
    using I = IDirect3DTexture9;

  public:
    using ForwardingObject::ForwardingObject;
    DWORD GetLevelCount() override { return behind_->GetLevelCount(); }
    HRESULT GetLevelDesc(UINT level, D3DSURFACE_DESC* desc) override {
        return Call("GetLevelDesc", &I::GetLevelDesc, level, desc);
    }
    HRESULT GetSurfaceLevel(UINT level, IDirect3DSurface9** surface) override {
        return Call("GetSurfaceLevel", &I::GetSurfaceLevel, level, surface);
    }
    HRESULT LockRect(UINT level, D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override {
        return Call("LockRect", &I::LockRect, level, locked, rect, flags);
    }
    HRESULT UnlockRect(UINT level) override { return Call("UnlockRect", &I::UnlockRect, level); }
};

template <class Interface>
class ForwardingBuffer : public ForwardingObject<Interface> {
  public:
    using ForwardingObject<Interface>::ForwardingObject;
    HRESULT Lock(UINT offset, UINT size, void** data, DWORD flags) override {
        return this->Call("Lock", &Interface::Lock, offset, size, data, flags);
    }
    HRESULT Unlock() override { return this->Call("Unlock", &Interface::Unlock); }
};

template <>
class Forwarding<IDirect3DVertexBuffer9> : public ForwardingBuffer<IDirect3DVertexBuffer9> {
  public:
    using ForwardingBuffer::ForwardingBuffer;
};
template <>
class Forwarding<IDirect3DIndexBuffer9> : public ForwardingBuffer<IDirect3DIndexBuffer9> {
  public:
    using ForwardingBuffer::ForwardingBuffer;
};

template <>
class Forwarding<IDirect3D9> : public ForwardingObject<IDirect3D9> {
    using I = IDirect3D9;

  public:
    using ForwardingObject::ForwardingObject;
    UINT GetAdapterCount() override { return behind_->GetAdapterCount(); }
    HRESULT GetAdapterIdentifier(UINT adapter, DWORD flags, D3DADAPTER_IDENTIFIER9* identifier) override {
        return Call("GetAdapterIdentifier", &I::GetAdapterIdentifier, adapter, flags, identifier);
    }
    HRESULT GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) override {
        return Call("GetAdapterDisplayMode", &I::GetAdapterDisplayMode, adapter, mode);
    }
    UINT GetAdapterModeCount(UINT adapter, D3DFORMAT format) override {
        return behind_->GetAdapterModeCount(adapter, format);
    }
    HRESULT EnumAdapterModes(UINT adapter, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) override {
        return Call("EnumAdapterModes", &I::EnumAdapterModes, adapter, format, index, mode);
    }
    HRESULT CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapter_format, DWORD usage,
                              D3DRESOURCETYPE resource, D3DFORMAT format) override {
        return Call("CheckDeviceFormat", &I::CheckDeviceFormat, adapter, type, adapter_format, usage, resource, format);
    }
    HRESULT GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* caps) override {
        return Call("GetDeviceCaps", &I::GetDeviceCaps, adapter, type, caps);
    }
    HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focus_window, DWORD behaviour,
                         D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) override {
        return Call("CreateDevice", &I::CreateDevice, adapter, type, focus_window, behaviour, parameters, device);
    }
};

template <>
class Forwarding<IDirect3DDevice9> : public ForwardingObject<IDirect3DDevice9> {
    using I = IDirect3DDevice9;

  public:
    using ForwardingObject::ForwardingObject;
    HRESULT TestCooperativeLevel() override { return Call("TestCooperativeLevel", &I::TestCooperativeLevel); }
    HRESULT Reset(D3DPRESENT_PARAMETERS* parameters) override { return Call("Reset", &I::Reset, parameters); }
    HRESULT Present(const RECT* source, const RECT* destination, HWND window, const void* region) override {
        return Call("Present", &I::Present, source, destination, window, region);
    }
    HRESULT GetDeviceCaps(D3DCAPS9* caps) override { return Call("GetDeviceCaps", &I::GetDeviceCaps, caps); }
    void SetGammaRamp(UINT swap_chain, DWORD flags, const D3DGAMMARAMP* ramp) override {
        behind_->SetGammaRamp(swap_chain, flags, ramp);
    }
    HRESULT SetSoftwareVertexProcessing(BOOL software) override {
        return Call("SetSoftwareVertexProcessing", &I::SetSoftwareVertexProcessing, software);
    }

    HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                          IDirect3DTexture9** texture) override {
        return Call("CreateTexture", &I::CreateTexture, width, height, levels, usage, format, pool, texture);
    }
    HRESULT CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool,
                               IDirect3DVertexBuffer9** buffer) override {
        return Call("CreateVertexBuffer", &I::CreateVertexBuffer, bytes, usage, fvf, pool, buffer);
    }
    HRESULT CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                              IDirect3DIndexBuffer9** buffer) override {
        return Call("CreateIndexBuffer", &I::CreateIndexBuffer, bytes, usage, format, pool, buffer);
    }
    HRESULT CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD multisample, DWORD quality,
                               BOOL lockable, IDirect3DSurface9** surface) override {
        return Call("CreateRenderTarget", &I::CreateRenderTarget, width, height, format, multisample, quality, lockable,
                    surface);
    }
    HRESULT CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                        IDirect3DSurface9** surface) override {
        return Call("CreateOffscreenPlainSurface", &I::CreateOffscreenPlainSurface, width, height, format, pool,
                    surface);
    }
    HRESULT CreateVertexShader(const ShaderCode& code, IDirect3DVertexShader9** shader) override {
        return Call("CreateVertexShader", &I::CreateVertexShader, code, shader);
    }
    HRESULT CreatePixelShader(const ShaderCode& code, IDirect3DPixelShader9** shader) override {
        return Call("CreatePixelShader", &I::CreatePixelShader, code, shader);
    }

    HRESULT GetBackBuffer(UINT swap_chain, UINT index, DWORD type, IDirect3DSurface9** surface) override {
        return Call("GetBackBuffer", &I::GetBackBuffer, swap_chain, index, type, surface);
    }
    HRESULT SetRenderTarget(DWORD index, IDirect3DSurface9* surface) override {
        return Call("SetRenderTarget", &I::SetRenderTarget, index, surface);
    }
    HRESULT GetRenderTarget(DWORD index, IDirect3DSurface9** surface) override {
        return Call("GetRenderTarget", &I::GetRenderTarget, index, surface);
    }
    HRESULT GetDepthStencilSurface(IDirect3DSurface9** surface) override {
        return Call("GetDepthStencilSurface", &I::GetDepthStencilSurface, surface);
    }
    HRESULT StretchRect(IDirect3DSurface9* source, const RECT* from, IDirect3DSurface9* destination, const RECT* to,
                        DWORD filter) override {
        return Call("StretchRect", &I::StretchRect, source, from, destination, to, filter);
    }
    HRESULT ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR colour) override {
        return Call("ColorFill", &I::ColorFill, surface, rect, colour);
    }
    HRESULT UpdateTexture(IDirect3DTexture9* source, IDirect3DTexture9* destination) override {
        return Call("UpdateTexture", &I::UpdateTexture, source, destination);
    }
    HRESULT GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) override {
        return Call("GetRenderTargetData", &I::GetRenderTargetData, target, system_surface);
    }

    HRESULT BeginScene() override { return Call("BeginScene", &I::BeginScene); }
    HRESULT EndScene() override { return Call("EndScene", &I::EndScene); }
    HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR colour, float z, DWORD stencil) override {
        return Call("Clear", &I::Clear, count, rects, flags, colour, z, stencil);
    }

    HRESULT SetViewport(const D3DVIEWPORT9* viewport) override {
        return Call("SetViewport", &I::SetViewport, viewport);
    }
    HRESULT GetViewport(D3DVIEWPORT9* viewport) override { return Call("GetViewport", &I::GetViewport, viewport); }
    HRESULT SetTransform(D3DTRANSFORMSTATETYPE state, const D3DMATRIX* matrix) override {
        return Call("SetTransform", &I::SetTransform, state, matrix);
    }
    HRESULT GetTransform(D3DTRANSFORMSTATETYPE state, D3DMATRIX* matrix) override {
        return Call("GetTransform", &I::GetTransform, state, matrix);
    }
    HRESULT SetMaterial(const D3DMATERIAL9* material) override {
        return Call("SetMaterial", &I::SetMaterial, material);
    }
    HRESULT GetMaterial(D3DMATERIAL9* material) override { return Call("GetMaterial", &I::GetMaterial, material); }
    HRESULT SetLight(DWORD index, const D3DLIGHT9* light) override {
        return Call("SetLight", &I::SetLight, index, light);
    }
    HRESULT GetLight(DWORD index, D3DLIGHT9* light) override { return Call("GetLight", &I::GetLight, index, light); }
    HRESULT LightEnable(DWORD index, BOOL enable) override {
        return Call("LightEnable", &I::LightEnable, index, enable);
    }
    HRESULT GetLightEnable(DWORD index, BOOL* enable) override {
        return Call("GetLightEnable", &I::GetLightEnable, index, enable);
    }
    HRESULT SetRenderState(D3DRENDERSTATETYPE state, DWORD value) override {
        return Call("SetRenderState", &I::SetRenderState, state, value);
    }
    HRESULT GetRenderState(D3DRENDERSTATETYPE state, DWORD* value) override {
        return Call("GetRenderState", &I::GetRenderState, state, value);
    }
    HRESULT SetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD value) override {
        return Call("SetTextureStageState", &I::SetTextureStageState, stage, state, value);
    }
    HRESULT GetTextureStageState(DWORD stage, D3DTEXTURESTAGESTATETYPE state, DWORD* value) override {
        return Call("GetTextureStageState", &I::GetTextureStageState, stage, state, value);
    }
    HRESULT SetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD value) override {
        return Call("SetSamplerState", &I::SetSamplerState, sampler, state, value);
    }
    HRESULT GetSamplerState(DWORD sampler, D3DSAMPLERSTATETYPE state, DWORD* value) override {
        return Call("GetSamplerState", &I::GetSamplerState, sampler, state, value);
    }
    HRESULT SetTexture(DWORD sampler, IDirect3DTexture9* texture) override {
        return Call("SetTexture", &I::SetTexture, sampler, texture);
    }
    HRESULT GetTexture(DWORD sampler, IDirect3DTexture9** texture) override {
        return Call("GetTexture", &I::GetTexture, sampler, texture);
    }
    HRESULT SetVertexShader(IDirect3DVertexShader9* shader) override {
        return Call("SetVertexShader", &I::SetVertexShader, shader);
    }
    HRESULT GetVertexShader(IDirect3DVertexShader9** shader) override {
        return Call("GetVertexShader", &I::GetVertexShader, shader);
    }
    HRESULT SetPixelShader(IDirect3DPixelShader9* shader) override {
        return Call("SetPixelShader", &I::SetPixelShader, shader);
    }
    HRESULT GetPixelShader(IDirect3DPixelShader9** shader) override {
        return Call("GetPixelShader", &I::GetPixelShader, shader);
    }
    HRESULT SetVertexShaderGlobals(const void* data, UINT bytes) override {
        return Call("SetVertexShaderGlobals", &I::SetVertexShaderGlobals, data, bytes);
    }
    HRESULT SetPixelShaderGlobals(const void* data, UINT bytes) override {
        return Call("SetPixelShaderGlobals", &I::SetPixelShaderGlobals, data, bytes);
    }

    HRESULT SetFVF(DWORD fvf) override { return Call("SetFVF", &I::SetFVF, fvf); }
    HRESULT GetFVF(DWORD* fvf) override { return Call("GetFVF", &I::GetFVF, fvf); }
    HRESULT SetStreamSource(UINT stream, IDirect3DVertexBuffer9* buffer, UINT offset, UINT stride) override {
        return Call("SetStreamSource", &I::SetStreamSource, stream, buffer, offset, stride);
    }
    HRESULT SetIndices(IDirect3DIndexBuffer9* buffer) override { return Call("SetIndices", &I::SetIndices, buffer); }
    HRESULT DrawPrimitive(D3DPRIMITIVETYPE type, UINT first_vertex, UINT count) override {
        return Call("DrawPrimitive", &I::DrawPrimitive, type, first_vertex, count);
    }
    HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE type, INT base_vertex, UINT min_index, UINT vertices,
                                 UINT first_index, UINT count) override {
        return Call("DrawIndexedPrimitive", &I::DrawIndexedPrimitive, type, base_vertex, min_index, vertices,
                    first_index, count);
    }
};

}   // namespace

IDirect3D9* Forward(Recording& recording, IDirect3D9* behind) {
    return behind ? new Forwarding<IDirect3D9>(recording, behind) : nullptr;
}

IDirect3DDevice9& DeviceBehind(IDirect3DDevice9& forwarding) {
    return *static_cast<Forwarding<IDirect3DDevice9>&>(forwarding).Behind();
}

}   // namespace sparkrig
