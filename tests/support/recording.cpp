#include "tests/support/recording.h"

#include <bit>
#include <cstring>

#include "platform/com/ref_counted.h"

namespace sparkrig {

namespace {

Recording* current = nullptr;

template <class Interface>
struct Recorded;

template <class Interface>
concept Object = requires(Interface& object) {
    object.AddRef();
};

// ---- The words that stand for an argument

template <class Number>
requires std::is_integral_v<Number> || std::is_enum_v<Number>
void Append(std::vector<DWORD>& words, Number value) { words.push_back(static_cast<DWORD>(value)); }
void Append(std::vector<DWORD>& words, float value) { words.push_back(std::bit_cast<DWORD>(value)); }
template <Object Interface>
void Append(std::vector<DWORD>& words, Interface* object) {
    words.push_back(object ? static_cast<Recorded<Interface>*>(object)->Serial() : 0);
}
void Append(std::vector<DWORD>& words, const D3DVIEWPORT9* v) {
    words.insert(words.end(), {v->X, v->Y, v->Width, v->Height});
    Append(words, v->MinZ), Append(words, v->MaxZ);
}
void Append(std::vector<DWORD>& words, const D3DMATERIAL9* material) { Append(words, material->Diffuse.r); }
void Append(std::vector<DWORD>& words, const D3DLIGHT9* light) { Append(words, light->Type); }
/// Other structures and places for results say nothing.
template <class Other>
requires(!Object<Other>) void Append(std::vector<DWORD>&, Other*) {}
void Append(std::vector<DWORD>&, const ShaderCode&) {}

/// Whole words only: a block of globals is made of them.
std::vector<DWORD> WordsOf(const void* data, UINT bytes) {
    std::vector<DWORD> words(bytes / sizeof(DWORD));
    if (!words.empty()) std::memcpy(words.data(), data, words.size() * sizeof(DWORD));
    return words;
}

// ---- What an argument becomes for the object behind: an object, the one behind it; a place for an object, one that is
// stored there in the end with the recorded object around it; anything else, itself.

template <class Value>
struct Argument {
    Recording& recording;
    Value value;
    operator Value() const { return value; }
};

template <Object Interface>
struct Argument<Interface*> {
    Recording& recording;
    Interface* value;
    operator Interface*() const { return value ? static_cast<Recorded<Interface>*>(value)->Behind() : nullptr; }
};

template <Object Interface>
struct Argument<Interface**> {
    Recording& recording;
    Interface** place;
    Interface* behind = nullptr;
    operator Interface**() { return &behind; }
    ~Argument() noexcept(false) { *place = behind ? Recorded<Interface>::Around(recording, behind) : nullptr; }
};

template <class Interface>
class RecordedObject : public RefCounted<Interface> {
  public:
    using I = Interface;
    /// Takes over the reference. There is one recorded object around each, as long as somebody holds it.
    RecordedObject(Recording& recording, Interface* behind)
        : recording_(recording),
          behind_(behind),
          serial_(recording.ObjectMade(behind, static_cast<Interface*>(this))) {}
    ~RecordedObject() override { recording_.ObjectGone(behind_.Get()); }
    static Interface* Around(Recording& recording, Interface* behind) {
        auto* known = static_cast<Interface*>(recording.ObjectAround(behind));
        if (!known) return new Recorded<Interface>(recording, behind);
        behind->Release();
        return known->AddRef(), known;
    }
    Interface* Behind() const { return behind_.Get(); }
    UINT Serial() const { return serial_; }

  protected:
    template <class... Parameters, class... Arguments>
    HRESULT Call(const char* name, HRESULT (Interface::*method)(Parameters...), Arguments... arguments) {
        std::vector<DWORD> words;
        if constexpr (!requires { &Interface::GetDeviceCaps; }) words.push_back(serial_);   // there is one device
        (Append(words, arguments), ...);
        return CallTelling(std::move(words), name, method, arguments...);
    }
    template <class... Parameters, class... Arguments>
    HRESULT CallTelling(std::vector<DWORD> words, const char* name, HRESULT (Interface::*method)(Parameters...),
                        Arguments... arguments) {
        if (const HRESULT refusal = recording_.Record(name, std::move(words)); FAILED(refusal)) return refusal;
        const int repeated = recording_.repeated_states;
        const HRESULT result = (behind_.Get()->*method)(Argument<Parameters>{recording_, arguments}...);
        if (recording_.repeated_states > repeated) recording_.LastWasRedundant();
        return result;
    }

    Recording& recording_;
    DevicePtr<Interface> behind_;

  private:
    UINT serial_;
};

// ---- The contract, its arguments by letters

// clang-format off
#define CALL(method, ...) this->Call(#method, &I::method __VA_OPT__(, ) __VA_ARGS__)
#define CALL0(method) HRESULT method() override { return CALL(method); }
#define CALL1(method, A) HRESULT method(A a) override { return CALL(method, a); }
#define CALL2(method, A, B) HRESULT method(A a, B b) override { return CALL(method, a, b); }
#define CALL3(method, A, B, C) HRESULT method(A a, B b, C c) override { return CALL(method, a, b, c); }
#define CALL4(method, A, B, C, D) HRESULT method(A a, B b, C c, D d) override { return CALL(method, a, b, c, d); }
#define CALL5(method, A, B, C, D, E) \
    HRESULT method(A a, B b, C c, D d, E e) override { return CALL(method, a, b, c, d, e); }
#define CALL6(method, A, B, C, D, E, F) \
    HRESULT method(A a, B b, C c, D d, E e, F f) override { return CALL(method, a, b, c, d, e, f); }
#define CALL7(method, A, B, C, D, E, F, G) \
    HRESULT method(A a, B b, C c, D d, E e, F f, G g) override { return CALL(method, a, b, c, d, e, f, g); }

// Shaders have no calls.
template <class Interface>
struct Recorded : RecordedObject<Interface> {
    using RecordedObject<Interface>::RecordedObject;
};

template <>
struct Recorded<IDirect3DSurface9> : RecordedObject<IDirect3DSurface9> {
    using RecordedObject::RecordedObject;
    CALL1(GetDesc, D3DSURFACE_DESC*)
    CALL3(LockRect, D3DLOCKED_RECT*, const RECT*, DWORD)
    CALL0(UnlockRect)
};

template <>
struct Recorded<IDirect3DTexture9> : RecordedObject<IDirect3DTexture9> {
    using RecordedObject::RecordedObject;
    DWORD GetLevelCount() override { return behind_->GetLevelCount(); }
    CALL2(GetLevelDesc, UINT, D3DSURFACE_DESC*)
    CALL2(GetSurfaceLevel, UINT, IDirect3DSurface9**)
    CALL4(LockRect, UINT, D3DLOCKED_RECT*, const RECT*, DWORD)
    CALL1(UnlockRect, UINT)
};

template <class Buffer>
requires requires(Buffer& buffer) { buffer.Unlock(); }
struct Recorded<Buffer> : RecordedObject<Buffer> {
    using RecordedObject<Buffer>::RecordedObject;
    using typename RecordedObject<Buffer>::I;
    CALL4(Lock, UINT, UINT, void**, DWORD)
    CALL0(Unlock)
};

template <>
struct Recorded<IDirect3D9> : RecordedObject<IDirect3D9> {
    using RecordedObject::RecordedObject;
    UINT GetAdapterCount() override { return behind_->GetAdapterCount(); }
    CALL3(GetAdapterIdentifier, UINT, DWORD, D3DADAPTER_IDENTIFIER9*)
    CALL2(GetAdapterDisplayMode, UINT, D3DDISPLAYMODE*)
    UINT GetAdapterModeCount(UINT a, D3DFORMAT b) override { return behind_->GetAdapterModeCount(a, b); }
    CALL4(EnumAdapterModes, UINT, D3DFORMAT, UINT, D3DDISPLAYMODE*)
    CALL6(CheckDeviceFormat, UINT, D3DDEVTYPE, D3DFORMAT, DWORD, D3DRESOURCETYPE, D3DFORMAT)
    CALL3(GetDeviceCaps, UINT, D3DDEVTYPE, D3DCAPS9*)
    CALL6(CreateDevice, UINT, D3DDEVTYPE, HWND, DWORD, D3DPRESENT_PARAMETERS*, IDirect3DDevice9**)
};

template <>
struct Recorded<IDirect3DDevice9> : RecordedObject<IDirect3DDevice9> {
    using RecordedObject::RecordedObject;
    CALL0(TestCooperativeLevel)
    HRESULT Reset(D3DPRESENT_PARAMETERS* p) override {
        return CallTelling({p->BackBufferWidth, p->BackBufferHeight, p->PresentationInterval}, "Reset", &I::Reset, p);
    }
    CALL4(Present, const RECT*, const RECT*, HWND, const void*)
    CALL1(GetDeviceCaps, D3DCAPS9*)
    void SetGammaRamp(UINT swap_chain, DWORD flags, const D3DGAMMARAMP* ramp) override {
        recording_.Record("SetGammaRamp", {swap_chain, flags, ramp->red[1], ramp->green[1], ramp->blue[255]});
        behind_->SetGammaRamp(swap_chain, flags, ramp);
    }
    CALL1(SetSoftwareVertexProcessing, BOOL)

    CALL7(CreateTexture, UINT, UINT, UINT, DWORD, D3DFORMAT, D3DPOOL, IDirect3DTexture9**)
    CALL5(CreateVertexBuffer, UINT, DWORD, DWORD, D3DPOOL, IDirect3DVertexBuffer9**)
    CALL5(CreateIndexBuffer, UINT, DWORD, D3DFORMAT, D3DPOOL, IDirect3DIndexBuffer9**)
    CALL7(CreateRenderTarget, UINT, UINT, D3DFORMAT, DWORD, DWORD, BOOL, IDirect3DSurface9**)
    CALL5(CreateOffscreenPlainSurface, UINT, UINT, D3DFORMAT, D3DPOOL, IDirect3DSurface9**)
    CALL2(CreateVertexShader, const ShaderCode&, IDirect3DVertexShader9**)
    CALL2(CreatePixelShader, const ShaderCode&, IDirect3DPixelShader9**)

    CALL4(GetBackBuffer, UINT, UINT, DWORD, IDirect3DSurface9**)
    CALL2(SetRenderTarget, DWORD, IDirect3DSurface9*)
    CALL2(GetRenderTarget, DWORD, IDirect3DSurface9**)
    CALL1(GetDepthStencilSurface, IDirect3DSurface9**)
    CALL5(StretchRect, IDirect3DSurface9*, const RECT*, IDirect3DSurface9*, const RECT*, DWORD)
    CALL3(ColorFill, IDirect3DSurface9*, const RECT*, D3DCOLOR)
    CALL2(UpdateTexture, IDirect3DTexture9*, IDirect3DTexture9*)
    CALL2(GetRenderTargetData, IDirect3DSurface9*, IDirect3DSurface9*)

    CALL0(BeginScene)
    CALL0(EndScene)
    CALL6(Clear, DWORD, const D3DRECT*, DWORD, D3DCOLOR, float, DWORD)

    CALL1(SetViewport, const D3DVIEWPORT9*)
    CALL1(GetViewport, D3DVIEWPORT9*)
    CALL2(SetTransform, D3DTRANSFORMSTATETYPE, const D3DMATRIX*)
    CALL2(GetTransform, D3DTRANSFORMSTATETYPE, D3DMATRIX*)
    CALL1(SetMaterial, const D3DMATERIAL9*)
    CALL1(GetMaterial, D3DMATERIAL9*)
    CALL2(SetLight, DWORD, const D3DLIGHT9*)
    CALL2(GetLight, DWORD, D3DLIGHT9*)
    CALL2(LightEnable, DWORD, BOOL)
    CALL2(GetLightEnable, DWORD, BOOL*)
    CALL2(SetRenderState, D3DRENDERSTATETYPE, DWORD)
    CALL2(GetRenderState, D3DRENDERSTATETYPE, DWORD*)
    CALL3(SetTextureStageState, DWORD, D3DTEXTURESTAGESTATETYPE, DWORD)
    CALL3(GetTextureStageState, DWORD, D3DTEXTURESTAGESTATETYPE, DWORD*)
    CALL3(SetSamplerState, DWORD, D3DSAMPLERSTATETYPE, DWORD)
    CALL3(GetSamplerState, DWORD, D3DSAMPLERSTATETYPE, DWORD*)
    CALL2(SetTexture, DWORD, IDirect3DTexture9*)
    CALL2(GetTexture, DWORD, IDirect3DTexture9**)
    CALL1(SetVertexShader, IDirect3DVertexShader9*)
    CALL1(GetVertexShader, IDirect3DVertexShader9**)
    CALL1(SetPixelShader, IDirect3DPixelShader9*)
    CALL1(GetPixelShader, IDirect3DPixelShader9**)
    HRESULT SetVertexShaderGlobals(const void* a, UINT b) override {
        return CallTelling(WordsOf(a, b), "SetVertexShaderGlobals", &I::SetVertexShaderGlobals, a, b);
    }
    HRESULT SetPixelShaderGlobals(const void* a, UINT b) override {
        return CallTelling(WordsOf(a, b), "SetPixelShaderGlobals", &I::SetPixelShaderGlobals, a, b);
    }

    CALL1(SetFVF, DWORD)
    CALL1(GetFVF, DWORD*)
    CALL4(SetStreamSource, UINT, IDirect3DVertexBuffer9*, UINT, UINT)
    CALL1(SetIndices, IDirect3DIndexBuffer9*)
    CALL3(DrawPrimitive, D3DPRIMITIVETYPE, UINT, UINT)
    CALL6(DrawIndexedPrimitive, D3DPRIMITIVETYPE, INT, UINT, UINT, UINT, UINT)
};
// clang-format on

}   // namespace

// ---- The recording

Recording::Recording() : previous_(current) { current = this; }
Recording::~Recording() { current = previous_; }

IDirect3D9* Recording::Create(UINT sdk_version) {
    if (!current || !current->offers_direct3d || sdk_version != D3D_SDK_VERSION) return nullptr;
    return RecordCalls(*current, current->behind ? current->behind(sdk_version) : MakeMemoryDirect3D(*current));
}

DevicePtr<IDirect3DDevice9> Recording::MakeDevice(DWORD behaviour) {
    const DevicePtr<IDirect3D9> direct3d(Create(D3D_SDK_VERSION));
    D3DPRESENT_PARAMETERS parameters = {};
    parameters.Windowed = TRUE;
    parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
    DevicePtr<IDirect3DDevice9> device;
    direct3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, nullptr, behaviour, &parameters, device.Receive());
    ForgetCalls();
    return device;
}

std::vector<std::vector<DWORD>> Recording::ArgumentsOf(const std::string& method) const {
    std::vector<std::vector<DWORD>> all;
    for (const RecordedCall& call : calls_)
        if (call.method == method) all.push_back(call.arguments);
    return all;
}

std::vector<std::string> Recording::Methods(const std::set<std::string>& of) const {
    std::vector<std::string> methods;
    for (const RecordedCall& call : calls_)
        if (of.empty() || of.contains(call.method)) methods.push_back(call.method);
    return methods;
}

std::vector<DWORD> Recording::LastArguments(const char* method, const std::vector<DWORD>& first) const {
    std::vector<DWORD> values;
    for (const std::vector<DWORD>& arguments : ArgumentsOf(method))
        if (std::equal(first.begin(), first.end(), arguments.begin())) values.push_back(arguments.back());
    return values;
}

HRESULT Recording::Record(const char* method, std::vector<DWORD> arguments) {
    if (until_interrupt_ > 0 && --until_interrupt_ == 0) interrupt_();
    calls_.push_back({method, std::move(arguments)});
    HRESULT result = D3D_OK;
    std::vector<Failure>& waiting = failures_[method];
    for (Failure& failure : waiting)
        if (--failure.left == 0) result = failure.code;
    std::erase_if(waiting, [](const Failure& failure) { return failure.left <= 0; });
    return result;
}

void* Recording::ObjectAround(void* object) const {
    const auto found = live_objects_.find(object);
    return found == live_objects_.end() ? nullptr : found->second;
}

IDirect3D9* RecordCalls(Recording& recording, IDirect3D9* behind) {
    return behind ? new Recorded<IDirect3D9>(recording, behind) : nullptr;
}

IDirect3DDevice9& Behind(IDirect3DDevice9& recorded) {
    return *static_cast<Recorded<IDirect3DDevice9>&>(recorded).Behind();
}
IDirect3DTexture9& Behind(IDirect3DTexture9& recorded) {
    return *static_cast<Recorded<IDirect3DTexture9>&>(recorded).Behind();
}

}   // namespace sparkrig
