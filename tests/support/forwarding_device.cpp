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
    ~Argument() noexcept(false) { *place = made ? new Forwarding<Interface>(recording, made) : nullptr; }
};

template <class Interface>
class ForwardingObject : public RecordedObject<Interface> {
  public:
    using I = Interface;
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

/// Forwards the call of the method it stands in. Arguments go by letters: the contract names them.
#define CALL(method, ...) this->Call(#method, &I::method __VA_OPT__(, ) __VA_ARGS__)

// Shaders have no calls.
template <class Interface>
class Forwarding : public ForwardingObject<Interface> {
  public:
    using ForwardingObject<Interface>::ForwardingObject;
};

template <>
class Forwarding<IDirect3DSurface9> : public ForwardingObject<IDirect3DSurface9> {
  public:
    using ForwardingObject::ForwardingObject;
    HRESULT GetDesc(D3DSURFACE_DESC* a) override { return CALL(GetDesc, a); }
    HRESULT LockRect(D3DLOCKED_RECT* a, const RECT* b, DWORD c) override { return CALL(LockRect, a, b, c); }
    HRESULT UnlockRect() override { return CALL(UnlockRect); }
};

template <>
class Forwarding<IDirect3DTexture9> : public ForwardingObject<IDirect3DTexture9> {
  public:
    using ForwardingObject::ForwardingObject;
    DWORD GetLevelCount() override { return behind_->GetLevelCount(); }
    HRESULT GetLevelDesc(UINT a, D3DSURFACE_DESC* b) override { return CALL(GetLevelDesc, a, b); }
    HRESULT GetSurfaceLevel(UINT a, IDirect3DSurface9** b) override { return CALL(GetSurfaceLevel, a, b); }
    HRESULT LockRect(UINT a, D3DLOCKED_RECT* b, const RECT* c, DWORD d) override { return CALL(LockRect, a, b, c, d); }
    HRESULT UnlockRect(UINT a) override { return CALL(UnlockRect, a); }
};

template <class Buffer>
requires requires(Buffer& buffer) { buffer.Unlock(); }
class Forwarding<Buffer> : public ForwardingObject<Buffer> {
  public:
    using ForwardingObject<Buffer>::ForwardingObject;
    using typename ForwardingObject<Buffer>::I;
    HRESULT Lock(UINT a, UINT b, void** c, DWORD d) override { return CALL(Lock, a, b, c, d); }
    HRESULT Unlock() override { return CALL(Unlock); }
};

template <>
class Forwarding<IDirect3D9> : public ForwardingObject<IDirect3D9> {
  public:
    using ForwardingObject::ForwardingObject;
    UINT GetAdapterCount() override { return behind_->GetAdapterCount(); }
    HRESULT GetAdapterIdentifier(UINT a, DWORD b, D3DADAPTER_IDENTIFIER9* c) override {
        return CALL(GetAdapterIdentifier, a, b, c);
    }
    HRESULT GetAdapterDisplayMode(UINT a, D3DDISPLAYMODE* b) override { return CALL(GetAdapterDisplayMode, a, b); }
    UINT GetAdapterModeCount(UINT adapter, D3DFORMAT format) override {
        return behind_->GetAdapterModeCount(adapter, format);
    }
    HRESULT EnumAdapterModes(UINT a, D3DFORMAT b, UINT c, D3DDISPLAYMODE* d) override {
        return CALL(EnumAdapterModes, a, b, c, d);
    }
    HRESULT CheckDeviceFormat(UINT a, D3DDEVTYPE b, D3DFORMAT c, DWORD d, D3DRESOURCETYPE e, D3DFORMAT f) override {
        return CALL(CheckDeviceFormat, a, b, c, d, e, f);
    }
    HRESULT GetDeviceCaps(UINT a, D3DDEVTYPE b, D3DCAPS9* c) override { return CALL(GetDeviceCaps, a, b, c); }
    HRESULT CreateDevice(UINT a, D3DDEVTYPE b, HWND c, DWORD d, D3DPRESENT_PARAMETERS* e,
                         IDirect3DDevice9** f) override {
        return CALL(CreateDevice, a, b, c, d, e, f);
    }
};

template <>
class Forwarding<IDirect3DDevice9> : public ForwardingObject<IDirect3DDevice9> {
  public:
    using ForwardingObject::ForwardingObject;
    HRESULT TestCooperativeLevel() override { return CALL(TestCooperativeLevel); }
    HRESULT Reset(D3DPRESENT_PARAMETERS* a) override { return CALL(Reset, a); }
    HRESULT Present(const RECT* a, const RECT* b, HWND c, const void* d) override { return CALL(Present, a, b, c, d); }
    HRESULT GetDeviceCaps(D3DCAPS9* a) override { return CALL(GetDeviceCaps, a); }
    void SetGammaRamp(UINT swap_chain, DWORD flags, const D3DGAMMARAMP* ramp) override {
        behind_->SetGammaRamp(swap_chain, flags, ramp);
    }
    HRESULT SetSoftwareVertexProcessing(BOOL a) override { return CALL(SetSoftwareVertexProcessing, a); }

    HRESULT CreateTexture(UINT a, UINT b, UINT c, DWORD d, D3DFORMAT e, D3DPOOL f, IDirect3DTexture9** g) override {
        return CALL(CreateTexture, a, b, c, d, e, f, g);
    }
    HRESULT CreateVertexBuffer(UINT a, DWORD b, DWORD c, D3DPOOL d, IDirect3DVertexBuffer9** e) override {
        return CALL(CreateVertexBuffer, a, b, c, d, e);
    }
    HRESULT CreateIndexBuffer(UINT a, DWORD b, D3DFORMAT c, D3DPOOL d, IDirect3DIndexBuffer9** e) override {
        return CALL(CreateIndexBuffer, a, b, c, d, e);
    }
    HRESULT CreateRenderTarget(UINT a, UINT b, D3DFORMAT c, DWORD d, DWORD e, BOOL f, IDirect3DSurface9** g) override {
        return CALL(CreateRenderTarget, a, b, c, d, e, f, g);
    }
    HRESULT CreateOffscreenPlainSurface(UINT a, UINT b, D3DFORMAT c, D3DPOOL d, IDirect3DSurface9** e) override {
        return CALL(CreateOffscreenPlainSurface, a, b, c, d, e);
    }
    HRESULT CreateVertexShader(const ShaderCode& a, IDirect3DVertexShader9** b) override {
        return CALL(CreateVertexShader, a, b);
    }
    HRESULT CreatePixelShader(const ShaderCode& a, IDirect3DPixelShader9** b) override {
        return CALL(CreatePixelShader, a, b);
    }

    HRESULT GetBackBuffer(UINT a, UINT b, DWORD c, IDirect3DSurface9** d) override {
        return CALL(GetBackBuffer, a, b, c, d);
    }
    HRESULT SetRenderTarget(DWORD a, IDirect3DSurface9* b) override { return CALL(SetRenderTarget, a, b); }
    HRESULT GetRenderTarget(DWORD a, IDirect3DSurface9** b) override { return CALL(GetRenderTarget, a, b); }
    HRESULT GetDepthStencilSurface(IDirect3DSurface9** a) override { return CALL(GetDepthStencilSurface, a); }
    HRESULT StretchRect(IDirect3DSurface9* a, const RECT* b, IDirect3DSurface9* c, const RECT* d, DWORD e) override {
        return CALL(StretchRect, a, b, c, d, e);
    }
    HRESULT ColorFill(IDirect3DSurface9* a, const RECT* b, D3DCOLOR c) override { return CALL(ColorFill, a, b, c); }
    HRESULT UpdateTexture(IDirect3DTexture9* a, IDirect3DTexture9* b) override { return CALL(UpdateTexture, a, b); }
    HRESULT GetRenderTargetData(IDirect3DSurface9* a, IDirect3DSurface9* b) override {
        return CALL(GetRenderTargetData, a, b);
    }

    HRESULT BeginScene() override { return CALL(BeginScene); }
    HRESULT EndScene() override { return CALL(EndScene); }
    HRESULT Clear(DWORD a, const D3DRECT* b, DWORD c, D3DCOLOR d, float e, DWORD f) override {
        return CALL(Clear, a, b, c, d, e, f);
    }

    HRESULT SetViewport(const D3DVIEWPORT9* a) override { return CALL(SetViewport, a); }
    HRESULT GetViewport(D3DVIEWPORT9* a) override { return CALL(GetViewport, a); }
    HRESULT SetTransform(D3DTRANSFORMSTATETYPE a, const D3DMATRIX* b) override { return CALL(SetTransform, a, b); }
    HRESULT GetTransform(D3DTRANSFORMSTATETYPE a, D3DMATRIX* b) override { return CALL(GetTransform, a, b); }
    HRESULT SetMaterial(const D3DMATERIAL9* a) override { return CALL(SetMaterial, a); }
    HRESULT GetMaterial(D3DMATERIAL9* a) override { return CALL(GetMaterial, a); }
    HRESULT SetLight(DWORD a, const D3DLIGHT9* b) override { return CALL(SetLight, a, b); }
    HRESULT GetLight(DWORD a, D3DLIGHT9* b) override { return CALL(GetLight, a, b); }
    HRESULT LightEnable(DWORD a, BOOL b) override { return CALL(LightEnable, a, b); }
    HRESULT GetLightEnable(DWORD a, BOOL* b) override { return CALL(GetLightEnable, a, b); }
    HRESULT SetRenderState(D3DRENDERSTATETYPE a, DWORD b) override { return CALL(SetRenderState, a, b); }
    HRESULT GetRenderState(D3DRENDERSTATETYPE a, DWORD* b) override { return CALL(GetRenderState, a, b); }
    HRESULT SetTextureStageState(DWORD a, D3DTEXTURESTAGESTATETYPE b, DWORD c) override {
        return CALL(SetTextureStageState, a, b, c);
    }
    HRESULT GetTextureStageState(DWORD a, D3DTEXTURESTAGESTATETYPE b, DWORD* c) override {
        return CALL(GetTextureStageState, a, b, c);
    }
    HRESULT SetSamplerState(DWORD a, D3DSAMPLERSTATETYPE b, DWORD c) override { return CALL(SetSamplerState, a, b, c); }
    HRESULT GetSamplerState(DWORD a, D3DSAMPLERSTATETYPE b, DWORD* c) override {
        return CALL(GetSamplerState, a, b, c);
    }
    HRESULT SetTexture(DWORD a, IDirect3DTexture9* b) override { return CALL(SetTexture, a, b); }
    HRESULT GetTexture(DWORD a, IDirect3DTexture9** b) override { return CALL(GetTexture, a, b); }
    HRESULT SetVertexShader(IDirect3DVertexShader9* a) override { return CALL(SetVertexShader, a); }
    HRESULT GetVertexShader(IDirect3DVertexShader9** a) override { return CALL(GetVertexShader, a); }
    HRESULT SetPixelShader(IDirect3DPixelShader9* a) override { return CALL(SetPixelShader, a); }
    HRESULT GetPixelShader(IDirect3DPixelShader9** a) override { return CALL(GetPixelShader, a); }
    HRESULT SetVertexShaderGlobals(const void* a, UINT b) override { return CALL(SetVertexShaderGlobals, a, b); }
    HRESULT SetPixelShaderGlobals(const void* a, UINT b) override { return CALL(SetPixelShaderGlobals, a, b); }

    HRESULT SetFVF(DWORD a) override { return CALL(SetFVF, a); }
    HRESULT GetFVF(DWORD* a) override { return CALL(GetFVF, a); }
    HRESULT SetStreamSource(UINT a, IDirect3DVertexBuffer9* b, UINT c, UINT d) override {
        return CALL(SetStreamSource, a, b, c, d);
    }
    HRESULT SetIndices(IDirect3DIndexBuffer9* a) override { return CALL(SetIndices, a); }
    HRESULT DrawPrimitive(D3DPRIMITIVETYPE a, UINT b, UINT c) override { return CALL(DrawPrimitive, a, b, c); }
    HRESULT DrawIndexedPrimitive(D3DPRIMITIVETYPE a, INT b, UINT c, UINT d, UINT e, UINT f) override {
        return CALL(DrawIndexedPrimitive, a, b, c, d, e, f);
    }
};

#undef CALL

}   // namespace

IDirect3D9* Forward(Recording& recording, IDirect3D9* behind) {
    return behind ? new Forwarding<IDirect3D9>(recording, behind) : nullptr;
}

IDirect3DDevice9& DeviceBehind(IDirect3DDevice9& forwarding) {
    return *static_cast<Forwarding<IDirect3DDevice9>&>(forwarding).Behind();
}

}   // namespace sparkrig
