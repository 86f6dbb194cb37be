#include "tests/support/recording_device.h"

#include <algorithm>

#include "tests/support/recorded_states.h"

namespace sparkrig {

namespace {

UINT FullChain(UINT width, UINT height) { return static_cast<UINT>(std::bit_width(std::max(width, height))); }

class RecordingDevice : public RecordedStateCalls {
  public:
    RecordingDevice(Recording& recording, DWORD behaviour, const D3DPRESENT_PARAMETERS& parameters)
        : RecordedStateCalls(recording), behaviour_(behaviour) {
        MakeSwapChain(parameters);
    }

    HRESULT TestCooperativeLevel() override {
        return Do("TestCooperativeLevel", {}, [&] { return recording_.CooperativeLevel(); });
    }
    HRESULT Reset(D3DPRESENT_PARAMETERS* p) override {
        return Do("Reset", {p->BackBufferWidth, p->BackBufferHeight, p->PresentationInterval}, [&] {
            states_ = RecordedStates(false, 0, 0);   // what only the device holds goes first
            if (ForeignDefaultPoolObjects() > 0) return D3DERR_INVALIDCALL;
            MakeSwapChain(*p);
            recording_.ResetDone();
            return D3D_OK;
        });
    }
    HRESULT Present(const RECT*, const RECT*, HWND, const void*) override {
        return Do("Present", {}, [&] {
            return recording_.Lost() ? D3DERR_DEVICELOST : states_.in_scene ? D3DERR_INVALIDCALL : D3D_OK;
        });
    }
    HRESULT GetDeviceCaps(D3DCAPS9* caps) override {
        return Do("GetDeviceCaps", {}, [&] { return *caps = recording_.caps, D3D_OK; });
    }
    void SetGammaRamp(UINT swap_chain, DWORD flags, const D3DGAMMARAMP* ramp) override {
        recording_.Record("SetGammaRamp", {swap_chain, flags, ramp->red[1], ramp->green[1], ramp->blue[255]});
    }
    HRESULT SetSoftwareVertexProcessing(BOOL software) override {
        return Do("SetSoftwareVertexProcessing", {static_cast<DWORD>(software)}, [&] {
            if (behaviour_ & D3DCREATE_MIXED_VERTEXPROCESSING) return D3D_OK;
            const bool is_software = (behaviour_ & D3DCREATE_SOFTWARE_VERTEXPROCESSING) != 0;
            return is_software == (software != 0) ? D3D_OK : D3DERR_INVALIDCALL;
        });
    }

    HRESULT CreateTexture(UINT width, UINT height, UINT levels, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                          IDirect3DTexture9** texture) override {
        return Do("CreateTexture", {width, height, levels, usage, format, pool}, [&] {
            const bool fits = width > 0 && height > 0 && width <= recording_.caps.MaxTextureWidth &&
                              height <= recording_.caps.MaxTextureHeight && levels <= FullChain(width, height);
            const bool target = (usage & (D3DUSAGE_RENDERTARGET | D3DUSAGE_DEPTHSTENCIL)) != 0;
            if (!fits || (target && pool != D3DPOOL_DEFAULT)) return D3DERR_INVALIDCALL;
            if ((usage & D3DUSAGE_DYNAMIC) && pool == D3DPOOL_MANAGED) return D3DERR_INVALIDCALL;
            const bool drawable = format >= D3DFMT_A8R8G8B8 && format <= D3DFMT_R5G6B5;
            if ((target && !drawable) || recording_.refused_texture_formats.count(format) > 0)
                return D3DERR_INVALIDCALL;
            *texture = new RecordedTexture(recording_, {format, D3DRTYPE_SURFACE, usage, pool, 0, 0, width, height},
                                           levels ? levels : FullChain(width, height));
            return D3D_OK;
        });
    }
    HRESULT CreateVertexBuffer(UINT bytes, DWORD usage, DWORD fvf, D3DPOOL pool,
                               IDirect3DVertexBuffer9** buffer) override {
        return Do("CreateVertexBuffer", {bytes, usage, fvf, pool}, [&] {
            const bool hardware_only = (behaviour_ & D3DCREATE_HARDWARE_VERTEXPROCESSING) != 0;
            if (hardware_only && (usage & D3DUSAGE_SOFTWAREPROCESSING)) return D3DERR_INVALIDCALL;
            return MakeBuffer(bytes, pool, buffer);
        });
    }
    HRESULT CreateIndexBuffer(UINT bytes, DWORD usage, D3DFORMAT format, D3DPOOL pool,
                              IDirect3DIndexBuffer9** buffer) override {
        return Do("CreateIndexBuffer", {bytes, usage, format, pool}, [&] { return MakeBuffer(bytes, pool, buffer); });
    }
    HRESULT CreateRenderTarget(UINT width, UINT height, D3DFORMAT format, DWORD samples, DWORD quality, BOOL lockable,
                               IDirect3DSurface9** surface) override {
        const std::vector<DWORD> arguments = {width, height, format, samples, quality, static_cast<DWORD>(lockable)};
        return Do("CreateRenderTarget", arguments, [&] {
            if (width == 0 || height == 0 || (lockable && samples)) return D3DERR_INVALIDCALL;
            *surface = new RecordedSurface(recording_, {format, D3DRTYPE_SURFACE, D3DUSAGE_RENDERTARGET,
                                                        D3DPOOL_DEFAULT, samples, quality, width, height});
            return D3D_OK;
        });
    }
    HRESULT CreateOffscreenPlainSurface(UINT width, UINT height, D3DFORMAT format, D3DPOOL pool,
                                        IDirect3DSurface9** surface) override {
        return Do("CreateOffscreenPlainSurface", {width, height, format, pool}, [&] {
            if (width == 0 || height == 0 || pool == D3DPOOL_MANAGED) return D3DERR_INVALIDCALL;
            *surface = new RecordedSurface(recording_, {format, D3DRTYPE_SURFACE, 0, pool, 0, 0, width, height});
            return D3D_OK;
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
            return swap_chain == 0 && index == 0 && type == 0 ? Give(back_buffer_, surface) : D3DERR_INVALIDCALL;
        });
    }
    HRESULT SetRenderTarget(DWORD index, IDirect3DSurface9* surface) override {
        return Do("SetRenderTarget", {index, SerialOf(surface)}, [&] {
            if (index != 0 || !surface) return D3DERR_INVALIDCALL;
            const D3DSURFACE_DESC& desc = ImageOf(surface).desc;
            if (!(desc.Usage & D3DUSAGE_RENDERTARGET)) return D3DERR_INVALIDCALL;
            states_.viewport = {0, 0, desc.Width, desc.Height, 0.0f, 1.0f};
            return Bind(states_.target, surface);
        });
    }
    HRESULT GetRenderTarget(DWORD index, IDirect3DSurface9** surface) override {
        return Do("GetRenderTarget", {index},
                  [&] { return index == 0 ? Give(states_.target, surface) : D3DERR_NOTFOUND; });
    }
    HRESULT GetDepthStencilSurface(IDirect3DSurface9** surface) override {
        return Do("GetDepthStencilSurface", {}, [&] { return depth_ ? Give(depth_, surface) : D3DERR_NOTFOUND; });
    }
    HRESULT StretchRect(IDirect3DSurface9* source, const RECT*, IDirect3DSurface9* destination, const RECT*,
                        DWORD filter) override {
        return recording_.Record("StretchRect", {SerialOf(source), SerialOf(destination), filter});
    }
    HRESULT ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR colour) override {
        return Do("ColorFill", {SerialOf(surface), colour}, [&] { return Fill(ImageOf(surface), rect, colour); });
    }
    HRESULT UpdateTexture(IDirect3DTexture9* source, IDirect3DTexture9* destination) override {
        return Do("UpdateTexture", {SerialOf(source), SerialOf(destination)}, [&] {
            auto &from = static_cast<RecordedTexture&>(*source), &to = static_cast<RecordedTexture&>(*destination);
            const D3DSURFACE_DESC &a = from.Level(0).desc, &b = to.Level(0).desc;
            if (a.Pool != D3DPOOL_SYSTEMMEM || b.Pool != D3DPOOL_DEFAULT || a.Width != b.Width ||
                a.Height != b.Height || a.Format != b.Format || from.GetLevelCount() != to.GetLevelCount()) {
                return D3DERR_INVALIDCALL;
            }
            for (UINT level = 0; level < to.GetLevelCount(); ++level) to.Level(level).bytes = from.Level(level).bytes;
            return D3D_OK;
        });
    }
    HRESULT GetRenderTargetData(IDirect3DSurface9* target, IDirect3DSurface9* system_surface) override {
        return Do("GetRenderTargetData", {SerialOf(target), SerialOf(system_surface)}, [&] {
            const RecordedImage& from = ImageOf(target);
            RecordedImage& to = ImageOf(system_surface);
            if (to.desc.Pool != D3DPOOL_SYSTEMMEM || from.bytes.size() != to.bytes.size()) return D3DERR_INVALIDCALL;
            return to.bytes = from.bytes, D3D_OK;
        });
    }

    HRESULT BeginScene() override { return SetInScene("BeginScene", true); }
    HRESULT EndScene() override { return SetInScene("EndScene", false); }
    HRESULT Clear(DWORD count, const D3DRECT* rects, DWORD flags, D3DCOLOR colour, float z, DWORD stencil) override {
        return Do("Clear", {count, flags, colour, Bits(z), stencil}, [&] {
            const bool depth = (flags & (D3DCLEAR_ZBUFFER | D3DCLEAR_STENCIL)) != 0;
            const bool valid = (count == 0) == (rects == nullptr) && z >= 0 && z <= 1 && (!depth || depth_);
            return valid ? D3D_OK : D3DERR_INVALIDCALL;
        });
    }

  private:
    ~RecordingDevice() override = default;

    void MakeSwapChain(const D3DPRESENT_PARAMETERS& parameters) {
        const bool depth = parameters.EnableAutoDepthStencil != 0;
        const UINT width = parameters.BackBufferWidth ? parameters.BackBufferWidth : recording_.client_width;
        const UINT height = parameters.BackBufferHeight ? parameters.BackBufferHeight : recording_.client_height;
        const auto make = [&](D3DFORMAT format, DWORD usage) {
            const D3DSURFACE_DESC desc = {format, D3DRTYPE_SURFACE, usage, D3DPOOL_DEFAULT, 0, 0, width, height};
            return DevicePtr<IDirect3DSurface9>(new RecordedSurface(recording_, desc));
        };
        back_buffer_ = make(parameters.BackBufferFormat, D3DUSAGE_RENDERTARGET);
        depth_.Reset();
        if (depth) depth_ = make(parameters.AutoDepthStencilFormat, D3DUSAGE_DEPTHSTENCIL);
        states_ = RecordedStates(depth, width, height);
        states_.target = back_buffer_;
    }
    /// Resources that the program, not the device, keeps in the default pool.
    int ForeignDefaultPoolObjects() const {
        int own = 0;
        for (const auto* surface : {&back_buffer_, &depth_})
            own += *surface && static_cast<RecordedSurface&>(**surface).References() == 1;
        return recording_.LiveDefaultPoolObjects() - own;
    }
    template <class Interface>
    HRESULT MakeBuffer(UINT bytes, D3DPOOL pool, Interface** buffer) {
        if (bytes == 0 || pool == D3DPOOL_SCRATCH) return D3DERR_INVALIDCALL;
        *buffer = new RecordedBuffer<Interface>(recording_, bytes, pool);
        return D3D_OK;
    }
    template <class Interface>
    HRESULT MakeShader(const char* method, Interface** shader) {
        return Do(method, {}, [&] { return *shader = new RecordedShader<Interface>(recording_), D3D_OK; });
    }
    HRESULT SetInScene(const char* method, bool in_scene) {
        return Do(method, {}, [&] {
            if (states_.in_scene == in_scene) return D3DERR_INVALIDCALL;
            return states_.in_scene = in_scene, D3D_OK;
        });
    }
    static RecordedImage& ImageOf(IDirect3DSurface9* surface) {
        return static_cast<RecordedSurface*>(surface)->Image();
    }
    static HRESULT Fill(RecordedImage& image, const RECT* rect, D3DCOLOR colour) {
        if (image.desc.Pool != D3DPOOL_DEFAULT) return D3DERR_INVALIDCALL;
        const LONG width = static_cast<LONG>(image.desc.Width), height = static_cast<LONG>(image.desc.Height);
        const RECT area = rect ? *rect : RECT{0, 0, width, height};
        if (area.left < 0 || area.top < 0 || area.right > width || area.bottom > height) return D3DERR_INVALIDCALL;
        if (RowBytes(image.desc.Format, 1) != sizeof(colour)) return D3D_OK;
        for (LONG y = area.top; y < area.bottom; ++y) {
            BYTE* row = image.bytes.data() + static_cast<std::ptrdiff_t>(y) * image.pitch;
            for (LONG x = area.left; x < area.right; ++x) std::memcpy(row + 4 * x, &colour, sizeof(colour));
        }
        return D3D_OK;
    }

    DWORD behaviour_;
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
            for (const D3DDISPLAYMODE& offered : recording_.modes) {
                if (offered.Format == format && index-- == 0) return *mode = offered, D3D_OK;
            }
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
        return Do("CreateDevice", {adapter, type, behaviour},
                  [&] { return *device = new RecordingDevice(recording_, behaviour, *parameters), D3D_OK; });
    }
};

}   // namespace

IDirect3D9* MakeRecordingDirect3D(Recording& recording) { return new RecordingDirect3D(recording); }

}   // namespace sparkrig
