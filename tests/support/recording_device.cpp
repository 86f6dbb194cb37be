#include "tests/support/recording_device.h"

#include <algorithm>

#include "platform/d3d9/present_parameters.h"
#include "tests/support/recorded_states.h"

namespace sparkrig {

namespace {

HRESULT Complete(const Recording& recording, D3DPRESENT_PARAMETERS& parameters) {
    const RECT client = {0, 0, static_cast<LONG>(recording.client_width), static_cast<LONG>(recording.client_height)};
    return CompleteParameters(client, recording.modes, parameters);
}

class RecordingDevice : public RecordedStateCalls {
  public:
    /// The parameters are complete.
    RecordingDevice(Recording& recording, DWORD behaviour, const D3DPRESENT_PARAMETERS& parameters)
        : RecordedStateCalls(recording), behaviour_(behaviour) {
        MakeSwapChain(parameters);
    }

    HRESULT TestCooperativeLevel() override {
        return Do("TestCooperativeLevel", {}, [&] { return CooperativeLevel(recording_.Poll()); });
    }
    HRESULT Reset(D3DPRESENT_PARAMETERS* p) override {
        return Do("Reset", {p->BackBufferWidth, p->BackBufferHeight, p->PresentationInterval}, [&] {
            if (recording_.Life() == DeviceLife::Lost) return D3DERR_DEVICELOST;
            recording_.SetLife(DeviceLife::NotReset);   // until all has gone well
            state_ = DeviceState(false);                // what only the device holds goes first
            bound_ = {};
            if (ForeignDefaultPoolObjects() > 0) return D3DERR_INVALIDCALL;
            D3DPRESENT_PARAMETERS complete = *p;
            if (const HRESULT refused = Complete(recording_, complete); FAILED(refused)) return refused;
            MakeSwapChain(complete);
            recording_.SetLife(DeviceLife::Operational);
            return D3D_OK;
        });
    }
    HRESULT Present(const RECT* source, const RECT* destination, HWND window, const void* region) override {
        return Do("Present", {}, [&] {
            return CheckPresent(recording_.Life(), state_.in_scene, !source && !destination && !window && !region);
        });
    }
    HRESULT GetDeviceCaps(D3DCAPS9* caps) override {
        return Do("GetDeviceCaps", {}, [&] { return *caps = recording_.caps, D3D_OK; });
    }
    void SetGammaRamp(UINT swap_chain, DWORD flags, const D3DGAMMARAMP* ramp) override {
        recording_.Record("SetGammaRamp", {swap_chain, flags, ramp->red[1], ramp->green[1], ramp->blue[255]});
    }
    HRESULT SetSoftwareVertexProcessing(BOOL software) override {
        return Do("SetSoftwareVertexProcessing", {static_cast<DWORD>(software)},
                  [&] { return CheckSoftwareProcessing(behaviour_, software); });
    }

    HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                          IDirect3DTexture9** texture) override {
        return Do("CreateTexture", {width, height, levels, usage, format, pool}, [&] {
            TextureRequest r = {width, height, levels, usage, format, pool};
            if (const HRESULT refused = CheckTexture(Limits(), r); FAILED(refused)) return refused;
            if (recording_.refused_texture_formats.count(format) > 0) return D3DERR_INVALIDCALL;
            *texture = new RecordedTexture(
                recording_, {format, D3DRTYPE_SURFACE, r.usage, pool, D3DMULTISAMPLE_NONE, 0, width, height}, r.levels);
            return D3D_OK;
        });
    }
    HRESULT CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool,
                               IDirect3DVertexBuffer9** buffer) override {
        return Do("CreateVertexBuffer", {bytes, usage, fvf, pool}, [&] {
            const HRESULT refused = CheckVertexBuffer(behaviour_, bytes, usage, fvf, pool);
            if (FAILED(refused)) return refused;
            return *buffer = new RecordedBuffer<IDirect3DVertexBuffer9>(recording_, bytes, pool, 0), D3D_OK;
        });
    }
    HRESULT CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                              IDirect3DIndexBuffer9** buffer) override {
        return Do("CreateIndexBuffer", {bytes, usage, format, pool}, [&] {
            const HRESULT refused = CheckIndexBuffer(bytes, usage, format, pool);
            if (FAILED(refused)) return refused;
            const DWORD element = IndexBytes(format);
            return *buffer = new RecordedBuffer<IDirect3DIndexBuffer9>(recording_, bytes, pool, element), D3D_OK;
        });
    }
    HRESULT CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD samples, DWORD quality, BOOL lockable,
                               IDirect3DSurface9** surface) override {
        const std::vector<DWORD> arguments = {width, height, format, samples, quality, static_cast<DWORD>(lockable)};
        return Do("CreateRenderTarget", arguments, [&] {
            const HRESULT refused = CheckRenderTarget(Limits(), width, height, format, samples, lockable);
            if (FAILED(refused)) return refused;
            *surface = new RecordedSurface(
                recording_,
                {format, D3DRTYPE_SURFACE, D3DUSAGE_RENDERTARGET, D3DPOOL_DEFAULT, samples, quality, width, height},
                lockable != 0);
            return D3D_OK;
        });
    }
    HRESULT CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                        IDirect3DSurface9** surface) override {
        return Do("CreateOffscreenPlainSurface", {width, height, format, pool}, [&] {
            const HRESULT refused = CheckPlainSurface(Limits(), width, height, format, pool);
            if (FAILED(refused)) return refused;
            const D3DSURFACE_DESC desc = {format, D3DRTYPE_SURFACE, 0, pool, D3DMULTISAMPLE_NONE, 0, width, height};
            return *surface = new RecordedSurface(recording_, desc, true, true), D3D_OK;
        });
    }
    HRESULT CreateVertexShader(const ShaderCode&, IDirect3DVertexShader9** shader) override {
        return MakeShader("CreateVertexShader", shader);
    }
    HRESULT CreatePixelShader(const ShaderCode&, IDirect3DPixelShader9** shader) override {
        return MakeShader("CreatePixelShader", shader);
    }

    HRESULT GetBackBuffer(UINT swap_chain, UINT index, DWORD type, IDirect3DSurface9** surface) override {
        return Do("GetBackBuffer", {swap_chain, index, type}, [&] {
            const HRESULT refused = CheckBackBuffer(swap_chain, index, back_buffers_);
            return FAILED(refused) ? refused : Give(back_buffer_, surface);
        });
    }
    HRESULT SetRenderTarget(DWORD index, IDirect3DSurface9* surface) override {
        return Do("SetRenderTarget", {index, SerialOf(surface)}, [&] {
            if (!surface) return D3DERR_INVALIDCALL;
            const D3DSURFACE_DESC& desc = ImageOf(surface).desc;
            if (const HRESULT refused = CheckTarget(index, desc); FAILED(refused)) return refused;
            state_.viewport = {0, 0, desc.Width, desc.Height, 0.0f, 1.0f};
            return Bind(bound_.target, surface);
        });
    }
    HRESULT GetRenderTarget(DWORD index, IDirect3DSurface9** surface) override {
        return Do("GetRenderTarget", {index},
                  [&] { return index == 0 ? Give(bound_.target, surface) : D3DERR_INVALIDCALL; });
    }
    HRESULT GetDepthStencilSurface(IDirect3DSurface9** surface) override {
        return Do("GetDepthStencilSurface", {}, [&] { return depth_ ? Give(depth_, surface) : D3DERR_NOTFOUND; });
    }
    HRESULT StretchRect(IDirect3DSurface9* source, const RECT* from, IDirect3DSurface9* destination, const RECT* to,
                        DWORD filter) override {
        return Do("StretchRect", {SerialOf(source), SerialOf(destination), filter}, [&] {
            RecordedImage &read = ImageOf(source), &written = ImageOf(destination);
            RECT area, target;
            if (!TakeRect(read.desc, from, area) || !TakeRect(written.desc, to, target)) return D3DERR_INVALIDCALL;
            return CheckStretch({read.desc, area}, {written.desc, target}, &read == &written, filter);
        });
    }
    HRESULT ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR colour) override {
        return Do("ColorFill", {SerialOf(surface), colour}, [&] {
            RecordedImage& image = ImageOf(surface);
            RECT area;
            if (!TakeRect(image.desc, rect, area)) return D3DERR_INVALIDCALL;
            const HRESULT refused = CheckFill(image.desc, image.plain);
            if (SUCCEEDED(refused)) Fill(image, area, colour);
            return refused;
        });
    }
    HRESULT UpdateTexture(IDirect3DTexture9* source, IDirect3DTexture9* destination) override {
        return Do("UpdateTexture", {SerialOf(source), SerialOf(destination)}, [&] {
            auto &from = static_cast<RecordedTexture&>(*source), &to = static_cast<RecordedTexture&>(*destination);
            const HRESULT refused =
                CheckUpdate(from.Level(0).desc, from.GetLevelCount(), to.Level(0).desc, to.GetLevelCount());
            if (FAILED(refused)) return refused;
            for (UINT level = 0; level < to.GetLevelCount(); ++level) to.Level(level).bytes = from.Level(level).bytes;
            return D3D_OK;
        });
    }
    HRESULT GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) override {
        return Do("GetRenderTargetData", {SerialOf(target), SerialOf(system_surface)}, [&] {
            const RecordedImage& from = ImageOf(target);
            RecordedImage& to = ImageOf(system_surface);
            if (const HRESULT refused = CheckReadBack(from.desc, to.desc); FAILED(refused)) return refused;
            return to.bytes = from.bytes, D3D_OK;
        });
    }

    HRESULT BeginScene() override { return Set("BeginScene", {}, &DeviceState::SetInScene, true); }
    HRESULT EndScene() override { return Set("EndScene", {}, &DeviceState::SetInScene, false); }
    HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR colour, float z, DWORD stencil) override {
        return Do("Clear", {count, flags, colour, Bits(z), stencil},
                  [&] { return CheckClear(count, rects, flags, z, depth_ ? &ImageOf(depth_.Get()).desc : nullptr); });
    }

  private:
    ~RecordingDevice() override = default;

    DeviceLimits Limits() const { return {static_cast<int>(recording_.caps.MaxTextureWidth), 4, true}; }

    void MakeSwapChain(const D3DPRESENT_PARAMETERS& parameters) {
        const UINT width = parameters.BackBufferWidth, height = parameters.BackBufferHeight;
        const auto make = [&](D3DFORMAT format, DWORD usage) {
            const D3DSURFACE_DESC desc = {format, D3DRTYPE_SURFACE, usage, D3DPOOL_DEFAULT, 0, 0, width, height};
            return DevicePtr<IDirect3DSurface9>(new RecordedSurface(recording_, desc, false));
        };
        back_buffers_ = parameters.BackBufferCount;
        back_buffer_ = make(parameters.BackBufferFormat, D3DUSAGE_RENDERTARGET);
        depth_.Reset();
        if (parameters.EnableAutoDepthStencil) depth_ = make(parameters.AutoDepthStencilFormat, D3DUSAGE_DEPTHSTENCIL);
        state_ = DeviceState(parameters.EnableAutoDepthStencil != 0);
        state_.viewport = {0, 0, width, height, 0.0f, 1.0f};
        bound_.target = back_buffer_;
    }
    /// Resources that the program, not the device, keeps in the default pool.
    int ForeignDefaultPoolObjects() const {
        int own = 0;
        for (const auto* surface : {&back_buffer_, &depth_})
            own += *surface && static_cast<RecordedSurface&>(**surface).References() == 1;
        return recording_.LiveDefaultPoolObjects() - own;
    }
    template <class Interface>
    HRESULT MakeShader(const char* method, Interface** shader) {
        return Do(method, {}, [&] { return *shader = new RecordedShader<Interface>(recording_), D3D_OK; });
    }
    static RecordedImage& ImageOf(IDirect3DSurface9* surface) {
        return static_cast<RecordedSurface*>(surface)->Image();
    }
    static void Fill(RecordedImage& image, const RECT& area, D3DCOLOR colour) {
        if (image.format.bytes != sizeof(colour)) return;
        for (LONG y = area.top; y < area.bottom; ++y) {
            BYTE* row = image.bytes.data() + static_cast<std::ptrdiff_t>(y) * image.pitch;
            for (LONG x = area.left; x < area.right; ++x) std::memcpy(row + 4 * x, &colour, sizeof(colour));
        }
    }

    DWORD behaviour_;
    UINT back_buffers_ = 0;
    DevicePtr<IDirect3DSurface9> back_buffer_, depth_;
};

class RecordingDirect3D : public RecordedObject<IDirect3D9> {
  public:
    explicit RecordingDirect3D(Recording& recording) : RecordedObject(recording, false) {}

    UINT GetAdapterCount() override { return static_cast<UINT>(recording_.adapters.size()); }
    HRESULT GetAdapterIdentifier(UINT adapter, DWORD flags, D3DADAPTER_IDENTIFIER9* identifier) override {
        return Do("GetAdapterIdentifier", {adapter, flags}, [&] {
            if (adapter >= recording_.adapters.size()) return D3DERR_INVALIDCALL;
            *identifier = {};
            recording_.adapters[adapter].copy(identifier->Description, sizeof(identifier->Description) - 1);
            return D3D_OK;
        });
    }
    HRESULT GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) override {
        return Do("GetAdapterDisplayMode", {adapter}, [&] { return *mode = recording_.desktop, D3D_OK; });
    }
    UINT GetAdapterModeCount(UINT, D3DFORMAT format) override {
        return static_cast<UINT>(std::ranges::count(recording_.modes, format, &D3DDISPLAYMODE::Format));
    }
    HRESULT EnumAdapterModes(UINT adapter, D3DFORMAT format, UINT index, D3DDISPLAYMODE* mode) override {
        return Do("EnumAdapterModes", {adapter, format, index}, [&] {
            for (const D3DDISPLAYMODE& offered : recording_.modes)
                if (offered.Format == format && index-- == 0) return *mode = offered, D3D_OK;
            return D3DERR_INVALIDCALL;
        });
    }
    HRESULT CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT adapter_format, DWORD usage,
                              D3DRESOURCETYPE resource, D3DFORMAT format) override {
        return Do("CheckDeviceFormat", {adapter, type, adapter_format, usage, resource, format},
                  [&] { return recording_.refused_texture_formats.count(format) > 0 ? D3DERR_NOTAVAILABLE : D3D_OK; });
    }
    HRESULT GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* caps) override {
        return Do("GetDeviceCaps", {adapter, type}, [&] { return *caps = recording_.caps, D3D_OK; });
    }
    HRESULT CreateDevice(UINT adapter, D3DDEVTYPE type, HWND, DWORD behaviour, D3DPRESENT_PARAMETERS* parameters,
                         IDirect3DDevice9** device) override {
        return Do("CreateDevice", {adapter, type, behaviour}, [&] {
            D3DPRESENT_PARAMETERS complete = *parameters;
            if (!ValidBehaviour(behaviour)) return D3DERR_INVALIDCALL;
            if (const HRESULT refused = Complete(recording_, complete); FAILED(refused)) return refused;
            return *device = new RecordingDevice(recording_, behaviour, complete), D3D_OK;
        });
    }
};

}   // namespace

IDirect3D9* MakeRecordingDirect3D(Recording& recording) { return new RecordingDirect3D(recording); }

}   // namespace sparkrig
